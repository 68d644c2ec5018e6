#pragma once

#include <sdbus-c++/sdbus-c++.h>

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "host/PrinterDiscoverAPI/wifi/linux/bus_use_linux.h"
#include "host/PrinterDiscoverAPI/wifi/wifi_service.h"

namespace Host {

using Properties = std::map<std::string, sdbus::Variant>;
using ConnectionSettings = std::map<std::string, Properties>;

// The value of a property, or `fallback` when it is missing or of another type.
template <class T>
T ValueOr(const Properties& properties, const char* name, T fallback) {
    const auto found = properties.find(name);
    if (found == properties.end() || !found->second.containsValueOfType<T>()) {
        return fallback;
    }
    return found->second.get<T>();
}

namespace NetworkManagerName {

inline constexpr const char* kService = "org.freedesktop.NetworkManager";
inline constexpr const char* kDevice = "org.freedesktop.NetworkManager.Device";
inline constexpr const char* kWireless = "org.freedesktop.NetworkManager.Device.Wireless";
inline constexpr const char* kAccessPoint = "org.freedesktop.NetworkManager.AccessPoint";
inline constexpr const char* kActive = "org.freedesktop.NetworkManager.Connection.Active";
inline constexpr const char* kManagerPath = "/org/freedesktop/NetworkManager";
inline constexpr const char* kSecuritySettings = "802-11-wireless-security";
inline constexpr const char* kSaved = "org.freedesktop.NetworkManager.Settings.Connection";

}  // namespace NetworkManagerName

// A path that says: no object. Never destroyed, as threads may still ask while the process ends.
inline const sdbus::ObjectPath& kNoObject = *new sdbus::ObjectPath("/");

// What a failed call says about the one who was called.
bool IsServiceLost(const sdbus::Error& error);   // it is gone or does not answer
bool IsNoSuchObject(const sdbus::Error& error);  // the object is gone, or cannot do that
bool IsDenied(const sdbus::Error& error);        // a policy forbids it to this user
std::string DescribeError(const sdbus::Error& error);
WifiProblem ProblemOf(const sdbus::Error& error);

// NetworkManager as seen through a connection of its own to the system bus; for one thread. Its
// operations throw sdbus::Error, and none takes longer than a few seconds.
class NetworkManager {
public:
    using Clock = std::chrono::steady_clock;

    // How long each call may take.
    static constexpr std::chrono::seconds kCallLimit{5};

    // Throws WifiProblem when there is no bus.
    NetworkManager();
    ~NetworkManager();
    NetworkManager(const NetworkManager&) = delete;
    NetworkManager& operator=(const NetworkManager&) = delete;

    std::unique_ptr<sdbus::IProxy> Object(const std::string& path) const;
    std::unique_ptr<sdbus::IProxy> Manager() const;
    Properties PropertiesOf(const std::string& path, const std::string& interface) const;

    // Delivers signals; returns when some were delivered, and at `until` at the latest.
    void AwaitSignals(Clock::time_point until) const;

private:
    bool DeliverSignals() const;

    BusUse use;
    std::unique_ptr<sdbus::IConnection> bus;
};

}  // namespace Host
