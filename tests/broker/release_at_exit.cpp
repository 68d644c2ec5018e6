// release_at_exit RECORD: binds a list of vendors with everything a list can hold and ends; RECORD
// then names the modules that the broker gave back, in order, each with what the dispatcher
// answered at that moment, and then what every operation does once the dispatcher is gone.

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

void CallEverything() {
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

}  // namespace

int main(int count, char** arguments) {
    using ScriptedVendors::Vendor;
    if (count != 2) {
        return 2;
    }
    ReleaseWatch::Start(arguments[1], StopDeviceScan);
    RecordingLog::AtItsEnd(CallEverything);
    ScriptedVendors::KeepMapped(false);
    ScriptedVendors::Support({Vendor("gamma", "scripted_all"), Vendor("beta", "no_such_module"),
                              Vendor("alpha", "scripted_all_b"), Vendor("gamma", "scripted_all_c"),
                              Vendor("delta", "scripted_all"), Vendor("epsilon", "scripted_none")});
    return StopDeviceScan();
}
