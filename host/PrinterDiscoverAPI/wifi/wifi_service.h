#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "host/PrinterDiscoverAPI/wifi/access_point.h"

namespace Host {

// How long a scan and a joining are waited for.
inline constexpr std::chrono::seconds kScanLimit{10};
inline constexpr std::chrono::seconds kJoinLimit{30};

// What stands in the way, in words; UTF-8.
class WifiProblem : public std::runtime_error {
public:
    // What it says about the host's Wi-Fi as a whole.
    enum class Kind { kNoAdapter, kNotRunning, kFailed };

    explicit WifiProblem(const std::string& words, Kind whatKind = Kind::kFailed)
        : std::runtime_error(words), kind(whatKind) {}

    Kind ItsKind() const { return kind; }

private:
    Kind kind;
};

// A connection that the host has, or is making.
struct HostConnection {
    std::string adapter;  // by the Wi-Fi service's own names
    std::string profile;
    std::string network;  // as it is broadcast; empty where it is not known yet
};

// The system's Wi-Fi service, opened for one operation and used by one thread. Each operation
// throws WifiProblem when the service cannot do it, has ended, or does not answer.
class WifiService {
public:
    virtual ~WifiService() = default;

    // Has every adapter scan, also for the network `name` unless that is empty, and waits until
    // they have.
    virtual void Scan(const std::string& name) = 0;

    // What the adapters received last.
    virtual std::vector<AccessPoint> AccessPoints() = 0;

    virtual std::optional<JoinedAccessPoint> Joined() = 0;

    // Joins an access point's network and waits for the outcome up to `limit`. Without a pass
    // phrase a protected network is joined with what the system has saved of it. Nothing is saved.
    // When it fails, the host begins to connect as before.
    virtual void Join(const AccessPoint& accessPoint, std::string_view passPhrase,
                      std::chrono::seconds limit) = 0;

    // The connection that the host has, for Resume; nothing where there is none.
    virtual std::optional<HostConnection> Connection() = 0;
    // Begins to connect as before, unless the host does so already.
    virtual void Resume(const HostConnection& connection) = 0;
};

// Throws WifiProblem when there is no service or no adapter.
std::unique_ptr<WifiService> OpenWifiService();

}  // namespace Host
