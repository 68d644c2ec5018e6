// SPDX-License-Identifier: Apache-2.0

#include "modules/driverless/discovery/dnssd_browser.h"

#include <avahi-client/client.h>
#include <avahi-client/lookup.h>
#include <avahi-client/publish.h>
#include <avahi-common/domain.h>
#include <avahi-common/error.h>
#include <avahi-common/simple-watch.h>
#include <avahi-common/strlst.h>
#include <avahi-common/timeval.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <condition_variable>
#include <map>
#include <mutex>
#include <thread>
#include <utility>

#include "base/text/ascii_case.h"
#include "modules/driverless/common/diagnostics.h"
#include "modules/driverless/common/guarded.h"
#include "modules/driverless/common/results.h"
#include "modules/driverless/discovery/asked_address.h"
#include "modules/driverless/discovery/host_network.h"
#include "modules/driverless/discovery/lookup_schedule.h"
#include "modules/driverless/discovery/service_lookups.h"
#include "modules/driverless/discovery/txt_entries.h"

namespace Driverless {

namespace {

using Clock = std::chrono::steady_clock;

// How long to wait for the end of a watch. It takes longer only if Avahi or D-Bus hangs; the watch
// then ends later by itself.
constexpr std::chrono::milliseconds kPatienceAtEnd{500};

// How long the host's networks are cached.
constexpr std::chrono::milliseconds kNetworksAreKnown{1000};

// The limit for lines about left-out addresses, so that a hostile host cannot fill the disk.
constexpr int kMaxLeftOutLines = 100;

// How often Avahi is asked whether it still answers.
constexpr unsigned kMillisecondsBetweenPings = 1000;

struct FreePoll {
    void operator()(AvahiSimplePoll* poll) const { avahi_simple_poll_free(poll); }
};
struct FreeClient {
    void operator()(AvahiClient* client) const { avahi_client_free(client); }
};

// Wakes the thread that waits for Avahi. A descriptor of its own: what Avahi has for it is not for
// other threads.
class Alarm {
public:
    ~Alarm() {
        if (file >= 0) {
            close(file);
        }
    }
    Alarm() = default;
    Alarm(const Alarm&) = delete;
    Alarm& operator=(const Alarm&) = delete;

    bool IsUsable() const { return file >= 0; }
    int File() const { return file; }
    void Ring() const { [[maybe_unused]] const int result = eventfd_write(file, 1); }
    void Silence() const {
        eventfd_t rings = 0;
        [[maybe_unused]] const int result = eventfd_read(file, &rings);
    }

private:
    const int file = eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
};

ServiceKind KindOf(const char* type) {
    for (const ServiceType& known : kServiceTypes) {
        if (avahi_domain_equal(type, known.name) != 0) {
            return known.kind;
        }
    }
    return ServiceKind::None;
}

std::map<std::string, std::string> TxtEntries(AvahiStringList* list) {
    std::map<std::string, std::string> entries;
    for (; list != nullptr; list = avahi_string_list_get_next(list)) {
        const void* const text = avahi_string_list_get_text(list);
        AddTxtEntry(entries, {static_cast<const char*>(text), avahi_string_list_get_size(list)});
    }
    return entries;
}

std::string AddressText(const AvahiAddress& address) {
    char text[AVAHI_ADDRESS_STR_MAX] = "";
    avahi_address_snprint(text, sizeof text, &address);
    return text;
}

DnssdEvent Failure(int result, std::string message) {
    return {DnssdEvent::Kind::Failed, {}, {}, result, std::move(message)};
}

DnssdEvent AvahiFailure(int error) {
    return Failure(kNoBrowsing, std::string("Avahi cannot be used: ") + avahi_strerror(error));
}

// Avahi gives the same error for a bus that is missing and for a bus without Avahi. Only the latter
// lets a client wait for it.
DnssdEvent ConnectFailure(const AvahiPoll* events, int error) {
    if (error != AVAHI_ERR_NO_DAEMON && error != AVAHI_ERR_DBUS_ERROR) {
        return AvahiFailure(error);
    }
    const std::unique_ptr<AvahiClient, FreeClient> waiting(
        avahi_client_new(events, AVAHI_CLIENT_NO_FAIL, nullptr, nullptr, &error));
    if (waiting == nullptr) {
        return Failure(kNoBus, "the system's D-Bus, and so Avahi, cannot be reached");
    }
    return Failure(kNoAvahi, "Avahi does not run: start avahi-daemon");
}

}  // namespace

// Everything of one watch. Avahi's objects belong to the thread in Run, and so do its callbacks.
class DnssdBrowser::Watch {
public:
    explicit Watch(Listener eventListener) : listener(std::move(eventListener)) {}

