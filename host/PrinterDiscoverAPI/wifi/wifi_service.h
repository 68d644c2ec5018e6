// SPDX-License-Identifier: Apache-2.0

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

// The time limits for a scan and for a join.
inline constexpr std::chrono::seconds kScanLimit{10};
inline constexpr std::chrono::seconds kJoinLimit{30};

// The reason why an operation failed, in words; UTF-8.
class WifiProblem : public std::runtime_error {
public:
    // What the problem means for the host's Wi-Fi as a whole.
    enum class Kind { kNoAdapter, kNotRunning, kFailed };

    explicit WifiProblem(const std::string& words, Kind whatKind = Kind::kFailed)
        : std::runtime_error(words), kind(whatKind) {}

    Kind ItsKind() const { return kind; }

private:
    Kind kind;
};

// A connection that the host has or is establishing.
struct HostConnection {
    std::string adapter;  // the Wi-Fi service's name
    std::string profile;
    std::string network;  // as broadcast; empty while not known
};

// The system's Wi-Fi service, opened for one operation and used by one thread. Each operation
// throws WifiProblem when the service cannot perform it, has ended, or does not answer.
class WifiService {
public:
    virtual ~WifiService() = default;

    // Starts a scan on every adapter, also for the network `name` unless that is empty, and waits
    // for the scans.
    virtual void Scan(const std::string& name) = 0;

    // The access points of the adapters' last scans.
    virtual std::vector<AccessPoint> AccessPoints() = 0;

    virtual std::optional<JoinedAccessPoint> Joined() = 0;

    // Joins an access point's network and waits up to `limit` for the outcome. Without a pass
    // phrase, a protected network is joined with the secret that the system has saved. Saves
    // nothing. On failure the host starts to return to its former connection.
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
