// SPDX-License-Identifier: Apache-2.0

#include <time.h>

#include <algorithm>
#include <atomic>
#include <cctype>

#include "base/text/utf8.h"
#include "host/PrinterDiscoverAPI/diagnostics.h"
#include "host/PrinterDiscoverAPI/wifi/linux/activation_linux.h"
#include "host/PrinterDiscoverAPI/wifi/linux/network_manager_linux.h"
#include "host/PrinterDiscoverAPI/wifi/linux/new_profile_linux.h"
#include "host/PrinterDiscoverAPI/wifi/network_name.h"
#include "host/PrinterDiscoverAPI/wifi/undertaking.h"
#include "host/PrinterDiscoverAPI/wifi/wifi_service.h"

namespace Host {

namespace {

using namespace NetworkManagerName;
using Clock = NetworkManager::Clock;
using Bytes = std::vector<std::uint8_t>;

constexpr const char* kWirelessSettings = "802-11-wireless";

constexpr std::uint32_t kWifiDevice = 2;

enum DeviceState : std::uint32_t {
    kUnmanaged = 10,
    kUnavailable = 20,
    kDisconnected = 30,
    kActivated = 100
};

// States of a connection: being established, then established; a connection that is about to end
// has a higher state.
constexpr std::uint32_t kConnected = 2;

enum AccessPointMode : std::uint32_t { kUnknownMode = 0, kInfrastructure = 2 };

// Flags of an access point: whether it is protected, and its key management.
constexpr std::uint32_t kPrivacy = 1;
enum KeyManagement : std::uint32_t {
    kPsk = 0x100,
    kAccount = 0x200,
    kSae = 0x400,
    kOwe = 0x800,
    kAccountSuiteB = 0x2000
};

// How often the state is checked while a scan runs.
constexpr std::chrono::milliseconds kLookAgain{100};
// How long, and how often at most, a hidden network is searched for.
constexpr std::chrono::seconds kSearchLimit{15};
constexpr std::chrono::milliseconds kAskAgain{500};
// If the service is busy, the results of a scan that ended this recently are used.
constexpr std::chrono::seconds kFresh{10};
constexpr std::int64_t kNoScanTime = -2;

struct Adapter {
    std::string path;
    std::string interfaceName;
    std::uint32_t state;
};

// The service's reply to a scan request. It is busy during a scan and shortly after.
enum class ScanReply { kAccepted, kBusy, kDenied };

// A requested scan.
struct ScanWatch {
    std::string adapter;
    std::int64_t lastBefore;
    ScanReply reply;
};

// Reports forbidden scans once, until they are allowed on every adapter, because scans are
// requested repeatedly.
void ReportDenied(const std::optional<std::string>& denial) {
    static std::atomic<bool> reported = false;
    if (!denial) {
        reported = false;
    } else if (!reported.exchange(true)) {
        Report(LOG_LEVEL_WARNING,
               L"no fresh scan, the networks are those last seen: " + Base::FromUtf8(*denial),
               L"PrinterWifiAPI");
    }
}

std::string TextOf(const Bytes& bytes) {
    return std::string(bytes.begin(), bytes.end());
}

// The service gives the times of scans in milliseconds since the system started.
std::int64_t SystemMilliseconds() {
    timespec now{};
    clock_gettime(CLOCK_BOOTTIME, &now);
    return now.tv_sec * 1000 + now.tv_nsec / 1'000'000;
}

unsigned ProtectionOf(const Properties& properties) {
    const auto wpa = ValueOr<std::uint32_t>(properties, "WpaFlags", 0);
    const auto rsn = ValueOr<std::uint32_t>(properties, "RsnFlags", 0);
    unsigned protection = 0;
    protection |= (wpa & kPsk) != 0 ? kWpaPersonal : 0U;
    protection |= (rsn & kPsk) != 0 ? kWpa2Personal : 0U;
    protection |= ((wpa | rsn) & kSae) != 0 ? kWpa3Personal : 0U;
    protection |= ((wpa | rsn) & (kAccount | kAccountSuiteB)) != 0 ? kEnterprise : 0U;
    protection |= ((wpa | rsn) & kOwe) != 0 ? kOpportunistic : 0U;
    const bool isPrivate = (ValueOr<std::uint32_t>(properties, "Flags", 0) & kPrivacy) != 0;
    return protection == 0 && isPrivate ? static_cast<unsigned>(kWep) : protection;
}

bool IsInfrastructure(const Properties& properties) {
    const auto mode = ValueOr<std::uint32_t>(properties, "Mode", kUnknownMode);
    return mode == kUnknownMode || mode == kInfrastructure;
}

std::string NameOf(const Properties& accessPoint) {
    return std::string(BroadcastName(TextOf(ValueOr<Bytes>(accessPoint, "Ssid", {}))));
}

AccessPoint ToAccessPoint(const Properties& properties) {
    AccessPoint accessPoint;
    accessPoint.name = NameOf(properties);
    accessPoint.quality = ValueOr<std::uint8_t>(properties, "Strength", 0);
    accessPoint.protection = ProtectionOf(properties);
    accessPoint.infrastructure = IsInfrastructure(properties);
    return accessPoint;
}

// The settings for one connection, which the service does not reuse by itself; without the pass
// phrase.
ConnectionSettings SettingsFor(const AccessPoint& accessPoint, bool hasPassPhrase) {
    ConnectionSettings settings;
    const std::string id = Base::ToUtf8(NetworkNameText(accessPoint.name));
    settings["connection"] = {{"id", sdbus::Variant(id)},
                              {"type", sdbus::Variant(std::string(kWirelessSettings))},
                              {"autoconnect", sdbus::Variant(false)}};
    const Bytes name(accessPoint.name.begin(), accessPoint.name.end());
    settings[kWirelessSettings] = {{"ssid", sdbus::Variant(name)},
                                   {"mode", sdbus::Variant(std::string("infrastructure"))}};
    std::string keyManagement;
    if (hasPassPhrase) {
        const bool needsSae = (accessPoint.protection & (kWpaPersonal | kWpa2Personal)) == 0;
        keyManagement = needsSae ? "sae" : "wpa-psk";
    } else if ((accessPoint.protection & kOpportunistic) != 0) {
        keyManagement = "owe";
    }
    if (!keyManagement.empty()) {
        settings[kSecuritySettings]["key-mgmt"] = sdbus::Variant(keyManagement);
        settings[kWirelessSettings]["security"] = sdbus::Variant(std::string(kSecuritySettings));
    }
    return settings;
}

// Returns the result of `work`; turns a failed call into a WifiProblem.
template <class Work>
auto Translated(Work work) {
    try {
        return work();
    } catch (const sdbus::Error& error) {
        throw ProblemOf(error);
    }
}

// NetworkManager's Wi-Fi.
class NetworkManagerWifi : public WifiService {
public:
    NetworkManagerWifi() {
        Translated([this] { FindAdapters(); });
        if (adapters.empty()) {
            throw WifiProblem("the host has no Wi-Fi adapter", WifiProblem::Kind::kNoAdapter);
        }
    }