    // Looks up only that service.
    Watch(Listener eventListener, const ServiceId& lookedFor)
        : listener(std::move(eventListener)), only(lookedFor) {}

    void Run();

    // Ends the watch and waits up to kPatienceAtEnd for it.
    void Close();

    void Answered(const ServiceId& id);
    std::optional<Clock::time_point> WaitsSince() const;

private:
    enum class Signal { None, Interrupted, Close };

    static void ClientChanged(AvahiClient* client, AvahiClientState state, void* self);
    static void Browsed(AvahiServiceBrowser* browser, AvahiIfIndex interface,
                        AvahiProtocol protocol, AvahiBrowserEvent event, const char* name,
                        const char* type, const char* domain, AvahiLookupResultFlags flags,
                        void* self);
    static void ResolvedService(AvahiServiceResolver* resolver, AvahiIfIndex interface,
                                AvahiProtocol protocol, AvahiResolverEvent event, const char* name,
                                const char* type, const char* domain, const char* host,
                                const AvahiAddress* address, std::uint16_t port,
                                AvahiStringList* txt, AvahiLookupResultFlags flags, void* self);

    template <typename Function>
    void Guard(Function function) noexcept;
    template <typename Call>
    auto Asking(Call call);
    void WatchOn(AvahiSimplePoll* poll);
    void WatchUntilClosed(AvahiSimplePoll* poll);
    bool Iterate(AvahiSimplePoll* poll);
    bool Reconnect();
    bool Connect(AvahiClientFlags flags);
    void HearAlarm();
    void SetPing();
    void Ping();
    void StartBrowsing(AvahiClient* ofClient);
    std::unique_ptr<ServiceLookups> NewLookups();
    bool ResolveOnly(AvahiClient* ofClient);
    void Disconnect();
    void Announced(const ServiceId& id);
    void Progressed(AvahiClient* ofClient, AvahiBrowserEvent event);
    void Found(const ServiceId& id, Service service, bool byThisHost);
    bool IsAsked(const ServiceId& id, const std::string& address, bool byThisHost);
    void Gone(const ServiceId& id);
    void SetTimer(std::optional<Clock::time_point> time);
    void LookUp();
    void ReceiveLookups();
    void Refused(const ServiceId& id, const std::string& error);
    void SayRefused(const ServiceId& id, const std::string& error);
    void Send(Signal sent);
    Signal TakeSignal();

    const Listener listener;
    const std::optional<ServiceId> only;

    const AvahiPoll* events = nullptr;
    AvahiTimeout* timer = nullptr;
    AvahiTimeout* ping = nullptr;
    std::unique_ptr<AvahiClient, FreeClient> client;
    std::unique_ptr<ServiceLookups> lookups;
    bool browsing = false;
    int refusals = 0;  // consecutive ones; those of one moment are one
    Clock::time_point refusedUntil;
    bool saidRefused = false;
    int leftOutLines = 0;
    std::size_t unsettled = 0;
    LookupSchedule schedule;
    // The networks of one interface, cached for a moment: many services arrive on it at once.
    std::vector<OwnNetwork> networks;
    int networksOf = -1;
    Clock::time_point networksUntil;

