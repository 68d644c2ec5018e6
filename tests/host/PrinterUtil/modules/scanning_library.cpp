// SPDX-License-Identifier: Apache-2.0

#include "VendorSdk/entry_points.h"

VENDORSDK_EXPORT(StartDeviceScan);

int StartDeviceScan(VendorSdk::DeviceCallbackInfo*) {
    return 18;
}