    void Scan(const std::string& name) override {
        Translated([&] {
            RequireRadio();
            if (name.empty()) {
                AwaitScans(RequestScans(name), Clock::now() + kScanLimit);
            } else {
                Search(name);
            }
        });
    }

    std::vector<AccessPoint> AccessPoints() override {
        return Translated([this] { return FindAccessPoints(); });
    }

    std::optional<JoinedAccessPoint> Joined() override {
        return Translated([this] { return FindJoined(); });
    }

    void Join(const AccessPoint& accessPoint, std::string_view passPhrase,
              std::chrono::seconds limit) override {
        Translated([&] { Activate(accessPoint, passPhrase, Clock::now() + limit); });
    }

    std::optional<HostConnection> Connection() override {
        return Translated([this] { return FindConnection(); });
    }

    void Resume(const HostConnection& connection) override {
        Translated([&] { ConnectAsBefore(connection); });
    }

private:
    void FindAdapters() {
        std::vector<sdbus::ObjectPath> devices;
        manager.Manager()->callMethod("GetDevices").onInterface(kService).storeResultsTo(devices);
        for (const sdbus::ObjectPath& path : devices) {
            const auto properties = PropertiesUnlessGone(path, kDevice);
            if (properties && ValueOr<std::uint32_t>(*properties, "DeviceType", 0) == kWifiDevice) {
                adapters.push_back({path, ValueOr<std::string>(*properties, "Interface", {}),
                                    ValueOr<std::uint32_t>(*properties, "State", 0)});
            }
        }
    }

