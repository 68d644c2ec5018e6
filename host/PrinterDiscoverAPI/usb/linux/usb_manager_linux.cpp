// SPDX-License-Identifier: Apache-2.0

#include <libudev.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <system_error>
#include <utility>

#include "base/text/utf8.h"
#include "host/PrinterDiscoverAPI/diagnostics.h"
#include "host/PrinterDiscoverAPI/usb/linux/silent_service.h"
#include "host/PrinterDiscoverAPI/usb/usb_manager.h"

namespace PrinterDiscoverAPI {

namespace {

constexpr std::string_view kPrinterClass = "7/";      // of INTERFACE, class/subclass/protocol
constexpr std::string_view kPrinterClassFile = "07";  // of bInterfaceClass
constexpr int kReceiveBuffer = 4 * 1024 * 1024;
constexpr int kReopenMilliseconds = 200;
constexpr int kServiceCheckMilliseconds = 1000;
constexpr int kScans = 5;
constexpr const char* kSilence =
    "the device service (udev) does not pass device events on: it hangs, or was killed; the "
    "kernel's own events are used, before the system's rules have been applied";

template <class Object, Object* (*Release)(Object*)>
struct Unref {
    void operator()(Object* object) const { Release(object); }
};
using Context = std::unique_ptr<udev, Unref<udev, udev_unref>>;
using Device = std::unique_ptr<udev_device, Unref<udev_device, udev_device_unref>>;
using Enumeration = std::unique_ptr<udev_enumerate, Unref<udev_enumerate, udev_enumerate_unref>>;
using Monitor = std::unique_ptr<udev_monitor, Unref<udev_monitor, udev_monitor_unref>>;

std::string SystemMessage(int error) {
    return std::system_category().message(error);
}

std::string_view TextOf(const char* text) {
    return text == nullptr ? std::string_view() : std::string_view(text);
}

bool IsPrinterInterface(udev_device* device) {
    if (TextOf(udev_device_get_devtype(device)) != "usb_interface") {
        return false;
    }
    const std::string_view numbers = TextOf(udev_device_get_property_value(device, "INTERFACE"));
    if (!numbers.empty()) {
        return numbers.starts_with(kPrinterClass);
    }
    return TextOf(udev_device_get_sysattr_value(device, "bInterfaceClass")) == kPrinterClassFile;
}

// Parses a hexadecimal number that `end` must follow.
std::optional<unsigned> HexNumber(const char* text, char end, const char** after = nullptr) {
    if (text == nullptr || *text == '\0') {
        return std::nullopt;
    }
    char* stop = nullptr;
    const unsigned long number = std::strtoul(text, &stop, 16);
    if (stop == text || *stop != end || number > 0xFFFF) {
        return std::nullopt;
    }
    if (after != nullptr) {
        *after = stop + 1;
    }
    return static_cast<unsigned>(number);
}

// The hardware identifier of an interface's device. Read from the event if possible: the files of a
// device that is gone cannot be read any more.
std::optional<std::wstring> HardwareIdOf(udev_device* part) {
    const char* product = udev_device_get_property_value(part, "PRODUCT");  // v/p/revision
    std::optional<unsigned> vendorId = HexNumber(product, '/', &product);
    std::optional<unsigned> productId;
    if (vendorId) {
        productId = HexNumber(product, '/');
    } else if (udev_device* device =
                   udev_device_get_parent_with_subsystem_devtype(part, "usb", "usb_device")) {
        vendorId = HexNumber(udev_device_get_sysattr_value(device, "idVendor"), '\0');
        productId = HexNumber(udev_device_get_sysattr_value(device, "idProduct"), '\0');
    }
    if (!vendorId || !productId) {
        return std::nullopt;
    }
    return UsbHardwareId(*vendorId, *productId);
}

// Describes a printer interface; nothing for any other device, or a device that is gone.
std::optional<UsbPrinter> PrinterOf(udev_device* device) {
    if (!IsPrinterInterface(device)) {
        return std::nullopt;
    }
    const std::optional<std::wstring> hardwareId = HardwareIdOf(device);
    if (!hardwareId) {
        return std::nullopt;
    }
    UsbPrinter printer;
    printer.path = TextOf(udev_device_get_syspath(device));
    const std::size_t slash = printer.path.rfind('/');
    printer.devicePath = printer.path.substr(0, slash);
    printer.hardwareId = *hardwareId;
    // The name of an interface is bus-port.port:configuration.interface.
    printer.bus = std::atoi(printer.path.c_str() + slash + 1);
    return printer;
}

std::string NoEvents(int error) {
    return "no device events: " + SystemMessage(error) +
           "; printers that are plugged in will not be noticed";
}

// Identifies the running udev daemon, if any, by its control socket, which each daemon creates
// again. A daemon whose sockets the system keeps through a restart loses no event.
struct DeviceService {
    bool runs = false;
    ino_t socket = 0;
    timespec since{};

