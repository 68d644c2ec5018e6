// SPDX-License-Identifier: Apache-2.0

#include "modules/driverless/discovery/service_lookups.h"

#include <avahi-common/address.h>
#include <avahi-common/defs.h>
#include <dbus/dbus.h>

#include <new>
#include <utility>

#include "modules/driverless/discovery/txt_entries.h"

namespace Driverless {

namespace {

constexpr char kAvahiOnBus[] = "org.freedesktop.Avahi";
constexpr char kAvahiServer[] = "org.freedesktop.Avahi.Server";
constexpr char kAvahiResolver[] = "org.freedesktop.Avahi.ServiceResolver";

// The arguments of "Found": interface, protocol, name, type, domain, host, protocol of the address,
// address, port, TXT record, flags.
constexpr char kFoundSignature[] = "iissssisqaayu";

struct ReleaseBusMessage {
    void operator()(DBusMessage* message) const { dbus_message_unref(message); }
};
using BusMessage = std::unique_ptr<DBusMessage, ReleaseBusMessage>;

BusMessage NewCall(const char* path, const char* interface, const char* method) {
    BusMessage call(dbus_message_new_method_call(kAvahiOnBus, path, interface, method));
    if (call == nullptr) {
        throw std::bad_alloc();
    }
    // Avahi that has ended is not to be started by this.
    dbus_message_set_auto_start(call.get(), FALSE);
    return call;
}

std::uint32_t SendCall(DBusConnection* connection, const BusMessage& call) {
    dbus_uint32_t number = 0;
    if (dbus_connection_send(connection, call.get(), &number) == FALSE) {
        throw std::bad_alloc();
    }
    return number;
}

BusMessage CallToBegin(const ServiceId& id) {
    BusMessage call = NewCall("/", kAvahiServer, "ServiceResolverNew");
    const dbus_int32_t interface = id.interface;
    const dbus_int32_t protocol = AVAHI_PROTO_INET;
    const char* const name = id.name.c_str();
    const char* const type = TypeName(id.kind);
    const char* const domain = id.domain.c_str();
    const dbus_uint32_t flags = 0;
    const dbus_bool_t complete = dbus_message_append_args(
        call.get(), DBUS_TYPE_INT32, &interface, DBUS_TYPE_INT32, &protocol, DBUS_TYPE_STRING,
        &name, DBUS_TYPE_STRING, &type, DBUS_TYPE_STRING, &domain, DBUS_TYPE_INT32, &protocol,
        DBUS_TYPE_UINT32, &flags, DBUS_TYPE_INVALID);
    if (complete == FALSE) {
        throw std::bad_alloc();
    }
    return call;
}

std::string ErrorOfReply(DBusMessage* reply) {
    DBusError error = DBUS_ERROR_INIT;
    dbus_set_error_from_message(&error, reply);
    std::string text = error.message == nullptr ? "unknown error" : error.message;
    dbus_error_free(&error);
    return text;
}

template <typename Value>
Value NextOf(DBusMessageIter& at) {
    Value value{};
    dbus_message_iter_get_basic(&at, &value);
    dbus_message_iter_next(&at);
    return value;
}

std::map<std::string, std::string> NextTxt(DBusMessageIter& at) {
    std::map<std::string, std::string> entries;
    DBusMessageIter texts;
    dbus_message_iter_recurse(&at, &texts);
    for (; dbus_message_iter_get_arg_type(&texts) != DBUS_TYPE_INVALID;
         dbus_message_iter_next(&texts)) {
        DBusMessageIter bytes;
        dbus_message_iter_recurse(&texts, &bytes);
        const char* text = nullptr;
        int size = 0;
        dbus_message_iter_get_fixed_array(&bytes, static_cast<void*>(&text), &size);
        if (size > 0) {
            AddTxtEntry(entries, {text, static_cast<std::size_t>(size)});
        }
    }
    dbus_message_iter_next(&at);
    return entries;
}

}  // namespace

void ServiceLookups::Disconnect::operator()(DBusConnection* closed) const {
    dbus_connection_close(closed);
    dbus_connection_unref(closed);
}

ServiceLookups::ServiceLookups(const AvahiPoll* avahiPoll, Listener eventListener,
                               std::function<void()> onReady)
    : poll(avahiPoll), listener(std::move(eventListener)), ready(std::move(onReady)) {}

bool ServiceLookups::Connect() {
    connection.reset(dbus_bus_get_private(DBUS_BUS_SYSTEM, nullptr));
    if (connection != nullptr) {
        dbus_connection_set_exit_on_disconnect(connection.get(), FALSE);
        Watch();
    }
    return IsConnected();
}

ServiceLookups::~ServiceLookups() {
    if (watch != nullptr) {
        poll->watch_free(watch);
    }
}

bool ServiceLookups::IsConnected() const {
    return connection != nullptr && dbus_connection_get_is_connected(connection.get()) != FALSE;
}

void ServiceLookups::Ready(AvahiWatch*, int, AvahiWatchEvent, void* self) {
    static_cast<ServiceLookups*>(self)->ready();
}

// Waits for what comes, and while something is left to be sent, for room to send it.
void ServiceLookups::Watch() {
    if (!IsConnected()) {
        if (watch != nullptr) {
            poll->watch_free(std::exchange(watch, nullptr));
        }
        return;
    }
    const bool sends = dbus_connection_has_messages_to_send(connection.get()) != FALSE;
    const auto events =
        static_cast<AvahiWatchEvent>(AVAHI_WATCH_IN | (sends ? int{AVAHI_WATCH_OUT} : 0));
    int file = -1;
    if (watch != nullptr) {
        poll->watch_update(watch, events);
    } else if (dbus_connection_get_unix_fd(connection.get(), &file) != FALSE) {
        watch = poll->watch_new(poll, file, events, Ready, this);
    }
}

void ServiceLookups::Begin(const ServiceId& id) {
    End(id);
    if (IsConnected()) {
        waiting.push_back(id);
        SendWaiting();
    }
}

void ServiceLookups::SendWaiting() {
    while (!waiting.empty() && asked.size() < kMaxUnanswered && IsConnected()) {
        const ServiceId id = std::move(waiting.front());
        waiting.pop_front();
        const std::uint32_t number = SendCall(connection.get(), CallToBegin(id));
        asked.emplace(number, id);
        wanted.emplace(id, number);
    }
    Watch();
}

// A look-up that Avahi has not named yet is ended when Avahi does.
void ServiceLookups::End(const ServiceId& id) {
    std::erase(waiting, id);
    wanted.erase(id);
    const auto path = paths.find(id);
    if (path != paths.end()) {
        Free(path->second);
        services.erase(path->second);
        paths.erase(path);
    }
}

void ServiceLookups::Free(const std::string& path) {
    if (IsConnected()) {
        const BusMessage call = NewCall(path.c_str(), kAvahiResolver, "Free");
        dbus_message_set_no_reply(call.get(), TRUE);
        SendCall(connection.get(), call);
        Watch();
    }
}

bool ServiceLookups::Receive() {
    if (IsConnected()) {
        dbus_connection_read_write(connection.get(), 0);
        while (const BusMessage message{dbus_connection_pop_message(connection.get())}) {
            Take(message.get());
        }
        SendWaiting();
    }
    return IsConnected();
}

void ServiceLookups::Take(DBusMessage* message) {
    const int type = dbus_message_get_type(message);
    if (type == DBUS_MESSAGE_TYPE_METHOD_RETURN || type == DBUS_MESSAGE_TYPE_ERROR) {
        TakeReply(message);
    } else if (dbus_message_is_signal(message, kAvahiResolver, "Found") != FALSE &&
               dbus_message_has_sender(message, avahi.c_str()) != FALSE &&
               dbus_message_has_signature(message, kFoundSignature) != FALSE) {
        TakeFound(message);
    }
}

void ServiceLookups::TakeReply(DBusMessage* reply) {
    const auto call = asked.find(dbus_message_get_reply_serial(reply));
    if (call == asked.end()) {
        return;
    }
    const ServiceId id = call->second;
    const auto want = wanted.find(id);
    const bool isWanted = want != wanted.end() && want->second == call->first;
    asked.erase(call);
    if (isWanted) {
        wanted.erase(want);
    }
    const char* path = nullptr;
    if (dbus_message_get_args(reply, nullptr, DBUS_TYPE_OBJECT_PATH, &path, DBUS_TYPE_INVALID) ==
        FALSE) {
        if (isWanted) {
            listener.refused(id, ErrorOfReply(reply));
        }
    } else if (isWanted) {
        const char* const sender = dbus_message_get_sender(reply);
        avahi = sender == nullptr ? "" : sender;
        services.insert_or_assign(path, id);
        paths.insert_or_assign(id, path);
    } else {
        Free(path);
    }
}

void ServiceLookups::TakeFound(DBusMessage* signal) {
    const auto known = services.find(dbus_message_get_path(signal));
    if (known == services.end()) {
        return;
    }
    const ServiceId id = known->second;
    DBusMessageIter at;
    dbus_message_iter_init(signal, &at);
    // Interface, protocol, name, type and domain are those of the look-up.
    for (int skipped = 0; skipped < 5; ++skipped) {
        dbus_message_iter_next(&at);
    }
    Service service;
    service.host = NextOf<const char*>(at);
    dbus_message_iter_next(&at);
    service.address = NextOf<const char*>(at);
    service.port = NextOf<dbus_uint16_t>(at);
    service.txt = NextTxt(at);
    const auto flags = NextOf<dbus_uint32_t>(at);
    listener.found(id, std::move(service), (flags & AVAHI_LOOKUP_RESULT_LOCAL) != 0);
}

}  // namespace Driverless
