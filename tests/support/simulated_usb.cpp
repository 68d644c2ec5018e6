// SPDX-License-Identifier: Apache-2.0

#include "tests/support/simulated_usb.h"

#include <gtest/gtest.h>
#include <linux/usbdevice_fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <umockdev.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <filesystem>
#include <mutex>
#include <optional>
#include <span>
#include <sstream>

namespace UsbTest {

namespace {

constexpr int kStalled = -EPIPE;
constexpr int kCancelled = -ENOENT;
constexpr std::uint8_t kMakerText = 1;
constexpr std::uint8_t kProductText = 2;
constexpr std::uint8_t kSerialNumberText = 3;

std::string Text(const char* format, unsigned value) {
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), format, value);
    return text.data();
}

unsigned BusOf(const SimulatedDevice& device) {
    return static_cast<unsigned>(std::stoul(device.place));
}

// Device numbers follow from places, so that no two devices of a test have the same.
unsigned NumberOf(const SimulatedDevice& device) {
    const std::string ports = device.place.substr(device.place.find('-') + 1);
    const std::size_t dot = ports.find('.');
    const auto port = static_cast<unsigned>(std::stoul(ports));
    return dot == std::string::npos
               ? 1 + port
               : 90 + port * 10 + static_cast<unsigned>(std::stoul(ports.substr(dot + 1)));
}

std::string NodeOf(const SimulatedDevice& device) {
    return "/dev/bus/usb/" + Text("%03u", BusOf(device)) + '/' + Text("%03u", NumberOf(device));
}

// The device lies in its hub's folder, and that in its bus's.
std::string FolderOf(const SimulatedDevice& device) {
    std::string folder = "/devices/pci0000:00/0000:00:14.0/usb" + std::to_string(BusOf(device));
    for (std::size_t dot = device.place.find('.'); dot != std::string::npos;
         dot = device.place.find('.', dot + 1)) {
        folder += '/' + device.place.substr(0, dot);
    }
    return folder + '/' + device.place;
}

using Bytes = std::vector<std::uint8_t>;

void Append(Bytes& bytes, std::initializer_list<unsigned> values) {
    for (const unsigned value : values) {
        bytes.push_back(static_cast<std::uint8_t>(value));
    }
}

std::string DescriptorsOf(const SimulatedDevice& device) {
    const auto count = static_cast<unsigned>(device.interfaceClasses.size());
    const unsigned length = 9 + count * (9 + 7);
    Bytes bytes;
    Append(bytes, {18, 1, 0x00, 0x02, 0, 0, 0, 64});
    Append(bytes, {device.vendorId & 0xFF, device.vendorId >> 8});
    Append(bytes, {device.productId & 0xFF, device.productId >> 8, 0x00, 0x01});
    Append(bytes,
           {device.maker.empty() ? 0U : kMakerText, device.product.empty() ? 0U : kProductText,
            device.serialNumber.empty() ? 0U : kSerialNumberText, 1});
    Append(bytes, {9, 2, length & 0xFF, length >> 8, count, 1, 0, 0xC0, 50});
    for (unsigned index = 0; index < count; ++index) {
        Append(bytes, {9, 4, index, 0, 1, device.interfaceClasses[index], 1, 2, 0});
        Append(bytes, {7, 5, index + 1, 2, 0x00, 0x02, 0});
    }
    std::string digits;
    for (const std::uint8_t byte : bytes) {
        digits += Text("%02X", byte);
    }
    return digits;
}

// What the kernel has read of the device's strings, for those who cannot ask it themselves; none of
// what it has no plain characters for.
std::string TextFile(const std::string& name, const std::u16string& text) {
    const bool isPlain =
        std::all_of(text.begin(), text.end(), [](char16_t unit) { return unit < 0x80; });
    return text.empty() || !isPlain
               ? std::string()
               : "\nA: " + name + "=" + std::string(text.begin(), text.end()) + "\\n";
}

std::string FolderOfInterface(const SimulatedDevice& device, std::size_t index) {
    return FolderOf(device) + '/' + device.place + ":1." + std::to_string(index);
}

std::string ProductOf(const SimulatedDevice& device) {
    return "\nE: PRODUCT=" + Text("%x", device.vendorId) + '/' + Text("%x", device.productId) +
           "/100";
}