    const Alarm alarm;
    std::atomic<Clock::duration> waitsSince{};  // zero: does not
    int askings = 0;                            // under way, one within the other
    std::mutex mutex;
    std::condition_variable changed;
    Signal signal = Signal::None;
    std::vector<ServiceId> answered;  // not yet passed to the schedule
    bool ended = false;
};

// Calls `function`. If memory runs out, the watch fails: no exception may pass through Avahi or
// leave a thread.
template <typename Function>
void DnssdBrowser::Watch::Guard(Function function) noexcept {
    try {
        try {
            function();
        } catch (const std::exception&) {
            listener(Failure(kNoBrowsing, kOutOfMemory));
        }
    } catch (const std::exception& exception) {
        ReportExhausted(exception);
    }
}

// Makes a call that may wait for Avahi. Each one is awaited on its own: one turn can make many, and
// an Avahi that answers each of them does not hang.
template <typename Call>
auto DnssdBrowser::Watch::Asking(Call call) {
    struct End {
        Watch& watch;
        ~End() {
            const bool within = --watch.askings > 0;
            watch.waitsSince = within ? Clock::now().time_since_epoch() : Clock::duration::zero();
        }
    };
    ++askings;
    const End end{*this};
    waitsSince = Clock::now().time_since_epoch();
    return call();
}

void DnssdBrowser::Watch::Run() {
    const std::unique_ptr<AvahiSimplePoll, FreePoll> poll(avahi_simple_poll_new());
    Guard([&] { WatchOn(poll.get()); });
    if (poll != nullptr) {
        Disconnect();
    }
    const std::lock_guard lock(mutex);
    ended = true;
    changed.notify_all();
}

void DnssdBrowser::Watch::WatchOn(AvahiSimplePoll* poll) {
    if (poll == nullptr || !alarm.IsUsable()) {
        listener(Failure(kNoBrowsing, "no memory or descriptor left for Avahi"));
        return;
    }
    events = avahi_simple_poll_get(poll);
    HearAlarm();
    if (Connect(AvahiClientFlags{})) {
        listener({DnssdEvent::Kind::Ready, {}, {}, 0, {}});
        SetPing();
        WatchUntilClosed(poll);
    }
}

void DnssdBrowser::Watch::WatchUntilClosed(AvahiSimplePoll* poll) {
    while (true) {
        const Signal taken = TakeSignal();
        if (taken == Signal::Close || (taken == Signal::Interrupted && !Reconnect())) {
            return;
        }
        if (!Iterate(poll)) {
            listener(AvahiFailure(AVAHI_ERR_FAILURE));
            return;
        }
    }
}

// One turn: waits for something to happen, and lets Avahi's client deal with it, which waits for
// Avahi's answers.
bool DnssdBrowser::Watch::Iterate(AvahiSimplePoll* poll) {
    if (avahi_simple_poll_prepare(poll, -1) < 0 || avahi_simple_poll_run(poll) < 0) {
        return errno == EINTR;
    }
    return Asking([poll] { return avahi_simple_poll_dispatch(poll); }) >= 0;
}

std::optional<Clock::time_point> DnssdBrowser::Watch::WaitsSince() const {
    const Clock::duration since = waitsSince;
    return since == Clock::duration::zero() ? std::nullopt
                                            : std::optional(Clock::time_point(since));
}

// It lasts as long as the poll.
void DnssdBrowser::Watch::HearAlarm() {
    events->watch_new(
        events, alarm.File(), AVAHI_WATCH_IN,
        [](AvahiWatch*, int, AvahiWatchEvent, void* self) {
            static_cast<Watch*>(self)->alarm.Silence();
        },
        this);
}

void DnssdBrowser::Watch::SetPing() {
    timeval when{};
    avahi_elapse_time(&when, kMillisecondsBetweenPings, 0);
    if (ping != nullptr) {
        events->timeout_update(ping, &when);
        return;
    }
    ping = events->timeout_new(
        events, &when,
        [](AvahiTimeout*, void* self) {
            static_cast<Watch*>(self)->Ping();
            static_cast<Watch*>(self)->SetPing();
        },
        this);
}

// Avahi tells nothing while nothing happens on the network, which is how it looks when it hangs. An
// entry group is the least that it can be asked for; whatever it answers will do.
void DnssdBrowser::Watch::Ping() {
    AvahiEntryGroup* const group = Asking([this] {
        return avahi_entry_group_new(
            client.get(), [](AvahiEntryGroup*, AvahiEntryGroupState, void*) {}, nullptr);
    });
    if (group != nullptr) {
        Asking([group] { return avahi_entry_group_free(group); });
    }
}

// Avahi may come back; D-Bus does not, for who was connected to it.
bool DnssdBrowser::Watch::Reconnect() {
    Disconnect();
    listener({DnssdEvent::Kind::Interrupted, {}, {}, 0, {}});
    return Connect(AVAHI_CLIENT_NO_FAIL);
}

void DnssdBrowser::Watch::Disconnect() {
    SetTimer(std::nullopt);
    lookups.reset();
    client.reset();
    schedule.Clear();
    browsing = false;
}

bool DnssdBrowser::Watch::Connect(AvahiClientFlags flags) {
    int error = 0;
    client.reset(
        Asking([&] { return avahi_client_new(events, flags, ClientChanged, this, &error); }));
    if (client != nullptr) {
        return true;
    }
    const bool again = (flags & AVAHI_CLIENT_NO_FAIL) != 0;
    listener(again ? Failure(kBusLost, "the system's D-Bus ended while printers were looked for")
                   : ConnectFailure(events, error));
    return false;
}

void DnssdBrowser::Watch::ClientChanged(AvahiClient* client, AvahiClientState state, void* self) {
    auto* const watch = static_cast<Watch*>(self);
    watch->Guard([&] {
        if (state == AVAHI_CLIENT_FAILURE) {
            watch->Send(Signal::Interrupted);
        } else if (state != AVAHI_CLIENT_CONNECTING && !watch->browsing) {
            watch->StartBrowsing(client);
        }
    });
}

void DnssdBrowser::Watch::StartBrowsing(AvahiClient* ofClient) {
    browsing = true;
    if (only) {
        if (!ResolveOnly(ofClient)) {
            listener(AvahiFailure(avahi_client_errno(ofClient)));
        }
        return;
    }
    lookups = NewLookups();
    unsettled = kServiceTypes.size();
    for (const ServiceType& type : kServiceTypes) {
        const auto* const browser = Asking([&] {
            return avahi_service_browser_new(ofClient, AVAHI_IF_UNSPEC, AVAHI_PROTO_INET, type.name,
                                             nullptr, AvahiLookupFlags{}, Browsed, this);
        });
        if (browser == nullptr) {
            listener(AvahiFailure(avahi_client_errno(ofClient)));
            return;
        }
    }
    // Avahi asks the network meanwhile.
    if (!Asking([this] { return lookups->Connect(); })) {
        listener(AvahiFailure(AVAHI_ERR_DBUS_ERROR));
    }
}

std::unique_ptr<ServiceLookups> DnssdBrowser::Watch::NewLookups() {
    const ServiceLookups::Listener whatBecame{
        [this](const ServiceId& id, Service service, bool byThisHost) {
            Found(id, std::move(service), byThisHost);
        },
        [this](const ServiceId& id, const std::string& error) { Refused(id, error); }};
    const auto onReady = [this] { Guard([this] { ReceiveLookups(); }); };
    return std::make_unique<ServiceLookups>(events, whatBecame, onReady);
}

void DnssdBrowser::Watch::Browsed(AvahiServiceBrowser* browser, AvahiIfIndex interface,
                                  AvahiProtocol, AvahiBrowserEvent event, const char* name,
                                  const char* type, const char* domain, AvahiLookupResultFlags,
                                  void* self) {
    auto* const watch = static_cast<Watch*>(self);
    AvahiClient* const ofClient = avahi_service_browser_get_client(browser);
    watch->Guard([&] {
        if (event == AVAHI_BROWSER_NEW) {
            watch->Announced({name, domain, KindOf(type), interface});
        } else if (event == AVAHI_BROWSER_REMOVE) {
            watch->Gone({name, domain, KindOf(type), interface});
        } else {
            watch->Progressed(ofClient, event);
        }
    });
}

void DnssdBrowser::Watch::Progressed(AvahiClient* ofClient, AvahiBrowserEvent event) {
    if (event == AVAHI_BROWSER_ALL_FOR_NOW && unsettled > 0) {
        if (--unsettled == 0) {
            listener({DnssdEvent::Kind::Settled, {}, {}, 0, {}});
        }
    } else if (event == AVAHI_BROWSER_FAILURE) {
        const int error = avahi_client_errno(ofClient);
        if (error != AVAHI_ERR_DISCONNECTED) {
            listener(AvahiFailure(error));
        }
    }
}

void DnssdBrowser::Watch::Announced(const ServiceId& id) {
    listener({DnssdEvent::Kind::Announced, id, {}, 0, {}});
    schedule.Announced(id, Clock::now());
    LookUp();
}

void DnssdBrowser::Watch::Gone(const ServiceId& id) {
    lookups->End(id);
    schedule.Gone(id, Clock::now());
    listener({DnssdEvent::Kind::Gone, id, {}, 0, {}});
    LookUp();
}

void DnssdBrowser::Watch::SetTimer(std::optional<Clock::time_point> time) {
    if (timer != nullptr) {
        events->timeout_free(timer);
        timer = nullptr;
    }
    if (time) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(*time - Clock::now());
        timeval when{};
        avahi_elapse_time(&when, left.count() < 0 ? 0 : static_cast<unsigned>(left.count()), 0);
        timer = events->timeout_new(
            events, &when,
            [](AvahiTimeout*, void* self) {
                auto* const due = static_cast<Watch*>(self);
                due->Guard([due] { due->LookUp(); });
            },
            this);
    }
}

