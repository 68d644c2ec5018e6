#pragma once

// Watches the network's announcements of printers through Avahi.

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "modules/driverless/printer/service.h"

namespace Driverless {

struct DnssdEvent {
    enum class Kind {
        Ready,        // Avahi answers; the watch begins
        Announced,    // `id` is there; Resolved follows when its place is known
        Resolved,     // `service` is the place and description of `id`
        Gone,         // `id` is no longer there, or cannot be used
        Settled,      // what the network had to announce at the beginning has come
        Interrupted,  // Avahi ended: nothing is announced any more until it is back
        Failed,       // the watch cannot begin, or cannot go on: `result`, `message`
    };
    Kind kind;
    ServiceId id;
    Service service;
    int result = 0;
    std::string message;
};

// The message of a failure for want of memory; short enough to need none itself.
constexpr char kOutOfMemory[] = "out of memory";

// The watch lasts as long as this object. Avahi is talked to on threads of the browser's own, so
// that nobody waits for an Avahi or a D-Bus that does not answer.
class DnssdBrowser {
public:
    // Called on one thread at a time, and possibly still once while the destructor returns.
    using Listener = std::function<void(DnssdEvent)>;

    explicit DnssdBrowser(Listener listener);
    // Looks up that one service and nothing else; Gone says that it is not announced.
    DnssdBrowser(Listener listener, const ServiceId& only);
    ~DnssdBrowser();

    // The printer of that service has answered: other services of its name are looked up last, as
    // long as this one is announced. Does not wait for Avahi.
    void Answered(const ServiceId& id);

    // Since when an answer of Avahi's is waited for; nothing when none is. Avahi is asked often
    // enough, also when nothing happens, to tell one that hangs.
    std::optional<std::chrono::steady_clock::time_point> WaitsSince() const;

    DnssdBrowser(const DnssdBrowser&) = delete;
    DnssdBrowser& operator=(const DnssdBrowser&) = delete;

private:
    class Watch;
    std::shared_ptr<Watch> watch;
};

// Looks one announced service up again; nothing when it does not answer within `patience`.
std::optional<Service> ResolveAgain(ServiceId id, std::chrono::milliseconds patience);

}  // namespace Driverless