    static DeviceService Now() {
        struct stat file {};
        if (stat("/run/udev/control", &file) != 0) {
            return {};
        }
        return {true, file.st_ino, file.st_ctim};
    }

    bool operator==(const DeviceService& other) const {
        return runs == other.runs && socket == other.socket && since.tv_sec == other.since.tv_sec &&
               since.tv_nsec == other.since.tv_nsec;
    }
};

Monitor OpenMonitor(udev* context, const char* source, std::string& problem) {
    Monitor monitor(udev_monitor_new_from_netlink(context, source));
    if (!monitor) {
        problem = NoEvents(errno);
        return nullptr;
    }
    // A smaller buffer only means more repeated lists after many events.
    udev_monitor_set_receive_buffer_size(monitor.get(), kReceiveBuffer);
    for (const char* type : {"usb_interface", "usb_device"}) {
        udev_monitor_filter_add_match_subsystem_devtype(monitor.get(), "usb", type);
    }
    const int result = udev_monitor_enable_receiving(monitor.get());
    if (result < 0) {
        problem = NoEvents(-result);
        return nullptr;
    }
    return monitor;
}

// The udev daemon passes an event on after applying its rules. If no daemon runs, or it is silent,
// the kernel's own events tell as much about the devices.
struct Monitors {
    Monitor service;  // null where no device service runs
    Monitor kernel;

    bool AreOpen() const { return kernel != nullptr; }

    static Monitors Open(udev* context, const DeviceService& present, std::string& problem) {
        Monitors monitors;
        if (present.runs) {
            monitors.service = OpenMonitor(context, "udev", problem);
        }
        if (monitors.service || !present.runs) {
            monitors.kernel = OpenMonitor(context, "kernel", problem);
        }
        return monitors;
    }
};

int FileOf(const Monitor& monitor) {
    return monitor ? udev_monitor_get_fd(monitor.get()) : -1;
}

// Lists the USB devices. A device that is unplugged meanwhile can make a scan fail; the next scan
// works.
Enumeration UsbDevices(udev* context, std::string& problem) {
    int result = 0;
    for (int attempt = 0; attempt < kScans; ++attempt) {
        Enumeration devices(udev_enumerate_new(context));
        if (!devices) {
            result = -errno;
            break;
        }
        udev_enumerate_add_match_subsystem(devices.get(), "usb");
        result = udev_enumerate_scan_devices(devices.get());
        if (result >= 0) {
            return devices;
        }
    }
    problem = "the devices cannot be listed: " + SystemMessage(-result);
    return nullptr;
}

// Converts the device's event; nothing when it is not about a printer.
std::optional<UsbEvent> EventOf(udev_device* device) {
    if (TextOf(udev_device_get_action(device)) == "remove") {
        UsbPrinter gone;
        gone.path = TextOf(udev_device_get_syspath(device));
        return UsbEvent{UsbEvent::Kind::removed, gone};
    }
    if (const std::optional<UsbPrinter> printer = PrinterOf(device)) {
        return UsbEvent{UsbEvent::Kind::added, *printer};
    }
    return std::nullopt;
}

class UdevEvents : public UsbEvents {
public:
    UdevEvents(Context&& freshContext, Monitors&& openMonitors, const DeviceService& present)
        : context(std::move(freshContext)),
          monitors(std::move(openMonitors)),
          service(present),
          wake(eventfd(0, EFD_CLOEXEC)) {
        if (wake < 0) {
            throw std::system_error(errno, std::system_category(), "eventfd");
        }
    }
    ~UdevEvents() override { close(wake); }

    UsbEvent Wait() override {
        for (;;) {
            if (!monitors.AreOpen()) {
                return Reopen();
            }
            if (const std::optional<UsbEvent> event = WhatSilenceMeans()) {
                return *event;
            }
            std::array<pollfd, 3> files{pollfd{wake, POLLIN, 0},
                                        pollfd{FileOf(monitors.kernel), POLLIN, 0},
                                        pollfd{FileOf(monitors.service), POLLIN, 0}};
            if (poll(files.data(), files.size(), PollMilliseconds()) <= 0) {
                NoticeAnotherService();
                continue;
            }
            if (files[0].revents != 0) {
                return {UsbEvent::Kind::interrupted, {}};
            }
            // Kernel events first: the service's events repeat them.
            const std::optional<UsbEvent> event = files[1].revents != 0
                                                      ? FromKernel(files[1].revents)
                                                      : FromService(files[2].revents);
            if (event) {
                return *event;
            }
        }
    }

    void Interrupt() override { eventfd_write(wake, 1); }

private:
    using Clock = SilentService::Clock;

    int PollMilliseconds() const {
        const auto next = comparison.NextOverdue();
        if (!next) {
            return kServiceCheckMilliseconds;
        }
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(*next - Clock::now());
        return std::clamp(static_cast<int>(left.count()), 0, kServiceCheckMilliseconds);
    }

