#pragma once

#include <sdbus-c++/sdbus-c++.h>

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

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

inline const std::string kService = "org.freedesktop.NetworkManager";
inline const std::string kDevice = kService + ".Device";
inline const std::string kWireless = kService + ".Device.Wireless";
inline const std::string kAccessPoint = kService + ".AccessPoint";
inline const std::string kActive = kService + ".Connection.Active";
inline const std::string kSaved = kService + ".Settings.Connection";

}  // namespace NetworkManagerName

// A path that says: no object.
inline const sdbus::ObjectPath kNoObject = "/";

// What a failed call says about the one who was called.
bool IsServiceLost(const sdbus::Error& error);   // it is gone or does not answer
bool IsNoSuchObject(const sdbus::Error& error);  // the object is gone, or cannot do that
std::string DescribeError(const sdbus::Error& error);

// NetworkManager as seen through a connection of its own to the system bus; for one thread. Its
// operations throw sdbus::Error, and none takes longer than a few seconds.
class NetworkManager {
public:
    using Clock = std::chrono::steady_clock;

    // Throws WifiProblem when there is no bus.
    NetworkManager();

    std::unique_ptr<sdbus::IProxy> Object(const std::string& path) const;
    std::unique_ptr<sdbus::IProxy> Manager() const;
    Properties PropertiesOf(const std::string& path, const std::string& interface) const;

    // Delivers signals; returns when some were delivered, and at `until` at the latest.
    void AwaitSignals(Clock::time_point until) const;

private:
    bool DeliverSignals() const;

    std::unique_ptr<sdbus::IConnection> bus;
};

}  // namespace Host
