// SPDX-License-Identifier: Apache-2.0

#include "VendorSdk/entry_points.h"

VENDORSDK_EXPORT(StopDeviceScan);

int StopDeviceScan() {
    return 17;
}