    // Adapters and access points may disappear at any time.
    std::optional<Properties> PropertiesUnlessGone(const std::string& path,
                                                   const std::string& interface) const {
        try {
            return manager.PropertiesOf(path, interface);
        } catch (const sdbus::Error& error) {
            if (IsNoSuchObject(error)) {
                return std::nullopt;
            }
            throw;
        }
    }

    void RequireRadio() const {
        const auto properties = manager.PropertiesOf(manager.Manager()->getObjectPath(), kService);
        if (!ValueOr(properties, "WirelessHardwareEnabled", true)) {
            throw WifiProblem("Wi-Fi is switched off by the host's hardware");
        }
        if (!ValueOr(properties, "WirelessEnabled", true)) {
            throw WifiProblem("Wi-Fi is switched off");
        }
        if (std::none_of(adapters.begin(), adapters.end(), IsUsable)) {
            const Adapter& adapter = adapters.front();
            throw WifiProblem(adapter.interfaceName +
                              (adapter.state == kUnmanaged
                                   ? " is not managed by NetworkManager"
                                   : " is not ready; it may be switched off, or its link down"));
        }
    }

    static bool IsUsable(const Adapter& adapter) { return adapter.state >= kDisconnected; }

    std::int64_t LastScan(const std::string& adapter) const {
        const auto properties = PropertiesUnlessGone(adapter, kWireless);
        return properties ? ValueOr<std::int64_t>(*properties, "LastScan", kNoScanTime)
                          : kNoScanTime;
    }

    // While another scan runs, the service drops a scan with a name and reports only the end of the
    // other: request it again until the network is in range.
    void Search(const std::string& name) const {
        const auto deadline = Clock::now() + kSearchLimit;
        for (;;) {
            const auto next = std::min(deadline, Clock::now() + kAskAgain);
            const std::vector<ScanWatch> watches = RequestScans(name);
            AwaitScans(watches, deadline);
            if (std::all_of(watches.begin(), watches.end(), IsDenied) || IsInSight(name)) {
                return;
            }
            while (Clock::now() < next) {
                Undertaking::GoOn();
                manager.AwaitSignals(std::min(next, Clock::now() + kLookAgain));
            }
            if (Clock::now() >= deadline) {
                return;
            }
        }
    }

    bool IsInSight(const std::string& name) const {
        const std::vector<AccessPoint> found = FindAccessPoints();
        return std::any_of(found.begin(), found.end(), [&](const AccessPoint& one) {
            return one.name == name || Base::ToUtf8(NetworkNameText(one.name)) == name;
        });
    }

    std::vector<ScanWatch> RequestScans(const std::string& name) const {
        Properties options;
        if (!name.empty() && name.size() <= kLongestNetworkName) {
            options["ssids"] = sdbus::Variant(std::vector<Bytes>{Bytes(name.begin(), name.end())});
        }
        std::vector<ScanWatch> watches;
        for (const Adapter& adapter : adapters) {
            if (IsUsable(adapter)) {
                const std::int64_t before = LastScan(adapter.path);
                watches.push_back({adapter.path, before, RequestScan(adapter.path, options)});
            }
        }
        if (std::all_of(watches.begin(), watches.end(), IsAccepted)) {
            ReportDenied(std::nullopt);
        }
        return watches;
    }

    static bool IsAccepted(const ScanWatch& watch) { return watch.reply == ScanReply::kAccepted; }
    static bool IsDenied(const ScanWatch& watch) { return watch.reply == ScanReply::kDenied; }

    ScanReply RequestScan(const std::string& adapter, const Properties& options) const {
        try {
            manager.Object(adapter)
                ->callMethod("RequestScan")
                .onInterface(kWireless)
                .withArguments(options);
            return ScanReply::kAccepted;
        } catch (const sdbus::Error& error) {
            if (IsServiceLost(error)) {
                throw;
            }
            if (!Host::IsDenied(error)) {
                return ScanReply::kBusy;
            }
            ReportDenied(DescribeError(error));
            return ScanReply::kDenied;
        }
    }

