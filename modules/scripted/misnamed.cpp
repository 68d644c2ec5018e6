// SPDX-License-Identifier: Apache-2.0

// A vendor's module as it comes out when its entry points are not declared as they should be: the
// compiler decorates their names, and one has another case.

int StartDeviceScan(void*) {
    return 0;
}

namespace Acme {

int StopDeviceScan() {
    return 0;
}

}  // namespace Acme

extern "C" int getDeviceConnectState(const void*) {
    return 0;
}
