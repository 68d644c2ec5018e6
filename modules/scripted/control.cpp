// SPDX-License-Identifier: Apache-2.0

#include "vendor.h"

namespace ScriptedVendor {

namespace {

template <class Info, class Record>
int ReportNow(Info* (Vendor::*registrationOf)(), const Record* record) {
    const Presence vendor;
    const Info* const registration = ((*vendor).*registrationOf)();
    return registration == nullptr ? -1 : vendor->Report(*registration, record);
}

constexpr Control Functions(const char* moduleName) {
    Control control{};
    control.moduleName = moduleName;
    control.Script = [](const char* lines) { return Presence()->Apply(lines); };
    control.AddDevice = [](const VendorSdk::DeviceInfo* device) { Presence()->AddDevice(*device); };
    control.AddNetwork = [](const VendorSdk::WifiConfigInfo* network) {
        Presence()->AddNetwork(*network);
    };
    control.Block = [](const char* entryPoint) { Presence()->Block(entryPoint); };
    control.Unblock = [](const char* entryPoint) { Presence()->Unblock(entryPoint); };
    control.ReportNow = [](const VendorSdk::DeviceInfo* device) {
        return ReportNow(&Vendor::Registration, device);
    };
    control.ReportNetworkNow = [](const VendorSdk::WifiConfigInfo* network) {
        return ReportNow(&Vendor::WifiRegistration, network);
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
    control.WifiRegistration = [] { return Presence()->WifiRegistration(); };
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
