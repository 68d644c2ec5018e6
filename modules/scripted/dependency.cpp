// SPDX-License-Identifier: Apache-2.0

// What scripted_dependent depends on: a library with a scan that is not that module's own.

#include "VendorSdk/entry_points.h"

namespace VendorSdk {

using ScriptedDependencyFunction = int();

}  // namespace VendorSdk

VENDORSDK_EXPORT(ScriptedDependency);
int ScriptedDependency() {
    return 0;
}

VENDORSDK_EXPORT(StartDeviceScan);
int StartDeviceScan(VendorSdk::DeviceCallbackInfo*) {
    return 0;
}
