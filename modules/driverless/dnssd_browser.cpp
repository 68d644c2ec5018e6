#include "dnssd_browser.h"

#include <avahi-client/client.h>
#include <avahi-client/lookup.h>
#include <avahi-common/domain.h>
#include <avahi-common/error.h>
#include <avahi-common/malloc.h>
#include <avahi-common/thread-watch.h>

#include <condition_variable>
#include <map>
#include <mutex>
#include <thread>
#include <utility>

#include "results.h"
#include "text.h"

namespace Driverless {

namespace {

// How long the end of a watch is waited for. Only an Avahi or D-Bus that hangs takes longer, and
// then the watch ends by itself later.
constexpr std::chrono::milliseconds kPatienceAtEnd{500};

struct FreePoll {
    void operator()(AvahiThreadedPoll* poll) const { avahi_threaded_poll_free(poll); }
};
struct FreeClient {
    void operator()(AvahiClient* client) const { avahi_client_free(client); }
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
        char* key = nullptr;
        char* value = nullptr;
        std::size_t size = 0;
        if (avahi_string_list_get_pair(list, &key, &value, &size) != 0) {
            continue;
        }
        // The first of several entries with the same key counts.
        entries.emplace(LowerCase(key),
                        value == nullptr ? std::string() : std::string(value, size));
        avahi_free(key);
        avahi_free(value);
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
DnssdEvent ConnectFailure(AvahiThreadedPoll* poll, int error) {
    if (error != AVAHI_ERR_NO_DAEMON && error != AVAHI_ERR_DBUS_ERROR) {
        return AvahiFailure(error);
    }
    const std::unique_ptr<AvahiClient, FreeClient> waiting(avahi_client_new(
        avahi_threaded_poll_get(poll), AVAHI_CLIENT_NO_FAIL, nullptr, nullptr, &error));
    if (waiting == nullptr) {
        return Failure(kNoBus, "the system's D-Bus, by which Avahi is asked, cannot be reached");
    }
    return Failure(kNoAvahi, "Avahi does not run: start avahi-daemon");
}

}  // namespace

// Everything of one watch. Avahi's objects belong to the thread in Run, and between the start and
// the stop of the poll are touched under the poll's lock only, which Avahi's callbacks hold.
class DnssdBrowser::Watch {
public:
    explicit Watch(Listener eventListener) : listener(std::move(eventListener)) {}

    void Run();

    // Ends the watch, and waits a little for it.
    void Close();

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

    void WatchUntilClosed(AvahiThreadedPoll* poll);
    bool Connect(AvahiThreadedPoll* poll, AvahiClientFlags flags);
    void StartBrowsing(AvahiClient* ofClient);
    void Resolve(AvahiClient* ofClient, const ServiceId& id, AvahiProtocol protocol);
    void ForgetResolver(const ServiceId& id);
    void Send(Signal sent);
    Signal AwaitSignal();

    const Listener listener;

    std::unique_ptr<AvahiClient, FreeClient> client;
    bool browsing = false;
    std::size_t unsettled = 0;
    std::map<ServiceId, AvahiServiceResolver*> resolvers;

