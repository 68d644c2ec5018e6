// SPDX-License-Identifier: Apache-2.0

#include "VendorSdk/entry_points.h"

extern "C" VendorSdk::StartDeviceScanFunction StartDeviceScan;

VENDORSDK_EXPORT(StopDeviceScan);

int StopDeviceScan() {
    return StartDeviceScan(nullptr);
}
