// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <sdbus-c++/sdbus-c++.h>
#include <sys/types.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace HostTest {

// An access point of the simulated NetworkManager, in its own terms.
struct SimulatedPoint {
    std::string name;
    std::string address = "00:11:22:33:44:55";
    std::uint8_t strength = 50;
    std::uint32_t wpa = 0;
    std::uint32_t rsn = 0;
    std::uint32_t flags = 0;
    std::uint32_t mode = 2;
    std::string seen = "at once";  // or "scan", "asked"
};

inline constexpr std::uint32_t kPsk = 0x100;
inline constexpr std::uint32_t kAccount = 0x200;
inline constexpr std::uint32_t kSae = 0x400;
inline constexpr std::uint32_t kOwe = 0x800;
inline constexpr std::uint32_t kPrivacy = 1;
inline constexpr std::int32_t kUnmanaged = 10;
inline constexpr std::int32_t kUnavailable = 20;
inline constexpr std::int32_t kDisconnected = 30;

// The simulated NetworkManager on this program's own system bus, as a test tells it what to do.
class MockNetworkManager {
public:
    using Settings = std::map<std::string, std::map<std::string, sdbus::Variant>>;
    struct Joining {
        Settings settings;
        std::map<std::string, sdbus::Variant> options;
    };

    MockNetworkManager();

    // These return paths.
    std::string AddAdapter(const std::string& interface, std::int32_t state = kDisconnected);
    std::string AddEthernet(const std::string& interface);
    std::string Add(const std::string& adapter, const SimulatedPoint& point);

    void SetPassPhrase(const std::string& point, const std::string& passPhrase,
                       const std::string& outcome = "join");
    void SetScans(const std::string& outcome);
    void SetScansOf(const std::string& adapter, const std::string& outcome);
    void SetOld(bool old);
    void SetProperty(const std::string& name, bool value);
    void Save(const std::string& adapter, const std::string& id, const std::string& name);
    void RemovePoint(const std::string& adapter, const std::string& point);

    std::vector<Joining> Joinings();
    std::size_t Profiles();
    std::size_t ActiveConnections();
    int Calls(const std::string& path, const std::string& method);

    // The service's process.
    pid_t Process();
    void Kill();

private:
    template <class Result, class... Arguments>
    Result Ask(const std::string& method, const Arguments&... arguments);
    template <class... Arguments>
    void Tell(const std::string& method, const Arguments&... arguments);
    template <class Result>
    Result Property(const std::string& path, const std::string& interface, const std::string& name);

    std::unique_ptr<sdbus::IConnection> bus;
    std::unique_ptr<sdbus::IProxy> manager;
};

}  // namespace HostTest