    std::mutex mutex;
    std::condition_variable changed;
    Signal signal = Signal::None;
    bool ended = false;
};

void DnssdBrowser::Watch::Run() {
    const std::unique_ptr<AvahiThreadedPoll, FreePoll> poll(avahi_threaded_poll_new());
    if (poll == nullptr) {
        listener(AvahiFailure(AVAHI_ERR_NO_MEMORY));
    } else if (Connect(poll.get(), AvahiClientFlags{})) {
        listener({DnssdEvent::Kind::Ready, {}, {}, 0, {}});
        if (avahi_threaded_poll_start(poll.get()) == 0) {
            WatchUntilClosed(poll.get());
            avahi_threaded_poll_stop(poll.get());
        } else {
            listener(AvahiFailure(AVAHI_ERR_FAILURE));
        }
        client.reset();
    }
    const std::lock_guard lock(mutex);
    ended = true;
    changed.notify_all();
}

void DnssdBrowser::Watch::WatchUntilClosed(AvahiThreadedPoll* poll) {
    while (AwaitSignal() == Signal::Interrupted) {
        avahi_threaded_poll_lock(poll);
        client.reset();
        resolvers.clear();
        browsing = false;
        listener({DnssdEvent::Kind::Interrupted, {}, {}, 0, {}});
        // Avahi may come back; D-Bus does not, for who was connected to it.
        const bool waiting = Connect(poll, AVAHI_CLIENT_NO_FAIL);
        avahi_threaded_poll_unlock(poll);
        if (!waiting) {
            return;
        }
    }
}

bool DnssdBrowser::Watch::Connect(AvahiThreadedPoll* poll, AvahiClientFlags flags) {
    int error = 0;
    client.reset(
        avahi_client_new(avahi_threaded_poll_get(poll), flags, ClientChanged, this, &error));
    if (client != nullptr) {
        return true;
    }
    const bool again = (flags & AVAHI_CLIENT_NO_FAIL) != 0;
    listener(again ? Failure(kBusLost, "the system's D-Bus ended while printers were looked for")
                   : ConnectFailure(poll, error));
    return false;
}

void DnssdBrowser::Watch::ClientChanged(AvahiClient* client, AvahiClientState state, void* self) {
    auto* const watch = static_cast<Watch*>(self);
    if (state == AVAHI_CLIENT_FAILURE) {
        watch->Send(Signal::Interrupted);
    } else if (state != AVAHI_CLIENT_CONNECTING && !watch->browsing) {
        watch->StartBrowsing(client);
    }
}

void DnssdBrowser::Watch::StartBrowsing(AvahiClient* ofClient) {
    browsing = true;
    unsettled = kServiceTypes.size();
    for (const ServiceType& type : kServiceTypes) {
        if (avahi_service_browser_new(ofClient, AVAHI_IF_UNSPEC, AVAHI_PROTO_INET, type.name,
                                      nullptr, AvahiLookupFlags{}, Browsed, this) == nullptr) {
            listener(AvahiFailure(avahi_client_errno(ofClient)));
            return;
        }
    }
}

void DnssdBrowser::Watch::Browsed(AvahiServiceBrowser* browser, AvahiIfIndex interface,
                                  AvahiProtocol protocol, AvahiBrowserEvent event, const char* name,
                                  const char* type, const char* domain, AvahiLookupResultFlags,
                                  void* self) {
    auto* const watch = static_cast<Watch*>(self);
    AvahiClient* const ofClient = avahi_service_browser_get_client(browser);
    if (event == AVAHI_BROWSER_NEW) {
        const ServiceId id{name, domain, KindOf(type), interface};
        watch->listener({DnssdEvent::Kind::Announced, id, {}, 0, {}});
        watch->Resolve(ofClient, id, protocol);
    } else if (event == AVAHI_BROWSER_REMOVE) {
        const ServiceId id{name, domain, KindOf(type), interface};
        watch->ForgetResolver(id);
        watch->listener({DnssdEvent::Kind::Gone, id, {}, 0, {}});
    } else if (event == AVAHI_BROWSER_ALL_FOR_NOW && watch->unsettled > 0) {
        if (--watch->unsettled == 0) {
            watch->listener({DnssdEvent::Kind::Settled, {}, {}, 0, {}});
        }
    } else if (event == AVAHI_BROWSER_FAILURE) {
        const int error = avahi_client_errno(ofClient);
        if (error != AVAHI_ERR_DISCONNECTED) {
            watch->listener(AvahiFailure(error));
        }
    }
}

void DnssdBrowser::Watch::Resolve(AvahiClient* ofClient, const ServiceId& id,
                                  AvahiProtocol protocol) {
    ForgetResolver(id);
    AvahiServiceResolver* const resolver = avahi_service_resolver_new(
        ofClient, id.interface, protocol, id.name.c_str(), TypeName(id.kind), id.domain.c_str(),
        AVAHI_PROTO_INET, AvahiLookupFlags{}, ResolvedService, this);
    if (resolver != nullptr) {
        resolvers.emplace(id, resolver);
    }
}

// A resolver that failed is kept: it goes on listening, and the service may still answer.
void DnssdBrowser::Watch::ResolvedService(AvahiServiceResolver*, AvahiIfIndex interface,
                                          AvahiProtocol, AvahiResolverEvent event, const char* name,
                                          const char* type, const char* domain, const char* host,
                                          const AvahiAddress* address, std::uint16_t port,
                                          AvahiStringList* txt, AvahiLookupResultFlags,
                                          void* self) {
    auto* const watch = static_cast<Watch*>(self);
    if (event != AVAHI_RESOLVER_FOUND) {
        return;
    }
    const ServiceId id{name, domain, KindOf(type), interface};
    watch->ForgetResolver(id);
    // Port 0 says that the name is taken and the protocol not spoken.
    if (address == nullptr || port == 0) {
        watch->listener({DnssdEvent::Kind::Gone, id, {}, 0, {}});
        return;
    }
    watch->listener({DnssdEvent::Kind::Resolved,
                     id,
                     {host == nullptr ? "" : host, AddressText(*address), port, TxtEntries(txt)},
                     0,
                     {}});
}

void DnssdBrowser::Watch::ForgetResolver(const ServiceId& id) {
    const auto resolver = resolvers.find(id);
    if (resolver != resolvers.end()) {
        avahi_service_resolver_free(resolver->second);
        resolvers.erase(resolver);
    }
}

void DnssdBrowser::Watch::Send(Signal sent) {
    const std::lock_guard lock(mutex);
    if (signal != Signal::Close) {
        signal = sent;
    }
    changed.notify_all();
}

DnssdBrowser::Watch::Signal DnssdBrowser::Watch::AwaitSignal() {
    std::unique_lock lock(mutex);
    changed.wait(lock, [this] { return signal != Signal::None; });
    return signal == Signal::Close ? signal : std::exchange(signal, Signal::None);
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

DnssdBrowser::~DnssdBrowser() {
    watch->Close();
}

namespace {

// One question to a browser of its own.
struct Lookup {
    std::mutex mutex;
    std::condition_variable changed;
    std::optional<Service> service;
    bool ended = false;
};

}  // namespace

std::optional<Service> ResolveAgain(const ServiceId& id, std::chrono::milliseconds patience) {
    const auto lookup = std::make_shared<Lookup>();
    const DnssdBrowser browser([lookup, id](DnssdEvent event) {
        const bool found = event.kind == DnssdEvent::Kind::Resolved && event.id == id;
        const bool failed = event.kind == DnssdEvent::Kind::Failed;
        if (found || failed) {
            const std::lock_guard lock(lookup->mutex);
            if (found) {
                lookup->service = std::move(event.service);
            }
            lookup->ended = true;
            lookup->changed.notify_all();
        }
    });
    std::unique_lock lock(lookup->mutex);
    lookup->changed.wait_for(lock, patience, [&] { return lookup->ended; });
    return lookup->service;
}

}  // namespace Driverless
