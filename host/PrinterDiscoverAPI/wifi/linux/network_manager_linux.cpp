// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterDiscoverAPI/wifi/linux/network_manager_linux.h"

#include <poll.h>
#include <time.h>

#include <algorithm>
#include <string_view>

namespace Host {

namespace {

constexpr const char* kPropertiesInterface = "org.freedesktop.DBus.Properties";

constexpr std::string_view kBusError = "org.freedesktop.DBus.Error.";
constexpr std::string_view kSystemError = "System.Error.";

// The last part of an error's name if the error comes from the bus itself.
std::string_view BusErrorOf(const sdbus::Error& error) {
    const std::string_view name = error.getName();
    return name.starts_with(kBusError) ? name.substr(kBusError.size()) : std::string_view();
}

bool IsOneOf(std::string_view name, std::initializer_list<std::string_view> names) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

// The first line of the service's error text; further lines are not for users.
std::string MessageOf(const sdbus::Error& error) {
    return error.getMessage().substr(0, error.getMessage().find('\n'));
}

bool IsNotRunning(const sdbus::Error& error) {
    return IsOneOf(BusErrorOf(error), {"ServiceUnknown", "NameHasNoOwner"}) ||
           BusErrorOf(error).starts_with("Spawn.");
}

bool IsNoAnswer(const sdbus::Error& error) {
    return IsOneOf(BusErrorOf(error), {"NoReply", "Timeout", "TimedOut"});
}

bool IsBusLost(const sdbus::Error& error) {
    return BusErrorOf(error) == "Disconnected" || error.getName().starts_with(kSystemError);
}

}  // namespace

bool IsDenied(const sdbus::Error& error) {
    return IsOneOf(BusErrorOf(error), {"AccessDenied", "AuthFailed"}) ||
           error.getName().ends_with(".PermissionDenied") ||
           error.getName().ends_with(".NotAuthorized");
}

bool IsServiceLost(const sdbus::Error& error) {
    return IsNotRunning(error) || IsNoAnswer(error) || IsBusLost(error);
}

bool IsNoSuchObject(const sdbus::Error& error) {
    return BusErrorOf(error).starts_with("Unknown");
}

std::string DescribeError(const sdbus::Error& error) {
    if (IsNotRunning(error)) {
        return "NetworkManager is not running";
    }
    if (IsNoAnswer(error)) {
        return "NetworkManager has ended or does not answer";
    }
    if (IsBusLost(error)) {
        return "the connection to the system bus was lost: " + MessageOf(error);
    }
    if (IsDenied(error)) {
        return "NetworkManager does not allow it: " + MessageOf(error);
    }
    return "NetworkManager says: " + MessageOf(error);
}

WifiProblem ProblemOf(const sdbus::Error& error) {
    return WifiProblem(DescribeError(error), IsNotRunning(error) ? WifiProblem::Kind::kNotRunning
                                                                 : WifiProblem::Kind::kFailed);
}

NetworkManager::NetworkManager() {
    try {
        bus = sdbus::createSystemBusConnection();
        bus->setMethodCallTimeout(kCallLimit);
        use.Of(bus->getEventLoopPollData().fd);
    } catch (const sdbus::Error& error) {
        throw WifiProblem("the system bus cannot be reached: " + MessageOf(error),
                          WifiProblem::Kind::kNotRunning);
    }
}

NetworkManager::~NetworkManager() {
    use.Of(-1);
}

std::unique_ptr<sdbus::IProxy> NetworkManager::Object(const std::string& path) const {
    return sdbus::createProxy(*bus, NetworkManagerName::kService, path);
}

std::unique_ptr<sdbus::IProxy> NetworkManager::Manager() const {
    return Object(NetworkManagerName::kManagerPath);
}

Properties NetworkManager::PropertiesOf(const std::string& path,
                                        const std::string& interface) const {
    Properties properties;
    Object(path)
        ->callMethod("GetAll")
        .onInterface(kPropertiesInterface)
        .withArguments(interface)
        .storeResultsTo(properties);
    return properties;
}

bool NetworkManager::DeliverSignals() const {
    bool delivered = false;
    while (bus->processPendingRequest()) {
        delivered = true;
    }
    return delivered;
}

void NetworkManager::AwaitSignals(Clock::time_point until) const {
    if (DeliverSignals()) {
        return;
    }
    const auto left =
        std::max(std::chrono::nanoseconds(until - Clock::now()), std::chrono::nanoseconds(0));
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(left);
    const timespec limit{seconds.count(), (left - seconds).count()};
    const auto input = bus->getEventLoopPollData();
    pollfd descriptor{input.fd, input.events, 0};
    // The result does not matter: the caller checks its own state and the clock.
    ppoll(&descriptor, 1, &limit, nullptr);
    DeliverSignals();
}

}  // namespace Host
