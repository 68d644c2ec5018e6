// release_at_exit RECORD: binds a list of vendors with everything a list can hold and ends; RECORD
// then names the modules that the broker gave back, in order.

#include "DeviceDiscover/DeviceDiscover.h"
#include "tests/support/release_watch.h"
#include "tests/support/scripted_vendors.h"

int main(int count, char** arguments) {
    using ScriptedVendors::Vendor;
    if (count != 2) {
        return 2;
    }
    ReleaseWatch::Start(arguments[1]);
    ScriptedVendors::KeepMapped(false);
    ScriptedVendors::Support({Vendor("gamma", "scripted_all"), Vendor("beta", "no_such_module"),
                              Vendor("alpha", "scripted_all_b"), Vendor("gamma", "scripted_all_c"),
                              Vendor("delta", "scripted_all"), Vendor("epsilon", "scripted_none")});
    return PrinterDeviceDiscoverSdk::StopDeviceScan();
}
