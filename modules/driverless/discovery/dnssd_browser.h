// SPDX-License-Identifier: Apache-2.0

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
        Ready,        // Avahi answers; watching begins
        Announced,    // `id` is announced; Resolved follows
        Resolved,     // `service` holds the place and description of `id`
        Gone,         // `id` is no longer announced, or cannot be used
        Settled,      // the initial announcements are complete
        Interrupted,  // Avahi ended: no announcements until it is back
        Failed,       // watching is impossible: `result`, `message`
    };
    Kind kind;
    ServiceId id;
    Service service;
    int result = 0;
    std::string message;
};

// The message when memory has run out; short enough to need no allocation.
constexpr char kOutOfMemory[] = "out of memory";

// Watches as long as this object lives. Only the browser's own threads talk to Avahi, so that no
// other thread waits for an Avahi or a D-Bus that does not answer.
class DnssdBrowser {
public:
    // Called on one thread at a time, and possibly still once while the destructor returns.
    using Listener = std::function<void(DnssdEvent)>;

    explicit DnssdBrowser(Listener listener);
    // Looks up only the service `only`; a Gone event means that it is not announced.
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

// Looks up an announced service again; nothing when there is no answer within `patience`.
std::optional<Service> ResolveAgain(ServiceId id, std::chrono::milliseconds patience);

}  // namespace Driverless