std::string DescriptionOfInterface(const SimulatedDevice& device, std::size_t index) {
    const unsigned interfaceClass = device.interfaceClasses[index];
    std::ostringstream text;
    text << "P: " << FolderOfInterface(device, index)
         << "\nE: DEVTYPE=usb_interface\nE: SUBSYSTEM=usb";
    if (device.hasProductProperty) {
        text << ProductOf(device) << "\nE: INTERFACE=" << interfaceClass << "/1/2";
    }
    text << "\nA: bInterfaceNumber=" << Text("%02x", static_cast<unsigned>(index))
         << "\nA: bInterfaceClass=" << Text("%02x", interfaceClass)
         << "\nA: bInterfaceSubClass=01\nA: bInterfaceProtocol=02\n\n";
    return text.str();
}

std::string DescriptionOf(const SimulatedDevice& device) {
    std::ostringstream text;
    text << "P: " << FolderOf(device) << "\nN: " << NodeOf(device).substr(5)
         << "\nE: DEVTYPE=usb_device\nE: SUBSYSTEM=usb\nE: DEVNAME=" << NodeOf(device)
         << "\nE: BUSNUM=" << Text("%03u", BusOf(device))
         << "\nE: DEVNUM=" << Text("%03u", NumberOf(device)) << "\nA: busnum=" << BusOf(device)
         << "\nA: devnum=" << NumberOf(device) << "\nA: speed=480\nA: bConfigurationValue=1"
         << "\nA: idVendor=" << Text("%04x", device.vendorId)
         << "\nA: idProduct=" << Text("%04x", device.productId)
         << TextFile("manufacturer", device.maker) << TextFile("product", device.product)
         << TextFile("serial", device.serialNumber) << ProductOf(device)
         << "\nH: descriptors=" << DescriptorsOf(device) << "\n\n";
    for (std::size_t index = 0; index < device.interfaceClasses.size(); ++index) {
        text << DescriptionOfInterface(device, index);
    }
    return text.str();
}

// --- what a device answers ----------------------------------------------------------------------

// A control transfer's first eight bytes.
struct Question {
    std::uint8_t type;
    std::uint8_t request;
    std::uint16_t value;
    std::uint16_t index;
};

using Answer = std::optional<std::string>;  // none: it stalls

std::string LittleEndian(std::u16string_view units) {
    std::string bytes;
    for (const char16_t unit : units) {
        bytes += static_cast<char>(unit & 0xFF);
        bytes += static_cast<char>(unit >> 8);
    }
    return bytes;
}

Answer StringDescriptor(const SimulatedDevice& device, std::uint8_t number,
                        std::uint16_t language) {
    constexpr char16_t english = 0x0409;
    const std::array<std::u16string, 4> texts{std::u16string(1, english), device.maker,
                                              device.product, device.serialNumber};
    if (number >= texts.size() || texts.at(number).empty() ||
        (number != 0 && language != english)) {
        return std::nullopt;
    }
    const std::string body = LittleEndian(texts.at(number));
    return std::string{static_cast<char>(body.size() + 2), 3} + body;
}

bool IsForDeviceId(const Question& question) {
    return question.type == 0xA1 && question.request == 0;
}

// Only the printer's own interfaces know the device id.
Answer DeviceIdOf(const SimulatedDevice& device, const Question& question) {
    const std::size_t interface = question.index >> 8;
    if (device.manner == Manner::RefusesDeviceId || question.value != 0 ||
        interface >= device.interfaceClasses.size() || device.interfaceClasses[interface] != 7) {
        return std::nullopt;
    }
    const std::size_t length = device.deviceId.size() + 2;
    return std::string{static_cast<char>(length >> 8), static_cast<char>(length & 0xFF)} +
           device.deviceId;
}

Answer AnswerOf(const SimulatedDevice& device, const Question& question) {
    if (IsForDeviceId(question)) {
        return DeviceIdOf(device, question);
    }
    if (question.type == 0x80 && question.request == 6 && question.value >> 8 == 3) {
        return StringDescriptor(device, static_cast<std::uint8_t>(question.value & 0xFF),
                                question.index);
    }
    if (question.type == 0x80 && question.request == 8) {
        return std::string(1, 1);  // the configuration it is in
    }
    return std::nullopt;
}

struct Unref {
    void operator()(UMockdevIoctlData* data) const { umockdev_ioctl_data_unref(data); }
};
using Data = std::unique_ptr<UMockdevIoctlData, Unref>;

usbdevfs_urb& UrbIn(const Data& data) {
    return *reinterpret_cast<usbdevfs_urb*>(data->data);
}

Question QuestionIn(const std::uint8_t* bytes) {
    return {bytes[0], bytes[1], static_cast<std::uint16_t>(bytes[2] | bytes[3] << 8),
            static_cast<std::uint16_t>(bytes[4] | bytes[5] << 8)};
}

// What one of those who talk to a device has done.
struct Conversation {
    bool isClaimed = false;
    std::deque<Data> waiting;
    std::deque<Data> done;
};