// Begins and ends look-ups as the schedule says. An Avahi that is behind is asked for no more.
void DnssdBrowser::Watch::LookUp() {
    if (lookups->IsBehind()) {
        SetTimer(std::nullopt);
        return;
    }
    std::vector<ServiceId> told;
    {
        const std::lock_guard lock(mutex);
        told.swap(answered);
    }
    for (const ServiceId& id : told) {
        schedule.Answered(id);
    }
    const LookupSchedule::Work work = schedule.Advance(Clock::now());
    for (const ServiceId& id : work.end) {
        lookups->End(id);
    }
    for (const ServiceId& id : work.begin) {
        lookups->Begin(id);
    }
    SetTimer(work.next);
}

void DnssdBrowser::Watch::ReceiveLookups() {
    if (!lookups->Receive()) {
        Send(Signal::Interrupted);
    }
    LookUp();
}

void DnssdBrowser::Watch::Refused(const ServiceId& id, const std::string& error) {
    schedule.Refused(id, Clock::now());
    SayRefused(id, error);
}

bool DnssdBrowser::Watch::ResolveOnly(AvahiClient* ofClient) {
    return Asking([&] {
               return avahi_service_resolver_new(ofClient, only->interface, AVAHI_PROTO_INET,
                                                 only->name.c_str(), TypeName(only->kind),
                                                 only->domain.c_str(), AVAHI_PROTO_INET,
                                                 AvahiLookupFlags{}, ResolvedService, this);
           }) != nullptr;
}