    bool IsDone(const ScanWatch& watch) const {
        const std::int64_t last = LastScan(watch.adapter);
        const std::int64_t freshSince =
            SystemMilliseconds() - std::chrono::milliseconds(kFresh).count();
        return watch.reply == ScanReply::kDenied || last == kNoScanTime ||
               last != watch.lastBefore || (watch.reply == ScanReply::kBusy && last >= freshSince);
    }

    void AwaitScans(std::vector<ScanWatch> watches, Clock::time_point deadline) const {
        for (;;) {
            std::erase_if(watches, [this](const ScanWatch& watch) { return IsDone(watch); });
            Undertaking::GoOn();
            const auto now = Clock::now();
            if (watches.empty() || now >= deadline) {
                return;
            }
            manager.AwaitSignals(std::min(deadline, now + kLookAgain));
        }
    }

    std::vector<AccessPoint> FindAccessPoints() const {
        std::vector<AccessPoint> found;
        for (const Adapter& adapter : adapters) {
            std::vector<sdbus::ObjectPath> paths;
            manager.Object(adapter.path)
                ->callMethod("GetAllAccessPoints")
                .onInterface(kWireless)
                .storeResultsTo(paths);
            for (const sdbus::ObjectPath& path : paths) {
                if (const auto properties = PropertiesUnlessGone(path, kAccessPoint)) {
                    found.push_back(ToAccessPoint(*properties));
                    found.back().adapter = adapter.path;
                    found.back().identity = path;
                }
            }
        }
        return found;
    }

    std::optional<JoinedAccessPoint> FindJoined() const {
        for (const Adapter& adapter : adapters) {
            if (adapter.state != kActivated) {
                continue;
            }
            const auto properties =
                PropertiesUnlessGone(ActiveAccessPoint(adapter.path), kAccessPoint);
            if (properties && IsInfrastructure(*properties) && !NameOf(*properties).empty()) {
                return JoinedAccessPoint{NameOf(*properties),
                                         ValueOr<std::string>(*properties, "HwAddress", {}),
                                         Base::FromUtf8(adapter.interfaceName)};
            }
        }
        return std::nullopt;
    }

    std::optional<HostConnection> FindConnection() const {
        for (const Adapter& adapter : adapters) {
            if (auto connection = ConnectionOf(adapter.path)) {
                return connection;
            }
        }
        return std::nullopt;
    }

    // A connection that is about to end does not count.
    std::optional<HostConnection> ConnectionOf(const std::string& adapter) const {
        const auto device = PropertiesUnlessGone(adapter, kDevice).value_or(Properties());
        const auto active = ValueOr(device, "ActiveConnection", kNoObject);
        const auto properties = PropertiesUnlessGone(active, kActive).value_or(Properties());
        const auto profile = ValueOr(properties, "Connection", kNoObject);
        if (profile == kNoObject ||
            ValueOr<std::uint32_t>(properties, "State", kConnected) > kConnected) {
            return std::nullopt;
        }
        const auto accessPoint = PropertiesUnlessGone(ActiveAccessPoint(adapter), kAccessPoint);
        return HostConnection{adapter, profile, NameOf(accessPoint.value_or(Properties()))};
    }

    void ConnectAsBefore(const HostConnection& connection) const {
        const auto now = ConnectionOf(connection.adapter);
        if (now && now->profile == connection.profile) {
            return;
        }
        if (!MayBeInRange(connection)) {
            throw WifiProblem("the network " + connection.network + " is not in range");
        }
        try {
            manager.Manager()
                ->callMethod("ActivateConnection")
                .onInterface(kService)
                .withArguments(sdbus::ObjectPath(connection.profile),
                               sdbus::ObjectPath(connection.adapter), kNoObject);
        } catch (const sdbus::Error& error) {
            // A temporary profile is deleted with its connection.
            if (IsServiceLost(error) || !JoinAnew(connection)) {
                throw;
            }
        }
    }

    // The service would leave the current network even for a network that is not in range. A hidden
    // network may be any access point without a name.
    bool MayBeInRange(const HostConnection& connection) const {
        const std::vector<AccessPoint> inRange = FindAccessPoints();
        return connection.network.empty() ||
               std::any_of(inRange.begin(), inRange.end(), [&](const AccessPoint& one) {
                   return one.adapter == connection.adapter &&
                          (one.name == connection.network || one.name.empty());
               });
    }

