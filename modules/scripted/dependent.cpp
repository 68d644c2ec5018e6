// SPDX-License-Identifier: Apache-2.0

// A module whose only StartDeviceScan is in a library it depends on: it has none.

#include "VendorSdk/entry_points.h"

extern "C" int ScriptedDependency();

VENDORSDK_EXPORT(StopDeviceScan);
int StopDeviceScan() {
    return ScriptedDependency();
}