// A device that is plugged in.
class Plugged {
public:
    explicit Plugged(SimulatedDevice plugged) : device(std::move(plugged)) {}

    void Serve(UMockdevIoctlClient* client) {
        if (device.manner == Manner::GoneMeanwhile) {
            Complete(client, -1, ENODEV);
            return;
        }
        switch (umockdev_ioctl_client_get_request(client)) {
            case USBDEVFS_GET_CAPABILITIES:
                TellCapabilities(client);
                break;
            case USBDEVFS_CLAIMINTERFACE:
                Claim(client);
                break;
            case USBDEVFS_RELEASEINTERFACE:
                conversations[client].isClaimed = false;
                Complete(client, 0, 0);
                break;
            case USBDEVFS_GETDRIVER:
                Complete(client, -1, ENODATA);
                break;
            case USBDEVFS_SUBMITURB:
                Submit(client);
                break;
            case USBDEVFS_DISCARDURB:
                Discard(client);
                break;
            case USBDEVFS_REAPURB:
            case USBDEVFS_REAPURBNDELAY:
                Reap(client);
                break;
            default:
                Complete(client, -1, ENOTTY);
        }
    }

private:
    static void Complete(UMockdevIoctlClient* client, glong result, int error) {
        umockdev_ioctl_client_complete(client, result, error);
    }

    static Data Argument(UMockdevIoctlClient* client, std::size_t size) {
        return Data(
            umockdev_ioctl_data_resolve(umockdev_ioctl_client_get_arg(client), 0, size, nullptr));
    }

    static void TellCapabilities(UMockdevIoctlClient* client) {
        std::uint32_t none = 0;
        umockdev_ioctl_data_update(Argument(client, sizeof none).get(), 0,
                                   reinterpret_cast<std::uint8_t*>(&none), sizeof none);
        Complete(client, 0, 0);
    }

    void Claim(UMockdevIoctlClient* client) {
        const bool isTaken =
            device.manner == Manner::InterfaceIsTaken || device.manner == Manner::EverythingIsTaken;
        conversations[client].isClaimed = !isTaken;
        Complete(client, isTaken ? -1 : 0, isTaken ? EBUSY : 0);
    }

    // Whether the system lets the question through to the device.
    bool IsAllowed(const Question& question, bool isClaimed) const {
        switch (device.manner) {
            case Manner::EverythingIsTaken:
                return false;
            case Manner::InterfaceIsTaken:
            case Manner::WantsItsInterface:
                return isClaimed || !IsForDeviceId(question);
            default:
                return true;
        }
    }

    void Submit(UMockdevIoctlClient* client) {
        Data urb = Argument(client, sizeof(usbdevfs_urb));
        const auto size = static_cast<std::size_t>(UrbIn(urb).buffer_length);
        const Data buffer(
            umockdev_ioctl_data_resolve(urb.get(), offsetof(usbdevfs_urb, buffer), size, nullptr));
        const Question question = QuestionIn(buffer->data);
        if (!IsAllowed(question, conversations[client].isClaimed)) {
            Complete(client, -1, EBUSY);
            return;
        }
        if (device.manner == Manner::Silent) {
            conversations[client].waiting.push_back(std::move(urb));
        } else {
            Fill(UrbIn(urb), std::span(buffer->data, size).subspan(8), AnswerOf(device, question));
            conversations[client].done.push_back(std::move(urb));
        }
        Complete(client, 0, 0);
    }

    static void Fill(usbdevfs_urb& urb, std::span<std::uint8_t> room, const Answer& answer) {
        urb.status = answer ? 0 : kStalled;
        const std::size_t size = answer ? std::min(answer->size(), room.size()) : 0;
        std::copy_n(answer ? answer->begin() : std::string::const_iterator(), size, room.begin());
        urb.actual_length = static_cast<int>(size);
    }

    void Discard(UMockdevIoctlClient* client) {
        auto& [isClaimed, waiting, done] = conversations[client];
        if (waiting.empty()) {
            Complete(client, -1, EINVAL);
            return;
        }
        UrbIn(waiting.front()).status = kCancelled;
        done.push_back(std::move(waiting.front()));
        waiting.pop_front();
        Complete(client, 0, 0);
    }

    void Reap(UMockdevIoctlClient* client) {
        auto& done = conversations[client].done;
        if (done.empty()) {
            Complete(client, -1, EAGAIN);
            return;
        }
        umockdev_ioctl_data_set_ptr(Argument(client, sizeof(void*)).get(), 0, done.front().get());
        done.pop_front();
        Complete(client, 0, 0);
    }

    const SimulatedDevice device;
    std::map<UMockdevIoctlClient*, Conversation> conversations;
};

}  // namespace

