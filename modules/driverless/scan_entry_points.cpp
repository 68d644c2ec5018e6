// SPDX-License-Identifier: Apache-2.0

// The entry points of the network scan. None lets an exception out, and none needs more of a record
// than its bytes.

#include <atomic>
#include <chrono>
#include <memory>
#include <string>

#include "VendorSdk/entry_points.h"
#include "modules/driverless/common/diagnostics.h"
#include "modules/driverless/common/guarded.h"
#include "modules/driverless/common/results.h"
#include "modules/driverless/discovery/connect_state.h"
#include "modules/driverless/discovery/dnssd_browser.h"
#include "modules/driverless/discovery/known_printers.h"
#include "modules/driverless/discovery/running_scans.h"
#include "modules/driverless/discovery/scan_session.h"
#include "modules/driverless/printer/printer.h"

VENDORSDK_EXPORT(StartDeviceScan);
VENDORSDK_EXPORT(StopDeviceScan);
VENDORSDK_EXPORT(GetDeviceConnectState);
VENDORSDK_EXPORT(BeforeConnectEventNotify);
VENDORSDK_EXPORT(ConnectSuccessNotifyEvent);
VENDORSDK_EXPORT(ConnectFailNotifyEvent);

namespace {

using namespace Driverless;

// The time that the application's callback has to return.
constexpr std::chrono::milliseconds kPatienceWithCallback{2000};
constexpr std::chrono::milliseconds kPatienceForAddress{2000};

// The remembered printer of the record, else the printer from the record itself.
Printer PrinterOf(const VendorSdk::DeviceInfo& record) {
    const Printer printer = FromRecord(record);
    return KnownPrinters().Find(printer).value_or(printer);
}

int LookUpAddress(const VendorSdk::DeviceInfo& record) {
    const Printer printer = PrinterOf(record);
    if (!HasAddress(printer)) {
        return kUnknownPrinter;
    }
    if (printer.id.kind == ServiceKind::None) {
        return kOk;  // only the record is known
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

int RunScan(VendorSdk::DeviceCallbackInfo* info) {
    const auto report = [info](const Printer& printer) {
        const VendorSdk::DeviceInfo record = ToRecord(printer);
        // The application may change its registration at any time.
        const auto callback = std::atomic_ref(info->callback).load();
        if (callback != nullptr) {
            callback(&record);
        }
    };
    return RunningScans().Run(info, std::make_shared<ScanSession>(report));
}

int Drop(const VendorSdk::DeviceInfo& record) {
    KnownPrinters().Forget(FromRecord(record));
    return kOk;
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
    return Guarded(kNoBrowsing, [&] { return RunScan(info); });
}

int StopDeviceScan() {
    return Guarded(kStillReporting, [] {
        return RunningScans().StopAll(kPatienceWithCallback) ? kOk : kStillReporting;
    });
}

int GetDeviceConnectState(const VendorSdk::DeviceInfo* device) {
    return WithRecord(device, [](const VendorSdk::DeviceInfo& record) {
        const auto [own, latest] = KnownPrinters().PlacesToAsk(FromRecord(record));
        return ConnectState(own, latest);
    });
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
