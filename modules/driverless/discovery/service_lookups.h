// SPDX-License-Identifier: Apache-2.0

#pragma once

// Looks announced services up through Avahi. Avahi's client library waits for the answer to each
// call, so that it and Avahi work in turns. This class waits for none: some calls are under way at
// once, so that Avahi always has the next, and an Avahi that is slow no more than those.

#include <avahi-common/watch.h>

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "modules/driverless/printer/service.h"

struct DBusConnection;
struct DBusMessage;

namespace Driverless {

// Belongs to the thread that runs the poll.
class ServiceLookups {
public:
    // What became of a look-up. A look-up without an answer is never heard of.
    struct Listener {
        // Avahi says it again when the service changes, until the look-up is ended. `byThisHost`:
        // this host announces it.
        std::function<void(const ServiceId&, Service, bool byThisHost)> found;
        // Avahi does not begin it: it has ended.
        std::function<void(const ServiceId&, const std::string& error)> refused;
    };

    // `onReady` is called when there is something to receive. The poll must outlive this object.
    ServiceLookups(const AvahiPoll* avahiPoll, Listener eventListener,
                   std::function<void()> onReady);
    ~ServiceLookups();

    // Connects to the system's D-Bus, which it waits for. False when that fails.
    bool Connect();

    // Begins a look-up anew, or ends it. Without a connection nothing is looked up.
    void Begin(const ServiceId& id);
    void End(const ServiceId& id);

    bool IsConnected() const;

    // Whether look-ups wait because Avahi has not answered the calls before them.
    bool IsBehind() const { return !waiting.empty(); }

    // Tells the listener all that has arrived. False once the connection is lost.
    bool Receive();

    ServiceLookups(const ServiceLookups&) = delete;
    ServiceLookups& operator=(const ServiceLookups&) = delete;

private:
    struct Disconnect {
        void operator()(DBusConnection* closed) const;
    };

    static constexpr std::size_t kMaxUnanswered = 8;

    static void Ready(AvahiWatch* watch, int file, AvahiWatchEvent event, void* self);
    void Watch();
    void SendWaiting();
    void Free(const std::string& path);
    void Take(DBusMessage* message);
    void TakeReply(DBusMessage* reply);
    void TakeFound(DBusMessage* signal);

    const AvahiPoll* const poll;
    const Listener listener;
    const std::function<void()> ready;
    std::unique_ptr<DBusConnection, Disconnect> connection;
    AvahiWatch* watch = nullptr;
    std::string avahi;                         // its name on the bus: nobody else is believed
    std::deque<ServiceId> waiting;             // for a call
    std::map<std::uint32_t, ServiceId> asked;  // by the number of the call, which has no answer yet
    std::map<ServiceId, std::uint32_t> wanted;  // the same; one ended meanwhile is missing here
    std::map<std::string, ServiceId> services;  // by path, which the answer to the call names
    std::map<ServiceId, std::string> paths;
};

}  // namespace Driverless