// Reports a refusal once, and only after a second one: many services are refused for the same
// reason. The first refusal may only mean that Avahi is ending, which is reported separately.
void DnssdBrowser::Watch::SayRefused(const ServiceId& id, const std::string& error) {
    const std::string message = "Avahi does not look up " + id.name + "." + TypeName(id.kind) +
                                ", and is asked again: " + error;
    const auto now = Clock::now();
    if (now >= refusedUntil) {
        refusedUntil = now + kDelayAfterRefusal;
        ++refusals;
    }
    if (refusals > 1 && !std::exchange(saidRefused, true)) {
        ReportProblem(message);
    } else {
        ReportDetail(message);
    }
}

// Of the only service.
void DnssdBrowser::Watch::ResolvedService(AvahiServiceResolver*, AvahiIfIndex interface,
                                          AvahiProtocol, AvahiResolverEvent event, const char* name,
                                          const char* type, const char* domain, const char* host,
                                          const AvahiAddress* address, std::uint16_t port,
                                          AvahiStringList* txt, AvahiLookupResultFlags flags,
                                          void* self) {
    auto* const watch = static_cast<Watch*>(self);
    watch->Guard([&] {
        if (event != AVAHI_RESOLVER_FOUND) {
            watch->listener({DnssdEvent::Kind::Gone, *watch->only, {}, 0, {}});
            return;
        }
        watch->Found({name, domain, KindOf(type), interface},
                     {host == nullptr ? "" : host, address == nullptr ? "" : AddressText(*address),
                      port, TxtEntries(txt)},
                     (flags & AVAHI_LOOKUP_RESULT_LOCAL) != 0);
    });
}

