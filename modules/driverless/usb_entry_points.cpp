// SPDX-License-Identifier: Apache-2.0

// The entry points for printers on USB. None lets an exception out, and none needs more of a record
// than its bytes.

#include <algorithm>
#include <chrono>
#include <span>
#include <vector>

#include "VendorSdk/entry_points.h"
#include "modules/driverless/common/diagnostics.h"
#include "modules/driverless/common/guarded.h"
#include "modules/driverless/common/results.h"
#include "modules/driverless/discovery/running_scans.h"
#include "modules/driverless/setup/host_wifi.h"
#include "modules/driverless/setup/offered_networks.h"
#include "modules/driverless/setup/wifi_setup.h"
#include "modules/driverless/usb/usb_devices.h"
#include "modules/driverless/usb/usb_other_names.h"

VENDORSDK_EXPORT(GetDeviceInfoByUsb);
VENDORSDK_EXPORT(USBWifiScan);
VENDORSDK_EXPORT(PrinterUSBNetConfigEvent);

namespace {

using namespace Driverless;

// A new scan takes some seconds.
constexpr std::chrono::milliseconds kPatienceForNetworks{12000};
constexpr std::chrono::milliseconds kPatienceForCurrent{1000};

template <typename Record, typename Things>
void Write(const Things& things, Record* records, std::int32_t& count) {
    std::transform(things.begin(), things.end(), records,
                   [](const auto& thing) { return ToRecord(thing); });
    count = static_cast<std::int32_t>(things.size());
}

int DescribePrinters(std::uint16_t productId, std::uint16_t vendorId,
                     VendorSdk::DeviceInfo* devices, std::int32_t& count) {
    const UsbLook look = LookForUsbPrinters(productId, vendorId, VendorSdk::kMaxDevices);
    KnownUsbNames().Remember(vendorId, productId, look.printers);
    Write(look.printers, devices, count);
    return look.result;
}

int DescribeNetworks(int weakest, VendorSdk::WifiConfigInfo* networks, std::int32_t& count) {
    const auto current = CurrentNetwork(kPatienceForCurrent);
    const auto inRange = NetworksInRange(kPatienceForNetworks);
    // A service that hangs may also return no networks.
    if (!inRange || (inRange->empty() && !current)) {
        ReportProblem("the host's Wi-Fi service does not answer");
        return kNoWifiAnswer;
    }
    const auto offered = OfferedNetworks().Take(*inRange, current ? current->name : std::string());
    Write(StrongestOf(offered, weakest, VendorSdk::kMaxNetworks), networks, count);
    return kOk;
}

}  // namespace

int GetDeviceInfoByUsb(std::uint16_t productId, std::uint16_t vendorId,
                       VendorSdk::DeviceInfo* devices, std::int32_t* count) {
    if (devices == nullptr || count == nullptr) {
        return kNoRecord;
    }
    *count = 0;
    return Guarded(kNoResources,
                   [&] { return DescribePrinters(productId, vendorId, devices, *count); });
}

int USBWifiScan(const VendorSdk::DeviceInfo* device, std::int32_t option,
                VendorSdk::WifiConfigInfo* networks, std::int32_t* count) {
    if (device == nullptr || networks == nullptr || count == nullptr) {
        return kNoRecord;
    }
    *count = 0;
    return Guarded(kNoResources, [&] {
        PrepareForExit();
        return DescribeNetworks(option, networks, *count);
    });
}

int PrinterUSBNetConfigEvent(const VendorSdk::DeviceInfo* device,
                             const VendorSdk::WifiConfigInfo* network) {
    if (device == nullptr || network == nullptr) {
        return kNoRecord;
    }
    return Guarded(kNoResources, [&] {
        PrepareForExit();
        return SetUpWifiOverUsb(*device, *network);
    });
}
