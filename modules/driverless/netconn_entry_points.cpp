// SPDX-License-Identifier: Apache-2.0

// The entry points for a printer's own network. None lets an exception out, and none needs more of
// a record than its bytes.

#include <chrono>
#include <memory>

#include "VendorSdk/entry_points.h"
#include "modules/driverless/common/diagnostics.h"
#include "modules/driverless/common/guarded.h"
#include "modules/driverless/common/results.h"
#include "modules/driverless/discovery/known_printers.h"
#include "modules/driverless/discovery/running_scans.h"
#include "modules/driverless/setup/access_point.h"
#include "modules/driverless/setup/local_network.h"
#include "modules/driverless/setup/network_scan.h"
#include "modules/driverless/setup/wifi_setup.h"

VENDORSDK_EXPORT(StartAPWifiScan);
VENDORSDK_EXPORT(StopAPWifiScan);
VENDORSDK_EXPORT(PrinterAPNetConfigEvent);
VENDORSDK_EXPORT(IsLocalAreaNetworkOK);
VENDORSDK_EXPORT(GetDeviceInfoByNet);
VENDORSDK_EXPORT(IsConnectCurrentWifiAP);

namespace {

using namespace Driverless;

// The time that the application's callback has to return.
constexpr std::chrono::milliseconds kPatienceWithCallback{2000};

int DescribePrinter(VendorSdk::DeviceInfo& device) {
    const AccessPointSearch search = FindAccessPoint();
    if (!search.found) {
        return search.result;
    }
    KnownPrinters().Remember(search.found->printer);
    device = ToRecord(search.found->printer);
    return kOk;
}

}  // namespace

int StartAPWifiScan(VendorSdk::WifiCallbackInfo* info) {
    if (info == nullptr || info->callback == nullptr) {
        ReportProblem("a scan was started without a callback");
        return kNoListener;
    }
    return Guarded(kNoResources, [&] {
        return RunningNetworkScans().Run(info, std::make_shared<NetworkScan>(info));
    });
}

int StopAPWifiScan() {
    return Guarded(kStillReporting, [] {
        return RunningNetworkScans().StopAll(kPatienceWithCallback) ? kOk : kStillReporting;
    });
}

int PrinterAPNetConfigEvent(VendorSdk::WifiConfigInfo* network) {
    if (network == nullptr) {
        return kNotValid;
    }
    return Guarded(kNoResources, [&] {
        PrepareForExit();
        return SetUpWifi(*network);
    });
}

int IsLocalAreaNetworkOK(VendorSdk::DeviceInfo* device) {
    if (device == nullptr) {
        return kNoIdentity;
    }
    return Guarded(kNoResources, [&] { return IsOnLocalNetwork(*device); });
}

int GetDeviceInfoByNet(VendorSdk::DeviceInfo* device) {
    if (device == nullptr) {
        return kNotReached;
    }
    return Guarded(kNoResources, [&] { return DescribePrinter(*device); });
}

int IsConnectCurrentWifiAP() {
    return Guarded(kNoResources, [] { return FindAccessPoint().result; });
}
