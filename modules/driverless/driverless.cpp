// The module's entry points. None lets an exception out, and none needs more of a record than its
// bytes.

#include <chrono>
#include <exception>
#include <string>

#include "VendorSdk/entry_points.h"
#include "diagnostics.h"
#include "dnssd_browser.h"
#include "ipp_query.h"
#include "known_printers.h"
#include "printer.h"
#include "results.h"
#include "running_scans.h"

VENDORSDK_EXPORT(StartDeviceScan);
VENDORSDK_EXPORT(StopDeviceScan);
VENDORSDK_EXPORT(GetDeviceConnectState);
VENDORSDK_EXPORT(BeforeConnectEventNotify);
VENDORSDK_EXPORT(ConnectSuccessNotifyEvent);
VENDORSDK_EXPORT(ConnectFailNotifyEvent);

namespace {

using namespace Driverless;

// How long the application has to come back from its callback.
constexpr std::chrono::milliseconds kPatienceWithCallback{2000};
constexpr std::chrono::milliseconds kPatienceForAddress{2000};

// What a scan or a lookup found of the record's printer, else what the record itself says.
Printer PrinterOf(const VendorSdk::DeviceInfo& record) {
    const Printer printer = FromRecord(record);
    return KnownPrinters().Find(printer.serialNumber).value_or(printer);
}

bool HasAddress(const Printer& printer) {
    return printer.kind != ServiceKind::None && printer.port != 0 && !printer.address.empty();
}

// Addresses are given to other printers, so that an answer alone proves little.
bool IsSamePrinter(const Printer& printer, const PrinterAttributes& attributes) {
    const std::string uuid = PlainUuid(attributes.uuid);
    if (!printer.uuid.empty() && !uuid.empty()) {
        return printer.uuid == uuid;
    }
    const std::string serialNumber = SerialNumber(attributes);
    return serialNumber.empty() || printer.serialNumber.empty() ||
           printer.serialNumber == serialNumber || printer.serialNumber == uuid ||
           printer.serialNumber.find('@') != std::string::npos;
}

int StateFrom(const Printer& printer, const IppAnswer& answer) {
    switch (answer.kind) {
        case IppAnswer::Kind::NoAnswer:
            return kNoAnswer;
        case IppAnswer::Kind::NoPrinter:
            return kNoPrinter;
        case IppAnswer::Kind::Attributes:
            break;
    }
    if (!IsSamePrinter(printer, answer.attributes)) {
        return kOtherPrinter;
    }
    return answer.attributes.acceptsJobs && !answer.attributes.stopped ? kReady : kNotReady;
}

int ConnectState(const VendorSdk::DeviceInfo& record) {
    const Printer printer = PrinterOf(record);
    if (!HasAddress(printer)) {
        return kUnknownPrinter;
    }
    if (!SpeaksIpp(printer.kind)) {
        return AcceptsConnection(printer, kAnswerPatience) ? kReady : kNoAnswer;
    }
    return StateFrom(printer, AskInTime(printer, kAnswerPatience));
}

int LookUpAddress(const VendorSdk::DeviceInfo& record) {
    const Printer printer = PrinterOf(record);
    if (!HasAddress(printer)) {
        return kUnknownPrinter;
    }
    if (printer.id.kind == ServiceKind::None) {
        return kOk;  // all there is stands in the record
    }
    const auto service = ResolveAgain(printer.id, kPatienceForAddress);
    if (!service) {
        ReportDetail(printer.serialNumber + " is not announced any more");
        return kNoAnswer;
    }
    Printer fresh = printer;
    fresh.host = service->host;
    fresh.address = service->address;
    fresh.port = service->port;
    KnownPrinters().Remember(fresh);
    return kOk;
}

int Keep(const VendorSdk::DeviceInfo& record) {
    const Printer printer = PrinterOf(record);
    if (!HasAddress(printer)) {
        return kUnknownPrinter;
    }
    KnownPrinters().Remember(printer);
    return kOk;
}

int Drop(const VendorSdk::DeviceInfo& record) {
    KnownPrinters().Forget(FromRecord(record).serialNumber);
    return kOk;
}

// Calls `function`; what it throws (out of memory, no further thread) becomes `failed`.
template <typename Function>
int Guarded(int failed, Function function) {
    try {
        return function();
    } catch (const std::exception& exception) {
        ReportProblem(std::string("out of resources: ") + exception.what());
        return failed;
    }
}

int WithRecord(const VendorSdk::DeviceInfo* device, int (*function)(const VendorSdk::DeviceInfo&)) {
    if (device == nullptr) {
        return kUnknownPrinter;
    }
    return Guarded(kNoAnswer, [&] { return function(*device); });
}

}  // namespace

int StartDeviceScan(VendorSdk::DeviceCallbackInfo* info) {
    if (info == nullptr || info->callback == nullptr) {
        ReportProblem("a scan was started without a callback");
        return kNoListener;
    }
    return Guarded(kNoBrowsing, [&] { return RunningScans().Run(info); });
}

int StopDeviceScan() {
    return Guarded(kStillReporting, [] {
        return RunningScans().StopAll(kPatienceWithCallback) ? kOk : kStillReporting;
    });
}

int GetDeviceConnectState(const VendorSdk::DeviceInfo* device) {
    return WithRecord(device, ConnectState);
}

int BeforeConnectEventNotify(const VendorSdk::DeviceInfo* device) {
    return WithRecord(device, LookUpAddress);
}

int ConnectSuccessNotifyEvent(const VendorSdk::DeviceInfo* device) {
    return WithRecord(device, Keep);
}

int ConnectFailNotifyEvent(const VendorSdk::DeviceInfo* device) {
    return WithRecord(device, Drop);
}