class SimulatedUsb::Bed {
public:
    Bed() : testbed(umockdev_testbed_new()), handler(umockdev_ioctl_base_new()) {
        g_signal_connect(handler, "handle-ioctl", G_CALLBACK(Handle), this);
        gchar* const folder = umockdev_testbed_get_root_dir(testbed);
        root = folder;
        g_free(folder);
        // Others than its owner listen for events here.
        chmod(root.c_str(), 0777);
        std::filesystem::create_directories(root + "/sys/bus/usb/devices");
    }

    void Hide() { std::filesystem::remove_all(root + "/sys/bus/usb"); }

    ~Bed() {
        g_object_unref(testbed);
        g_object_unref(handler);
    }

    Bed(const Bed&) = delete;
    Bed& operator=(const Bed&) = delete;

    void Plug(const SimulatedDevice& device) {
        GError* error = nullptr;
        const bool isNew = Remember(device);
        umockdev_testbed_add_from_string(testbed, DescriptionOf(device).c_str(), &error);
        if (error == nullptr && isNew) {
            umockdev_testbed_attach_ioctl(testbed, NodeOf(device).c_str(), handler, &error);
        }
        if (error != nullptr) {
            ADD_FAILURE() << device.place << ": " << error->message;
            g_error_free(error);
            return;
        }
        SetMode(NodeOf(device), 0666);
        // The test bed's own connection comes before the device says no.
        SetMode("/ioctl" + NodeOf(device), 0666);
    }

    void Unplug(const SimulatedDevice& device) {
        for (std::size_t index = 0; index < device.interfaceClasses.size(); ++index) {
            Remove(FolderOfInterface(device, index));
        }
        Remove(FolderOf(device));
    }

    void TellAgain(const SimulatedDevice& device) {
        umockdev_testbed_uevent(testbed, ("/sys" + FolderOf(device)).c_str(), "add");
        for (std::size_t index = 0; index < device.interfaceClasses.size(); ++index) {
            const std::string path = "/sys" + FolderOfInterface(device, index);
            umockdev_testbed_uevent(testbed, path.c_str(), "add");
        }
    }

    void Forbid(const SimulatedDevice& device) { SetMode(NodeOf(device), 0); }

private:
    void Remove(const std::string& folder) {
        const std::string path = "/sys" + folder;
        umockdev_testbed_uevent(testbed, path.c_str(), "remove");
        umockdev_testbed_remove_device(testbed, path.c_str());
    }

    // The device at its node; false when one was there before, whose connection stays.
    bool Remember(const SimulatedDevice& device) {
        const std::lock_guard lock(mutex);
        const bool isNew = plugged.erase(NodeOf(device)) == 0;
        plugged.emplace(NodeOf(device), device);
        return isNew;
    }

    void SetMode(const std::string& path, mode_t mode) const {
        EXPECT_EQ(chmod((root + path).c_str(), mode), 0) << path << ": " << std::strerror(errno);
    }

    // On the test bed's own thread.
    static gboolean Handle(UMockdevIoctlBase*, UMockdevIoctlClient* client, gpointer self) {
        auto* const bed = static_cast<Bed*>(self);
        const std::lock_guard lock(bed->mutex);
        bed->plugged.at(umockdev_ioctl_client_get_devnode(client)).Serve(client);
        return TRUE;
    }

    UMockdevTestbed* const testbed;
    UMockdevIoctlBase* const handler;
    std::string root;
    std::mutex mutex;
    std::map<std::string, Plugged> plugged;
};

SimulatedUsb::SimulatedUsb() : bed(std::make_unique<Bed>()) {}

SimulatedUsb::~SimulatedUsb() = default;

void SimulatedUsb::Hide() {
    bed->Hide();
}

void SimulatedUsb::Plug(const SimulatedDevice& device) {
    bed->Plug(device);
}

void SimulatedUsb::Unplug(const SimulatedDevice& device) {
    bed->Unplug(device);
}

void SimulatedUsb::TellAgain(const SimulatedDevice& device) {
    bed->TellAgain(device);
}

void SimulatedUsb::Forbid(const SimulatedDevice& device) {
    bed->Forbid(device);
}

std::string RunAndRead(const std::string& command) {
    // Only the test bed's library: a sanitizer's run-time does not fit a program without it.
    setenv("LD_PRELOAD", "libumockdev-preload.so.0", 1);
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    std::string output;
    std::array<char, 4096> part{};
    while (const std::size_t length = std::fread(part.data(), 1, part.size(), pipe.get())) {
        output.append(part.data(), length);
    }
    return output;
}

}  // namespace UsbTest
