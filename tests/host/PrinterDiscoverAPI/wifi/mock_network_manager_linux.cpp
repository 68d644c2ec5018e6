// SPDX-License-Identifier: Apache-2.0

#include "tests/host/PrinterDiscoverAPI/wifi/mock_network_manager_linux.h"

#include <signal.h>

#include <algorithm>

namespace HostTest {

namespace {

const std::string kService = "org.freedesktop.NetworkManager";
const std::string kManager = "/org/freedesktop/NetworkManager";
const std::string kMock = "org.freedesktop.DBus.Mock";

}  // namespace

MockNetworkManager::MockNetworkManager()
    : bus(sdbus::createSystemBusConnection()),
      manager(sdbus::createProxy(*bus, kService, kManager)) {}

template <class Result, class... Arguments>
Result MockNetworkManager::Ask(const std::string& method, const Arguments&... arguments) {
    Result result;
    manager->callMethod(method)
        .onInterface(kMock)
        .withArguments(arguments...)
        .storeResultsTo(result);
    return result;
}

template <class... Arguments>
void MockNetworkManager::Tell(const std::string& method, const Arguments&... arguments) {
    manager->callMethod(method).onInterface(kMock).withArguments(arguments...);
}

template <class Result>
Result MockNetworkManager::Property(const std::string& path, const std::string& interface,
                                    const std::string& name) {
    return sdbus::createProxy(*bus, kService, path)
        ->getProperty(name)
        .onInterface(interface)
        .get<Result>();
}

std::string MockNetworkManager::AddAdapter(const std::string& interface, std::int32_t state) {
    return Ask<std::string>("AddAdapter", interface, state);
}

std::string MockNetworkManager::AddEthernet(const std::string& interface) {
    return Ask<std::string>("AddEthernetDevice", interface, interface, kDisconnected);
}

std::string MockNetworkManager::Add(const std::string& adapter, const SimulatedPoint& point) {
    const std::vector<std::uint8_t> name(point.name.begin(), point.name.end());
    return Ask<std::string>("AddNetwork", adapter, point.seen, name, point.address, point.mode,
                            point.strength, point.flags, point.wpa, point.rsn);
}

void MockNetworkManager::SetPassPhrase(const std::string& point, const std::string& passPhrase,
                                       const std::string& outcome) {
    Tell("SetPassPhrase", point, passPhrase, outcome);
}

void MockNetworkManager::SetScans(const std::string& outcome) {
    Tell("SetScans", outcome);
}

void MockNetworkManager::SetScansOf(const std::string& adapter, const std::string& outcome) {
    Tell("SetScansOf", adapter, outcome);
}

void MockNetworkManager::SetOld(bool old) {
    Tell("SetOld", old);
}

void MockNetworkManager::SetProperty(const std::string& name, bool value) {
    Tell("SetProperty", kManager, kService, name, sdbus::Variant(value));
}

void MockNetworkManager::Save(const std::string& adapter, const std::string& id,
                              const std::string& name) {
    Tell("AddWiFiConnection", adapter, id, name, std::string("wpa-psk"));
}

void MockNetworkManager::RemovePoint(const std::string& adapter, const std::string& point) {
    Tell("RemoveAccessPoint", adapter, point);
}

std::vector<MockNetworkManager::Joining> MockNetworkManager::Joinings() {
    using Told = std::vector<sdbus::Struct<Settings, std::map<std::string, sdbus::Variant>>>;
    std::vector<Joining> joinings;
    for (const auto& joining : Ask<Told>("Joinings")) {
        joinings.push_back({std::get<0>(joining), std::get<1>(joining)});
    }
    return joinings;
}

std::size_t MockNetworkManager::Profiles() {
    return Property<std::vector<sdbus::ObjectPath>>(kManager + "/Settings", kService + ".Settings",
                                                    "Connections")
        .size();
}

std::size_t MockNetworkManager::ActiveConnections() {
    return Property<std::vector<sdbus::ObjectPath>>(kManager, kService, "ActiveConnections").size();
}

int MockNetworkManager::Calls(const std::string& path, const std::string& method) {
    std::vector<sdbus::Struct<std::uint64_t, std::string, std::vector<sdbus::Variant>>> calls;
    auto object = sdbus::createProxy(*bus, kService, path);
    object->callMethod("GetCalls").onInterface(kMock).storeResultsTo(calls);
    return static_cast<int>(std::count_if(calls.begin(), calls.end(), [&method](const auto& call) {
        return std::get<1>(call) == method;
    }));
}

pid_t MockNetworkManager::Process() {
    std::uint32_t process = 0;
    sdbus::createProxy(*bus, "org.freedesktop.DBus", "/org/freedesktop/DBus")
        ->callMethod("GetConnectionUnixProcessID")
        .onInterface("org.freedesktop.DBus")
        .withArguments(kService)
        .storeResultsTo(process);
    return static_cast<pid_t>(process);
}

void MockNetworkManager::Kill() {
    kill(Process(), SIGKILL);
}

}  // namespace HostTest
