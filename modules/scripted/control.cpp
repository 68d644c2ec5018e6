#include "vendor.h"

namespace ScriptedVendor {

namespace {

constexpr Control Functions(const char* moduleName) {
    Control control{};
    control.moduleName = moduleName;
    control.Script = [](const char* lines) { return Presence()->Apply(lines); };
    control.AddDevice = [](const VendorSdk::DeviceInfo* device) { Presence()->AddDevice(*device); };
    control.Block = [](const char* entryPoint) { Presence()->Block(entryPoint); };
    control.Unblock = [](const char* entryPoint) { Presence()->Unblock(entryPoint); };
    control.ReportNow = [](const VendorSdk::DeviceInfo* device) {
        const Presence vendor;
        const VendorSdk::DeviceCallbackInfo* const registration = vendor->Registration();
        return registration == nullptr ? -1 : vendor->Report(*registration, device);
    };
    control.CallCount = [] { return Presence()->CallCount(); };
    control.ReadCall = [](std::size_t index, Call* call) {
        return Presence()->ReadCall(index, *call);
    };
    control.CallbackCount = [] { return Presence()->CallbackCount(); };
    control.ReadCallbackResult = [](std::size_t index, int* result) {
        return Presence()->ReadCallbackResult(index, *result);
    };
    control.Registration = [] { return Presence()->Registration(); };
    control.RunningScans = [] { return Presence()->RunningScans(); };
    control.WaitForCalls = [](const char* entryPoint, std::size_t count, unsigned milliseconds) {
        return Presence()->WaitForCalls(entryPoint, count, milliseconds);
    };
    control.WaitForCallbacks = [](std::size_t count, unsigned milliseconds) {
        return Presence()->WaitForCallbacks(count, milliseconds);
    };
    control.WaitForRunningScans = [](int count, unsigned milliseconds) {
        return Presence()->WaitForRunningScans(count, milliseconds);
    };
    return control;
}

}  // namespace

const Control& ControlFunctions() {
    static const Control control = Functions(kModuleName);
    return control;
}

}  // namespace ScriptedVendor
