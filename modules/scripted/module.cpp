// One scripted module. The build says of each entry point whether this module has it:
// SCRIPTED_<name> is VENDORSDK_EXPORT or SCRIPTED_WITHOUT.

#include "vendor.h"

#define SCRIPTED_WITHOUT(name) [[maybe_unused]] static VendorSdk::name##Function name

namespace ScriptedVendor {

const char* const kModuleName = SCRIPTED_MODULE_NAME;

namespace {

template <class Record>
int Answer(const char* entryPoint, const Record* record) {
    const Presence vendor;
    return vendor ? vendor->Answer(entryPoint, record, sizeof *record) : 0;
}

}  // namespace

}  // namespace ScriptedVendor

VENDORSDK_EXPORT(ScriptedVendorControl);
const ScriptedVendor::Control* ScriptedVendorControl() {
    return &ScriptedVendor::ControlFunctions();
}

SCRIPTED_StartDeviceScan(StartDeviceScan);
int StartDeviceScan(VendorSdk::DeviceCallbackInfo* info) {
    const ScriptedVendor::Presence vendor;
    return vendor ? vendor->Scan(info) : 0;
}

SCRIPTED_StopDeviceScan(StopDeviceScan);
int StopDeviceScan() {
    const ScriptedVendor::Presence vendor;
    if (!vendor) {
        return 0;
    }
    const int result = vendor->Answer("StopDeviceScan", nullptr, 0);
    vendor->StopScans();
    return result;
}

SCRIPTED_GetDeviceConnectState(GetDeviceConnectState);
int GetDeviceConnectState(const VendorSdk::DeviceInfo* device) {
    return ScriptedVendor::Answer("GetDeviceConnectState", device);
}

SCRIPTED_BeforeConnectEventNotify(BeforeConnectEventNotify);
int BeforeConnectEventNotify(const VendorSdk::DeviceInfo* device) {
    return ScriptedVendor::Answer("BeforeConnectEventNotify", device);
}

SCRIPTED_ConnectSuccessNotifyEvent(ConnectSuccessNotifyEvent);
int ConnectSuccessNotifyEvent(const VendorSdk::DeviceInfo* device) {
    return ScriptedVendor::Answer("ConnectSuccessNotifyEvent", device);
}

SCRIPTED_ConnectFailNotifyEvent(ConnectFailNotifyEvent);
int ConnectFailNotifyEvent(const VendorSdk::DeviceInfo* device) {
    return ScriptedVendor::Answer("ConnectFailNotifyEvent", device);
}