// A service without an address cannot be used. Port 0 means that the name is reserved and the
// protocol not supported.
void DnssdBrowser::Watch::Found(const ServiceId& id, Service service, bool byThisHost) {
    if (lookups != nullptr) {
        lookups->End(id);
        schedule.Found(id, Clock::now());
        refusals = 0;
    }
    const bool asked =
        !service.address.empty() && service.port != 0 && IsAsked(id, service.address, byThisHost);
    const auto kind = asked ? DnssdEvent::Kind::Resolved : DnssdEvent::Kind::Gone;
    listener({kind, id, std::move(service), 0, {}});
}

bool DnssdBrowser::Watch::IsAsked(const ServiceId& id, const std::string& address,
                                  bool byThisHost) {
    const auto now = Clock::now();
    if (networksOf != id.interface || now >= networksUntil) {
        networks = NetworksOf(id.interface);
        networksOf = id.interface;
        networksUntil = now + kNetworksAreKnown;
    }
    const std::string reason = WhyNotAsked(address, networks, byThisHost);
    if (!reason.empty() && leftOutLines < kMaxLeftOutLines) {
        const bool last = ++leftOutLines == kMaxLeftOutLines;
        ReportDetail(id.name + "." + TypeName(id.kind) + " at " + address +
                     " is left out: " + reason + (last ? "; others are not reported" : ""));
    }
    return reason.empty();
}

void DnssdBrowser::Watch::Send(Signal sent) {
    const std::lock_guard lock(mutex);
    if (signal != Signal::Close) {
        signal = sent;
    }
    alarm.Ring();
}

DnssdBrowser::Watch::Signal DnssdBrowser::Watch::TakeSignal() {
    const std::lock_guard lock(mutex);
    return signal == Signal::Close ? signal : std::exchange(signal, Signal::None);
}

void DnssdBrowser::Watch::Answered(const ServiceId& id) {
    const std::lock_guard lock(mutex);
    answered.push_back(id);
}

void DnssdBrowser::Watch::Close() {
    Send(Signal::Close);
    std::unique_lock lock(mutex);
    changed.wait_for(lock, kPatienceAtEnd, [this] { return ended; });
}

DnssdBrowser::DnssdBrowser(Listener listener)
    : watch(std::make_shared<Watch>(std::move(listener))) {
    std::thread([own = watch] { own->Run(); }).detach();
}

DnssdBrowser::DnssdBrowser(Listener listener, const ServiceId& only)
    : watch(std::make_shared<Watch>(std::move(listener), only)) {
    std::thread([own = watch] { own->Run(); }).detach();
}

DnssdBrowser::~DnssdBrowser() {
    watch->Close();
}

void DnssdBrowser::Answered(const ServiceId& id) {
    watch->Answered(id);
}

std::optional<std::chrono::steady_clock::time_point> DnssdBrowser::WaitsSince() const {
    return watch->WaitsSince();
}

namespace {

// One look-up with its own browser.
struct Lookup {
    std::mutex mutex;
    std::condition_variable changed;
    std::optional<Service> service;
    bool ended = false;
};

}  // namespace

std::optional<Service> ResolveAgain(ServiceId id, std::chrono::milliseconds patience) {
    const auto lookup = std::make_shared<Lookup>();
    id.interface = AVAHI_IF_UNSPEC;  // it may have moved to another interface
    const auto take = [lookup](DnssdEvent event) {
        const bool found = event.kind == DnssdEvent::Kind::Resolved;
        const bool failed =
            event.kind == DnssdEvent::Kind::Failed || event.kind == DnssdEvent::Kind::Gone;
        if (found || failed) {
            const std::lock_guard lock(lookup->mutex);
            if (found) {
                lookup->service = std::move(event.service);
            }
            lookup->ended = true;
            lookup->changed.notify_all();
        }
    };
    const DnssdBrowser browser(take, id);
    std::unique_lock lock(lookup->mutex);
    lookup->changed.wait_for(lock, patience, [&] { return lookup->ended; });
    return lookup->service;
}

}  // namespace Driverless
