// SPDX-License-Identifier: Apache-2.0

#include "platform/os.h"

// Needs windows.h before it.
#include <winspool.h>

#include <algorithm>
#include <string_view>

#include "base/text/utf8.h"
#include "host/PrinterAdapter/port_kind.h"
#include "host/PrinterAdapter/spooler.h"
#include "host/PrinterAdapter/usb_port_windows.h"

namespace PrinterAdapter {

namespace {

constexpr DWORD kPrintersLevel = 2;
constexpr DWORD kPortsLevel = 2;

std::wstring TextOf(const wchar_t* text) {
    return text == nullptr ? std::wstring() : std::wstring(text);
}

// The records of one of the spooler's lists; `room` holds the records and, after them, their texts.
template <class Record>
struct SpoolerList {
    std::vector<std::byte> room;
    DWORD count = 0;
    DWORD error = ERROR_SUCCESS;

    const Record* begin() const { return reinterpret_cast<const Record*>(room.data()); }
    const Record* end() const { return begin() + count; }
};

// Calls with a larger buffer until the list fits; the list may grow between two calls.
template <class Record, class Function>
SpoolerList<Record> ListBy(Function&& function) {
    SpoolerList<Record> list;
    DWORD size = 0;
    while (function(reinterpret_cast<BYTE*>(list.room.data()), static_cast<DWORD>(list.room.size()),
                    &size, &list.count) == 0) {
        list.count = 0;
        list.error = GetLastError();
        if (list.error != ERROR_INSUFFICIENT_BUFFER || size <= list.room.size()) {
            return list;
        }
        list.room.resize(size);
    }
    list.error = ERROR_SUCCESS;
    return list;
}

// The host's ports, read once for each list of printers.
struct Ports {
    SpoolerList<PORT_INFO_2W> all =
        ListBy<PORT_INFO_2W>([](BYTE* room, DWORD size, DWORD* needed, DWORD* count) {
            return EnumPortsW(nullptr, kPortsLevel, room, size, needed, count);
        });
    std::vector<UsbPort> usb = UsbPorts();

    // The monitor's name and description.
    std::wstring DescriptionOf(std::wstring_view name) const {
        for (const PORT_INFO_2W& port : all) {
            if (TextOf(port.pPortName) == name) {
                return TextOf(port.pMonitorName) + L' ' + TextOf(port.pDescription);
            }
        }
        return {};
    }

    Base::DeviceId DeviceOf(std::wstring_view name) const {
        const auto port = std::find_if(usb.begin(), usb.end(),
                                       [name](const UsbPort& one) { return one.name == name; });
        return port == usb.end() ? Base::DeviceId() : port->id;
    }
};

std::wstring StateOf(DWORD status) {
    constexpr DWORD kWorking =
        PRINTER_STATUS_PRINTING | PRINTER_STATUS_PROCESSING | PRINTER_STATUS_BUSY;
    constexpr DWORD kStopped =
        PRINTER_STATUS_PAUSED | PRINTER_STATUS_ERROR | PRINTER_STATUS_OFFLINE |
        PRINTER_STATUS_PAPER_JAM | PRINTER_STATUS_PAPER_OUT | PRINTER_STATUS_NOT_AVAILABLE |
        PRINTER_STATUS_DOOR_OPEN | PRINTER_STATUS_NO_TONER | PRINTER_STATUS_USER_INTERVENTION;
    if ((status & kStopped) != 0) {
        return L"stopped";
    }
    return (status & kWorking) != 0 ? L"processing" : L"idle";
}

PrinterSdk::PrinterProperty PrinterOf(const PRINTER_INFO_2W& queue, const Ports& ports) {
    PrinterSdk::PrinterProperty printer;
    printer.name = TextOf(queue.pPrinterName);
    printer.description = TextOf(queue.pComment);
    printer.location = TextOf(queue.pLocation);
    printer.driverName = TextOf(queue.pDriverName);
    printer.state = StateOf(queue.Status);
    // If there are several ports, the first is used.
    const std::wstring names = TextOf(queue.pPortName);
    printer.portName = names.substr(0, names.find(L','));
    const bool isShared = !TextOf(queue.pServerName).empty();
    printer.connectType =
        isShared ? PrinterSdk::kConnectTypeWlan
                 : ConnectTypeOfPort(printer.portName, ports.DescriptionOf(printer.portName));
    if (printer.connectType == PrinterSdk::kConnectTypeUsb) {
        const Base::DeviceId device = ports.DeviceOf(printer.portName);
        printer.serialNumber = Base::FromUtf8(device.serialNumber);
        printer.modelID = Base::FromUtf8(device.model);
        printer.manufacturer = Base::FromUtf8(device.manufacturer);
    } else if (printer.connectType == PrinterSdk::kConnectTypeWlan) {
        // The spooler does not know the serial number, and all printers without one would count as
        // the same.
        printer.serialNumber = isShared ? printer.name : printer.portName;
    }
    return printer;
}

}  // namespace

SpoolerAnswer AskSpooler() {
    const auto queues =
        ListBy<PRINTER_INFO_2W>([](BYTE* room, DWORD size, DWORD* needed, DWORD* count) {
            return EnumPrintersW(PRINTER_ENUM_LOCAL | PRINTER_ENUM_CONNECTIONS, nullptr,
                                 kPrintersLevel, room, size, needed, count);
        });
    SpoolerAnswer answer;
    if (queues.error != ERROR_SUCCESS) {
        answer.problem =
            "no print spooler: EnumPrintersW failed: error " + std::to_string(queues.error);
        return answer;
    }
    const Ports ports;
    for (const PRINTER_INFO_2W& queue : queues) {
        answer.printers.push_back(PrinterOf(queue, ports));
    }
    return answer;
}

}  // namespace PrinterAdapter
