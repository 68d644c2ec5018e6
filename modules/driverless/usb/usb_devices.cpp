// SPDX-License-Identifier: Apache-2.0

#include "modules/driverless/usb/usb_devices.h"

#include <libusb.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <span>
#include <string>

#include "base/side_by_side.h"
#include "modules/driverless/common/diagnostics.h"
#include "modules/driverless/common/results.h"
#include "modules/driverless/usb/usb_device.h"

namespace Driverless {

namespace {

constexpr std::chrono::milliseconds kPatience{1000};
constexpr Base::SideBySideLimits kLimits{32, std::chrono::milliseconds(3000)};

struct ExitLibrary {
    void operator()(libusb_context* context) const { libusb_exit(context); }
};
using Library = std::unique_ptr<libusb_context, ExitLibrary>;

struct FreeList {
    void operator()(libusb_device** list) const { libusb_free_device_list(list, 1); }
};
using DeviceList = std::unique_ptr<libusb_device*, FreeList>;

struct Wanted {
    std::uint16_t productId;
    std::uint16_t vendorId;
    std::size_t most;

    bool Is(libusb_device* device) const {
        libusb_device_descriptor descriptor{};
        return libusb_get_device_descriptor(device, &descriptor) == LIBUSB_SUCCESS &&
               descriptor.idProduct == productId && descriptor.idVendor == vendorId &&
               !PrinterInterfacesOf(device).empty();
    }
};

std::string PlaceOf(libusb_device* device) {
    std::string place;
    for (const std::uint8_t number : PathOf(device)) {
        place += place.empty() ? "" : place.find('-') == std::string::npos ? "-" : ".";
        place += std::to_string(number);
    }
    return place;
}

int ResultOf(int error) {
    switch (error) {
        case LIBUSB_SUCCESS:
            return kOk;
        case LIBUSB_ERROR_ACCESS:
            return kNoAccess;
        case LIBUSB_ERROR_BUSY:
            return kBusy;
        default:
            return kNoUsbAnswer;
    }
}

const char* Advice(int result) {
    switch (result) {
        case kNoAccess:
            return "this user has no rights to the device; those of the group \"lp\" often have";
        case kBusy:
            return "another program has the device: end it, or wait for it";
        default:
            return "it does not answer: see whether it is switched on, and plug it in again";
    }
}

// The outcome of querying one device.
struct Description {
    int error = LIBUSB_ERROR_TIMEOUT;  // unchanged for a device that was not queried in time
    UsbPrinter printer;
};

Description DescriptionOf(libusb_device* device, const Wanted& wanted) {
    Description description{LIBUSB_SUCCESS, {}};
    description.printer.place = PlaceOf(device);
    description.printer.productId = wanted.productId;
    description.printer.vendorId = wanted.vendorId;
    UsbDevice opened(device, kPatience);
    description.error = opened.Open();
    if (description.error == LIBUSB_SUCCESS) {
        description.error = opened.Describe(PrinterInterfacesOf(device), description.printer);
    }
    return description;
}

void ReportFailure(const std::string& place, int error) {
    ReportProblem("the printer at usb:" + place + " cannot be asked: " + Advice(ResultOf(error)) +
                  " (" + libusb_strerror(error) + ")");
}

std::vector<Description> AskAll(std::span<libusb_device*> devices, const Wanted& wanted) {
    std::vector<Description> descriptions(devices.size());
    const std::string problem = Base::AskSideBySide(
        devices.size(), kLimits,
        [&](std::size_t number) { descriptions[number] = DescriptionOf(devices[number], wanted); });
    if (!problem.empty()) {
        ReportDetail("no thread left for printers on USB: " + problem);
    }
    return descriptions;
}

UsbLook Failed(int error) {
    ReportProblem(std::string("cannot list USB devices: ") + libusb_strerror(error));
    return {kNoUsbAnswer, {}};
}

UsbLook Describe(std::span<libusb_device*> devices, const Wanted& wanted) {
    UsbLook look{kOk, {}};
    const std::vector<Description> descriptions = AskAll(devices, wanted);
    for (std::size_t i = 0; i < devices.size(); ++i) {
        if (look.printers.size() == wanted.most) {
            ReportProblem("there are more than " + std::to_string(wanted.most) +
                          " printers of one model on USB; the others are left out");
            break;
        }
        const auto& [error, printer] = descriptions[i];
        if (error == LIBUSB_SUCCESS) {
            look.printers.push_back(printer);
        } else if (error != LIBUSB_ERROR_NO_DEVICE) {
            ReportFailure(PlaceOf(devices[i]), error);
            look.result = look.result == kOk ? ResultOf(error) : look.result;
        }
    }
    look.result = look.printers.empty() ? look.result : kOk;
    return look;
}

}  // namespace

UsbLook LookForUsbPrinters(std::uint16_t productId, std::uint16_t vendorId, std::size_t most) {
    libusb_context* context = nullptr;
    if (const int error = libusb_init(&context); error != LIBUSB_SUCCESS) {
        return Failed(error);
    }
    const Library library(context);
    libusb_device** list = nullptr;
    const auto count = libusb_get_device_list(context, &list);
    if (count < 0) {
        return Failed(static_cast<int>(count));
    }
    const DeviceList owner(list);
    const Wanted wanted{productId, vendorId, most};
    std::vector<libusb_device*> devices;
    for (libusb_device* const device : std::span(list, static_cast<std::size_t>(count))) {
        if (wanted.Is(device)) {
            devices.push_back(device);
        }
    }
    std::sort(devices.begin(), devices.end(), [](libusb_device* left, libusb_device* right) {
        return PathOf(left) < PathOf(right);
    });
    return Describe(devices, wanted);
}

}  // namespace Driverless
