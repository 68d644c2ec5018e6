// SPDX-License-Identifier: Apache-2.0

#include "tests/host/PrinterDiscoverAPI/usb/device_service_linux.h"

#include <arpa/inet.h>
#include <linux/netlink.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string_view>

namespace UsbTest {

namespace {

constexpr std::uint32_t kListeners = 2;  // the group to which the device service sends

// What stands before an event's properties. Receivers filter by the hashes, without reading on.
struct Header {
    char prefix[8] = "libudev";
    std::uint32_t magic = htonl(0xfeedcafe);
    std::uint32_t headerSize = sizeof(Header);
    std::uint32_t propertiesOffset = sizeof(Header);
    std::uint32_t propertiesLength = 0;
    std::uint32_t subsystemHash = 0;
    std::uint32_t devtypeHash = 0;
    std::array<std::uint32_t, 2> tags{};
};
static_assert(sizeof(Header) == 40);

// The MurmurHash2 of a text, with the seed 0.
std::uint32_t HashOf(std::string_view text) {
    constexpr std::uint32_t factor = 0x5bd1e995;
    auto hash = static_cast<std::uint32_t>(text.size());
    while (text.size() >= 4) {
        std::uint32_t word = 0;
        std::memcpy(&word, text.data(), sizeof word);
        word *= factor;
        hash = hash * factor ^ (word ^ word >> 24) * factor;
        text.remove_prefix(4);
    }
    for (std::size_t at = text.size(); at > 0; --at) {
        hash ^= static_cast<std::uint32_t>(static_cast<unsigned char>(text[at - 1]))
                << (8 * (at - 1));
    }
    if (!text.empty()) {
        hash *= factor;
    }
    hash = (hash ^ hash >> 13) * factor;
    return hash ^ hash >> 15;
}

std::string PropertiesOf(const std::string& action, const std::string& path,
                         unsigned interfaceClass) {
    static std::atomic<unsigned> number = 0;
    std::string properties;
    for (const std::string& property :
         {"ACTION=" + action, "DEVPATH=/devices/simulated/usb1/" + path,
          std::string("SUBSYSTEM=usb"), std::string("DEVTYPE=usb_interface"),
          "SEQNUM=" + std::to_string(++number), std::string("PRODUCT=1209/1/100"),
          "INTERFACE=" + std::to_string(interfaceClass) + "/1/2"}) {
        properties += property;
        properties += '\0';
    }
    return properties;
}

}  // namespace

DeviceService::DeviceService()
    : socket(::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_KOBJECT_UEVENT)) {
    if (std::getenv("DEVICE_EVENTS_ARE_OWN") == nullptr) {
        throw std::runtime_error(
            "the system's own listeners would hear: use with_own_device_events");
    }
    if (socket < 0) {
        throw std::runtime_error("no socket for device events");
    }
}

DeviceService::~DeviceService() {
    close(socket);
}

void DeviceService::Tell(const std::string& action, const std::string& interface,
                         unsigned interfaceClass) const {
    std::string properties = PropertiesOf(action, interface, interfaceClass);
    Header header;
    header.propertiesLength = static_cast<std::uint32_t>(properties.size());
    header.subsystemHash = htonl(HashOf("usb"));
    header.devtypeHash = htonl(HashOf("usb_interface"));
    std::array<iovec, 2> parts{iovec{&header, sizeof header},
                               iovec{properties.data(), properties.size()}};
    sockaddr_nl listeners{};
    listeners.nl_family = AF_NETLINK;
    listeners.nl_groups = kListeners;
    msghdr message{};
    message.msg_name = &listeners;
    message.msg_namelen = sizeof listeners;
    message.msg_iov = parts.data();
    message.msg_iovlen = parts.size();
    // A listener that cannot take it in is told so itself; that nobody listens is no matter.
    sendmsg(socket, &message, 0);
}

}  // namespace UsbTest
