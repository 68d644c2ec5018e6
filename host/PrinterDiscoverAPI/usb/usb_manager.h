#pragma once

// What the manager of USB printers asks the operating system for.

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
    std::string devicePath;   // of the device that has it
    std::wstring hardwareId;  // VID_vvvv&PID_pppp
    int bus = 0;              // 0 where the system does not number its buses
};

// VID_vvvv&PID_pppp with four upper-case hexadecimal digits each.
std::wstring UsbHardwareId(unsigned vendorId, unsigned productId);

// The printer interfaces that are there now, in the order of their paths. A device that goes away
// while it is read is left out. False, with the reason in `problem`, when the system cannot say.
bool ListUsbPrinters(std::vector<UsbPrinter>& printers, std::string& problem);

// Why a list of none says nothing: the system shows no USB device at all. Empty: it would.
std::string WhyUsbIsHidden();

struct UsbEvent {
    enum class Kind {
        added,       // `printer` is there; it may have been there before
        removed,     // what stands at `printer.path`, an interface or a device, is gone
        missed,      // events were lost: only a new list tells what is there
        trouble,     // `trouble` is what is wrong with the events from now on; empty: nothing more
        interrupted  // nothing happened; Interrupt was called
    };
    Kind kind;
    UsbPrinter printer;
    std::string trouble{};
};

// The system's device events, for one reader.
class UsbEvents {
public:
    // Events that happen from now on are kept. Null, with the reason in `problem`, when the
    // system's device service cannot be used.
    static std::unique_ptr<UsbEvents> Open(std::string& problem);

    UsbEvents() = default;
    UsbEvents(const UsbEvents&) = delete;
    UsbEvents& operator=(const UsbEvents&) = delete;
    virtual ~UsbEvents() = default;

    // Waits for the next event. A device service that fails for a while is one `missed` event when
    // it is there again, and ends what trouble there was.
    virtual UsbEvent Wait() = 0;

    // Ends the waiting, now and from now on; from any thread.
    virtual void Interrupt() = 0;
};

}  // namespace PrinterDiscoverAPI
