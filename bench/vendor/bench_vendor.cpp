// A vendor with every scan entry point, each doing as little as can be.

#include "VendorSdk/entry_points.h"

VENDORSDK_EXPORT(StartDeviceScan);
VENDORSDK_EXPORT(StopDeviceScan);
VENDORSDK_EXPORT(GetDeviceConnectState);
VENDORSDK_EXPORT(BeforeConnectEventNotify);
VENDORSDK_EXPORT(ConnectSuccessNotifyEvent);
VENDORSDK_EXPORT(ConnectFailNotifyEvent);

int StartDeviceScan(VendorSdk::DeviceCallbackInfo*) {
    return 0;
}

int StopDeviceScan() {
    return 0;
}

int GetDeviceConnectState(const VendorSdk::DeviceInfo*) {
    return 1;
}

int BeforeConnectEventNotify(const VendorSdk::DeviceInfo*) {
    return 0;
}

int ConnectSuccessNotifyEvent(const VendorSdk::DeviceInfo*) {
    return 0;
}

int ConnectFailNotifyEvent(const VendorSdk::DeviceInfo*) {
    return 0;
}