    // Returns events that the service has not passed on in time. Reports before the first of them
    // that the service is silent, and later that it answers again.
    std::optional<UsbEvent> WhatSilenceMeans() {
        if (!overdue) {
            overdue = comparison.TakeOverdue(Clock::now());
        }
        if (comparison.IsSilent() != isSilenceTold) {
            isSilenceTold = comparison.IsSilent();
            return UsbEvent{UsbEvent::Kind::trouble, {}, isSilenceTold ? kSilence : ""};
        }
        return std::exchange(overdue, std::nullopt);
    }

    // The device of the next event; null when there is none for us. Closes a monitor that has
    // failed or has dropped events.
    Device Receive(const Monitor& monitor, short signs) {
        errno = 0;
        Device device(udev_monitor_receive_device(monitor.get()));
        if (!device) {
            const bool dropped = errno != 0 && errno != EAGAIN && errno != EINTR;
            if (dropped || (signs & ~POLLIN) != 0) {
                Close(dropped ? SystemMessage(errno) : "they have ended");
            }
        }
        return device;
    }

    std::optional<UsbEvent> FromKernel(short signs) {
        const Device device = Receive(monitors.kernel, signs);
        std::optional<UsbEvent> event = device ? EventOf(device.get()) : std::nullopt;
        if (event && monitors.service) {
            comparison.ToldByKernel(udev_device_get_seqnum(device.get()), *event, Clock::now());
            return std::nullopt;
        }
        return event;
    }

    std::optional<UsbEvent> FromService(short signs) {
        const Device device = Receive(monitors.service, signs);
        const bool isNews =
            device && comparison.ToldByService(udev_device_get_seqnum(device.get()));
        return isNews ? EventOf(device.get()) : std::nullopt;
    }

    // Events between the end of a device service and the start of the next are lost, and its end is
    // not reported.
    void NoticeAnotherService() {
        const DeviceService now = DeviceService::Now();
        if (!(now == service)) {
            Close(now.runs ? "the device service has been started"
                           : "the device service has ended");
        }
    }

    void Close(const std::string& reason) {
        monitors = {};
        Host::Report(LOG_LEVEL_WARNING,
                     L"USB monitor: device events were missed: " + Base::FromUtf8(reason),
                     L"PrinterUsbDeviceManager::StartMonitor");
    }

    UsbEvent Reopen() {
        for (;;) {
            pollfd file{wake, POLLIN, 0};
            if (poll(&file, 1, kReopenMilliseconds) > 0) {
                return {UsbEvent::Kind::interrupted, {}};
            }
            std::string problem;
            service = DeviceService::Now();
            monitors = Monitors::Open(context.get(), service, problem);
            if (monitors.AreOpen()) {
                comparison = {};
                overdue.reset();
                isSilenceTold = false;
                reopenProblem.clear();
                return {UsbEvent::Kind::missed, {}};
            }
            if (problem != reopenProblem) {
                reopenProblem = problem;
                return {UsbEvent::Kind::trouble, {}, problem};
            }
        }
    }

    const Context context;
    Monitors monitors;
    DeviceService service;
    SilentService comparison;
    std::optional<UsbEvent> overdue;
    bool isSilenceTold = false;
    std::string reopenProblem;
    const int wake;
};

}  // namespace

bool ListUsbPrinters(std::vector<UsbPrinter>& printers, std::string& problem) {
    const Context context(udev_new());
    if (!context) {
        problem = "the devices cannot be listed: " + SystemMessage(errno);
        return false;
    }
    const Enumeration devices = UsbDevices(context.get(), problem);
    if (!devices) {
        return false;
    }
    for (udev_list_entry* entry = udev_enumerate_get_list_entry(devices.get()); entry != nullptr;
         entry = udev_list_entry_get_next(entry)) {
        const Device device(
            udev_device_new_from_syspath(context.get(), udev_list_entry_get_name(entry)));
        if (const auto printer = device ? PrinterOf(device.get()) : std::nullopt) {
            printers.push_back(*printer);
        }
    }
    return true;
}

std::string WhyUsbIsHidden() {
    constexpr const char* folder = "/sys/bus/usb";
    return access(folder, F_OK) == 0 || errno != ENOENT
               ? std::string()
               : std::string("the devices cannot be listed: there is no ") + folder +
                     ", as in a container, or where the kernel has no USB";
}

std::unique_ptr<UsbEvents> UsbEvents::Open(std::string& problem) {
    Context context(udev_new());
    if (!context) {
        problem = NoEvents(errno);
        return nullptr;
    }
    const DeviceService service = DeviceService::Now();
    Monitors monitors = Monitors::Open(context.get(), service, problem);
    if (!monitors.AreOpen()) {
        return nullptr;
    }
    return std::make_unique<UdevEvents>(std::move(context), std::move(monitors), service);
}

}  // namespace PrinterDiscoverAPI