    // Starts to join the network of a connection whose profile is gone; works only for an open
    // network.
    bool JoinAnew(const HostConnection& connection) const {
        for (const AccessPoint& one : FindAccessPoints()) {
            if (one.adapter == connection.adapter && one.name == connection.network &&
                IsOpen(one)) {
                AddAndActivate({SettingsFor(one, false),
                                {},
                                sdbus::ObjectPath(one.adapter),
                                sdbus::ObjectPath(one.identity)},
                               ProfileLife::kVolatile);
                return true;
            }
        }
        return false;
    }

    static bool IsOpen(const AccessPoint& accessPoint) {
        return (accessPoint.protection & ~kOpportunistic) == 0;
    }

    // Ask the adapter itself or, if it does not tell, its connection.
    sdbus::ObjectPath ActiveAccessPoint(const std::string& adapter) const {
        const auto wireless = PropertiesUnlessGone(adapter, kWireless).value_or(Properties());
        auto own = ValueOr(wireless, "ActiveAccessPoint", kNoObject);
        if (own != kNoObject) {
            return own;
        }
        const auto device = PropertiesUnlessGone(adapter, kDevice).value_or(Properties());
        const auto connection = ValueOr(device, "ActiveConnection", kNoObject);
        return ValueOr(PropertiesUnlessGone(connection, kActive).value_or(Properties()),
                       "SpecificObject", kNoObject);
    }

    void Activate(const AccessPoint& accessPoint, std::string_view passPhrase,
                  Clock::time_point deadline) const {
        RequireRadio();
        const auto before = ConnectionOf(accessPoint.adapter);
        try {
            Attempt(accessPoint, passPhrase, deadline);
        } catch (const sdbus::Error& error) {
            if (!IsServiceLost(error)) {
                GoBackTo(before);
            }
            throw;
        } catch (const WifiProblem&) {
            GoBackTo(before);
            throw;
        }
    }

    // Called after an attempt to join another network. An error here is less important than the one
    // that made the attempt fail.
    void GoBackTo(const std::optional<HostConnection>& connection) const {
        try {
            if (connection && !ConnectionOf(connection->adapter)) {
                ConnectAsBefore(*connection);
            }
        } catch (const sdbus::Error& error) {
            Report(
                LOG_LEVEL_WARNING,
                L"could not rejoin the previous network: " + Base::FromUtf8(DescribeError(error)),
                L"PrinterWifiAPI");
        }
    }

    void Attempt(const AccessPoint& accessPoint, std::string_view passPhrase,
                 Clock::time_point deadline) const {
        const bool offersSae = (accessPoint.protection & kWpa3Personal) != 0;
        Activation activation(manager, accessPoint.adapter, offersSae);
        if (!passPhrase.empty() || IsOpen(accessPoint)) {
            activation.StartNew(SettingsFor(accessPoint, !passPhrase.empty()), passPhrase,
                                sdbus::ObjectPath(accessPoint.identity));
        } else if (const auto profile = SavedProfile(accessPoint)) {
            activation.StartSaved(*profile, accessPoint.identity);
        } else {
            throw WifiProblem("it needs a pass phrase, and the host has none saved");
        }
        activation.Await(deadline);
    }

    std::optional<sdbus::ObjectPath> SavedProfile(const AccessPoint& accessPoint) const {
        const auto device = manager.PropertiesOf(accessPoint.adapter, kDevice);
        for (const auto& path :
             ValueOr<std::vector<sdbus::ObjectPath>>(device, "AvailableConnections", {})) {
            ConnectionSettings settings;
            manager.Object(path)
                ->callMethod("GetSettings")
                .onInterface(kSaved)
                .storeResultsTo(settings);
            if (TextOf(ValueOr<Bytes>(settings[kWirelessSettings], "ssid", {})) ==
                accessPoint.name) {
                return path;
            }
        }
        return std::nullopt;
    }

    NetworkManager manager;
    std::vector<Adapter> adapters;
};

}  // namespace

std::unique_ptr<WifiService> OpenWifiService() {
    return std::make_unique<NetworkManagerWifi>();
}

}  // namespace Host
