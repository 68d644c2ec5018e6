// SPDX-License-Identifier: Apache-2.0

// release_at_exit scan|access-point|usb RECORD: that family's dispatcher binds a list of vendors
// with everything a list can hold and ends; RECORD then names the modules that the broker gave
// back, in order, each with what the dispatcher answered at that moment, and then what every
// operation does once the dispatcher is gone.

#include "DeviceDiscover/DeviceDiscover.h"
#include "tests/support/recording_log.h"
#include "tests/support/release_watch.h"
#include "tests/support/scripted_vendors.h"

namespace {

using namespace PrinterDeviceDiscoverSdk;

void NoteResult(const char* operation, int result) {
    const std::wstring text = RecordingLog::Lines().back().text;
    ReleaseWatch::Note(std::string(operation) + ' ' + std::to_string(result) + ' ' +
                       std::string(text.begin(), text.begin() + 8));
}

void CallEveryScanOperation() {
    RecordingLog::Clear();
    const DeviceCallbackInfo info{};
    DeviceInfo device{};
    device.modelID[0] = 'a';
    NoteResult("StartDeviceScan", StartDeviceScan(&info));
    NoteResult("StopDeviceScan", StopDeviceScan());
    NoteResult("GetDeviceConnectState", GetDeviceConnectState(&device));
    NoteResult("BeforeConnectEventNotify", BeforeConnectEventNotify(&device));
    NoteResult("ConnectSuccessNotifyEvent", ConnectSuccessNotifyEvent(&device));
    NoteResult("ConnectFailNotifyEvent", ConnectFailNotifyEvent(&device));
    ReleaseWatch::Note(std::to_string(RecordingLog::Lines().size()) + " lines");
}

int StopAccessPointScan() {
    return NetConnInterface::GetInstance().StopAPWifiScan();
}

void CallEveryAccessPointOperation() {
    RecordingLog::Clear();
    NetConnInterface& dispatcher = NetConnInterface::GetInstance();
    DeviceInfo device{};
    device.modelID[0] = 'a';
    NoteResult("StartAPWifiScan", dispatcher.StartAPWifiScan({}));
    NoteResult("StopAPWifiScan", dispatcher.StopAPWifiScan());
    NoteResult("PrinterAPNetConfigEvent", dispatcher.PrinterAPNetConfigEvent({}));
    NoteResult("GetDeviceInfoByNet", dispatcher.GetDeviceInfoByNet(device));
    NoteResult("IsLocalAreaNetworkOK", dispatcher.IsLocalAreaNetworkOK(device));
    ReleaseWatch::Note(std::to_string(RecordingLog::Lines().size()) + " lines");
}

int EnumerateUsb() {
    std::vector<DeviceInfo> devices;
    return UsbConnInterface::GetInstance().GetDeviceInfoByUsb(devices, L"VID_1234&PID_gamma");
}

void CallEveryUsbOperation() {
    RecordingLog::Clear();
    UsbConnInterface& dispatcher = UsbConnInterface::GetInstance();
    DeviceInfo device{};
    device.modelID[0] = 'a';
    std::vector<WifiConfigInfo> networks;
    NoteResult("GetDeviceInfoByUsb", EnumerateUsb());
    NoteResult("GetUSBWifiScan", dispatcher.GetUSBWifiScan(device, networks, 0));
    NoteResult("PrinterUSBNetConfigEvent", dispatcher.PrinterUSBNetConfigEvent(device, {}));
    ReleaseWatch::Note(std::to_string(RecordingLog::Lines().size()) + " lines");
}

// A family's dispatcher: one of its operations, which binds the vendors, and all of them.
struct Family {
    std::string name;
    int (*use)();
    void (*callEveryOperation)();
};
const Family kFamilies[] = {{"scan", StopDeviceScan, CallEveryScanOperation},
                            {"access-point", StopAccessPointScan, CallEveryAccessPointOperation},
                            {"usb", EnumerateUsb, CallEveryUsbOperation}};

VendorInfo Vendor(const std::string& productId, const std::string& moduleName) {
    VendorInfo vendor = ScriptedVendors::Vendor(productId, moduleName);
    vendor.usbIdList = "VID_1234&PID_" + productId;
    return vendor;
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 3) {
        return 2;
    }
    for (const Family& family : kFamilies) {
        if (family.name == arguments[1]) {
            ReleaseWatch::Start(arguments[2], family.use);
            RecordingLog::AtItsEnd(family.callEveryOperation);
            ScriptedVendors::KeepMapped(false);
            ScriptedVendors::Support(
                {Vendor("gamma", "scripted_all"), Vendor("beta", "no_such_module"),
                 Vendor("alpha", "scripted_all_b"), Vendor("gamma", "scripted_all_c"),
                 Vendor("delta", "scripted_all"), Vendor("epsilon", "scripted_none")});
            return family.use();
        }
    }
    return 2;
}
