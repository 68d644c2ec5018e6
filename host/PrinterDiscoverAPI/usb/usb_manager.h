// SPDX-License-Identifier: Apache-2.0

#pragma once

// The operating-system functions that the manager of USB printers needs.

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/os.h"

namespace PrinterDiscoverAPI {

// The device interface class of USB printers, as Windows names it.
inline constexpr GUID kUsbPrinterClass{
    0x28d78fad, 0x5a12, 0x11d1, {0xae, 0x5b, 0x00, 0x00, 0xf8, 0x03, 0xa8, 0xc2}};

// One printer interface of a USB device. A device with several of them is still one printer.
struct UsbPrinter {
    std::string path;         // of the interface
    std::string devicePath;   // of the device with this interface
    std::wstring hardwareId;  // VID_vvvv&PID_pppp
    int bus = 0;              // 0 where the system does not number its buses
};

// VID_vvvv&PID_pppp with four upper-case hexadecimal digits each.
std::wstring UsbHardwareId(unsigned vendorId, unsigned productId);

// Lists the printer interfaces that are present now, in the order of their paths. Leaves out a
// device that is unplugged while it is read. False, with the reason in `problem`, when the system
// cannot list them.
bool ListUsbPrinters(std::vector<UsbPrinter>& printers, std::string& problem);

// Why a list of none says nothing: the system shows no USB device at all. Empty: it would.
std::string WhyUsbIsHidden();

struct UsbEvent {
    enum class Kind {
        added,       // `printer` is present; possibly it was before
        removed,     // the interface or device at `printer.path` is gone
        missed,      // events were lost: list the printers again
        trouble,     // `trouble` is the new problem of the events; empty: solved
        interrupted  // Interrupt was called
    };
    Kind kind;
    UsbPrinter printer;
    std::string trouble{};
};

// The system's device events, for one reader.
class UsbEvents {
public:
    // Collects events from now on. Null, with the reason in `problem`, when the system's device
    // service cannot be used.
    static std::unique_ptr<UsbEvents> Open(std::string& problem);

    UsbEvents() = default;
    UsbEvents(const UsbEvents&) = delete;
    UsbEvents& operator=(const UsbEvents&) = delete;
    virtual ~UsbEvents() = default;

    // Waits for the next event. When a failed device service is back, this returns one `missed`
    // event, and the problem is solved.
    virtual UsbEvent Wait() = 0;

    // Ends the current and every later Wait. Safe from any thread.
    virtual void Interrupt() = 0;
};

}  // namespace PrinterDiscoverAPI
