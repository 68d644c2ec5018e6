// SPDX-License-Identifier: Apache-2.0

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

// The path that means "no object". Never destroyed, because threads may use it while the process
// ends.
inline const sdbus::ObjectPath& kNoObject = *new sdbus::ObjectPath("/");

// Classifies the error of a failed call.
bool IsServiceLost(const sdbus::Error& error);   // the service is gone or does not answer
bool IsNoSuchObject(const sdbus::Error& error);  // the object is gone, or lacks the operation
bool IsDenied(const sdbus::Error& error);        // a policy forbids it to this user
std::string DescribeError(const sdbus::Error& error);
WifiProblem ProblemOf(const sdbus::Error& error);

// NetworkManager, through a separate connection to the system bus; for one thread. Operations throw
// sdbus::Error and take at most a few seconds.
class NetworkManager {
public:
    using Clock = std::chrono::steady_clock;

    // The time limit of each call.
    static constexpr std::chrono::seconds kCallLimit{5};

    // Throws WifiProblem when there is no bus.
    NetworkManager();
    ~NetworkManager();
    NetworkManager(const NetworkManager&) = delete;
    NetworkManager& operator=(const NetworkManager&) = delete;

    std::unique_ptr<sdbus::IProxy> Object(const std::string& path) const;
    std::unique_ptr<sdbus::IProxy> Manager() const;
    Properties PropertiesOf(const std::string& path, const std::string& interface) const;

    // Waits for signals and delivers them. Returns after a delivery, at the latest at `until`.
    void AwaitSignals(Clock::time_point until) const;

private:
    bool DeliverSignals() const;

    BusUse use;
    std::unique_ptr<sdbus::IConnection> bus;
};

}  // namespace Host
