// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterDiscoverAPI/wifi/linux/new_profile_linux.h"

#include <systemd/sd-bus.h>

#include <memory>

#include "base/secret.h"
#include "host/PrinterDiscoverAPI/wifi/linux/bus_use_linux.h"

namespace Host {

namespace {

using namespace NetworkManagerName;

template <auto Release>
struct Releaser {
    template <class Thing>
    void operator()(Thing* thing) const {
        Release(thing);
    }
};
using Bus = std::unique_ptr<sd_bus, Releaser<&sd_bus_flush_close_unref>>;
using Message = std::unique_ptr<sd_bus_message, Releaser<&sd_bus_message_unref>>;
using Slot = std::unique_ptr<sd_bus_slot, Releaser<&sd_bus_slot_unref>>;

constexpr std::uint64_t kCallMicroseconds =
    std::chrono::microseconds(NetworkManager::kCallLimit).count();

void Require(int result) {
    if (result < 0) {
        throw sdbus::createError(-result, "the call to NetworkManager could not be made");
    }
}

void AppendVariant(sd_bus_message* call, const sdbus::Variant& value) {
    if (value.containsValueOfType<bool>()) {
        Require(sd_bus_message_append(call, "v", "b", static_cast<int>(value.get<bool>())));
    } else if (value.containsValueOfType<std::string>()) {
        Require(sd_bus_message_append(call, "v", "s", value.get<std::string>().c_str()));
    } else {
        const auto bytes = value.get<std::vector<std::uint8_t>>();
        Require(sd_bus_message_open_container(call, SD_BUS_TYPE_VARIANT, "ay"));
        Require(sd_bus_message_append_array(call, 'y', bytes.data(), bytes.size()));
        Require(sd_bus_message_close_container(call));
    }
}

// Reserves room for the pass phrase, which is written last: a growing message moves and leaves a
// copy in memory.
void AppendPlaceOfSecret(sd_bus_message* call, std::size_t size) {
    Require(sd_bus_message_open_container(call, SD_BUS_TYPE_DICT_ENTRY, "sv"));
    Require(sd_bus_message_append(call, "sv", "psk", "s", std::string(size, '*').c_str()));
    Require(sd_bus_message_close_container(call));
}

void AppendGroup(sd_bus_message* call, const std::string& name, const Properties& properties,
                 std::size_t secretSize) {
    Require(sd_bus_message_open_container(call, SD_BUS_TYPE_DICT_ENTRY, "sa{sv}"));
    Require(sd_bus_message_append(call, "s", name.c_str()));
    Require(sd_bus_message_open_container(call, SD_BUS_TYPE_ARRAY, "{sv}"));
    if (secretSize > 0) {
        AppendPlaceOfSecret(call, secretSize);
    }
    for (const auto& [key, value] : properties) {
        Require(sd_bus_message_open_container(call, SD_BUS_TYPE_DICT_ENTRY, "sv"));
        Require(sd_bus_message_append(call, "s", key.c_str()));
        AppendVariant(call, value);
        Require(sd_bus_message_close_container(call));
    }
    Require(sd_bus_message_close_container(call));
    Require(sd_bus_message_close_container(call));
}

// The group with the room for the pass phrase comes first, with the room as its first entry.
void AppendSettings(sd_bus_message* call, const NewProfile& profile) {
    Require(sd_bus_message_open_container(call, SD_BUS_TYPE_ARRAY, "{sa{sv}}"));
    if (!profile.passPhrase.empty()) {
        AppendGroup(call, kSecuritySettings, profile.settings.at(kSecuritySettings),
                    profile.passPhrase.size());
    }
    for (const auto& [name, properties] : profile.settings) {
        if (profile.passPhrase.empty() || name != kSecuritySettings) {
            AppendGroup(call, name, properties, 0);
        }
    }
    Require(sd_bus_message_close_container(call));
}

// Writes the pass phrase into its room in the complete message, which no longer grows.
void PutSecret(sd_bus_message* call, std::string_view secret) {
    // Above the serial number of Hello, the only message sent before.
    constexpr std::uint64_t serial = 100;
    Require(sd_bus_message_seal(call, serial, kCallMicroseconds));
    Require(sd_bus_message_rewind(call, 1));
    Require(sd_bus_message_enter_container(call, SD_BUS_TYPE_ARRAY, "{sa{sv}}"));
    Require(sd_bus_message_enter_container(call, SD_BUS_TYPE_DICT_ENTRY, "sa{sv}"));
    Require(sd_bus_message_skip(call, "s"));
    Require(sd_bus_message_enter_container(call, SD_BUS_TYPE_ARRAY, "{sv}"));
    Require(sd_bus_message_enter_container(call, SD_BUS_TYPE_DICT_ENTRY, "sv"));
    Require(sd_bus_message_skip(call, "s"));
    Require(sd_bus_message_enter_container(call, SD_BUS_TYPE_VARIANT, "s"));
    const char* place = nullptr;
    Require(sd_bus_message_read_basic(call, SD_BUS_TYPE_STRING, &place));
    secret.copy(const_cast<char*>(place), secret.size());
}

Message CallFor(sd_bus* bus, const NewProfile& profile, ProfileLife life) {
    const bool isVolatile = life == ProfileLife::kVolatile;
    sd_bus_message* created = nullptr;
    Require(sd_bus_message_new_method_call(
        bus, &created, kService, kManagerPath, kService,
        isVolatile ? "AddAndActivateConnection2" : "AddAndActivateConnection"));
    Message call(created);
    // Its memory is wiped when it is freed.
    Require(sd_bus_message_sensitive(call.get()));
    AppendSettings(call.get(), profile);
    Require(sd_bus_message_append(call.get(), "oo", profile.adapter.c_str(),
                                  profile.accessPoint.c_str()));
    if (isVolatile) {
        Require(sd_bus_message_append(call.get(), "a{sv}", 1, "persist", "s", "volatile"));
    }
    if (!profile.passPhrase.empty()) {
        PutSecret(call.get(), profile.passPhrase);
    }
    return call;
}

// NetworkManager's answer may quote the pass phrase, too.
int KeepReply(sd_bus_message* reply, void* place, sd_bus_error* /*error*/) {
    sd_bus_message_sensitive(reply);
    static_cast<Message*>(place)->reset(sd_bus_message_ref(reply));
    return 1;
}

Message ReplyTo(sd_bus* bus, sd_bus_message* call) {
    Message reply;
    sd_bus_slot* made = nullptr;
    Require(sd_bus_call_async(bus, &made, call, KeepReply, &reply, kCallMicroseconds));
    const Slot slot(made);
    while (reply == nullptr) {
        const int processed = sd_bus_process(bus, nullptr);
        if (reply == nullptr) {
            Require(processed);
        }
        if (processed == 0) {
            Require(sd_bus_wait(bus, UINT64_MAX));
        }
    }
    return reply;
}

void RequireSuccess(sd_bus_message* reply, std::string_view passPhrase) {
    const sd_bus_error* const error = sd_bus_message_get_error(reply);
    if (error != nullptr) {
        const std::string_view words = error->message == nullptr ? "" : error->message;
        throw sdbus::Error(error->name, Base::Secret(passPhrase).MaskedIn(words));
    }
}

}  // namespace

Begun AddAndActivate(const NewProfile& profile, ProfileLife life) {
    BusUse use;
    sd_bus* opened = nullptr;
    Require(sd_bus_open_system(&opened));
    const Bus bus(opened);
    use.Of(sd_bus_get_fd(opened));
    const Message call = CallFor(opened, profile, life);
    const Message reply = ReplyTo(opened, call.get());
    use.Of(-1);
    RequireSuccess(reply.get(), profile.passPhrase);
    const char* connection = nullptr;
    const char* active = nullptr;
    Require(sd_bus_message_read(reply.get(), "oo", &connection, &active));
    return {sdbus::ObjectPath(connection), sdbus::ObjectPath(active)};
}

}  // namespace Host
