#pragma once

// Finding printers on the network: in every vendor's module at once.
//
// DiscoverScanInterface is the way in: it logs each call and its device, then hands it to
// ScanInterface, which asks the vendors. The free functions reach ScanInterface without logging the
// call. Nothing happens before the first call, which loads the vendors' modules; everything lives
// until the process ends.
//
// Results, unless said otherwise:
//    0  success
//   -1  nothing could be called: no vendor has a module, none is the device's, or its module
//       lacks the entry point
//   -2  not initialised: the application named no vendor (see ScanInterface::Init); nothing
//       else was done
//   -3  a scan was started without a callback
//   any other value is the vendor's own
// Failures are logged and returned. What can be thrown is the standard library's own: out of
// memory, and std::system_error when a thread or a lock is not to be had.
//
// Every operation but ScanInterface::Init may be called from any thread. Start and stop hold a
// lock, a stop also while it calls the vendors: neither may be called from inside a vendor's stop,
// and a stop from inside a report waits for itself where a vendor's stop waits for its reports.
// Reports may still be on their way when a stop returns, and vendors may go on until the process is
// gone, also while static objects are destroyed: an application that calls back into the library
// from its callback stops its scans, and lets its callbacks end, before it lets the process end.

#include <map>
#include <mutex>
#include <string>

#include "DeviceDiscover/export.h"
#include "DeviceDiscover/records.h"
#include "VendorSdk/entry_points.h"
#include "platform/os.h"

namespace PrinterDeviceDiscoverSdk {

// The way in: logs each call with its key inputs and forwards it unchanged.
class DEVICEDISCOVER_API DiscoverScanInterface {
public:
    static DiscoverScanInterface& GetInstance();
    ~DiscoverScanInterface();

    // As the operations of ScanInterface.
    int StartDeviceScan(const DeviceCallbackInfo& info);
    int StopDeviceScan();
    int GetDeviceConnectState(const DeviceInfo& device);
    int BeforeConnectEventNotify(const DeviceInfo& device);
    int ConnectSuccessNotifyEvent(const DeviceInfo& device);
    int ConnectFailNotifyEvent(const DeviceInfo& device);

    DiscoverScanInterface(const DiscoverScanInterface&) = delete;
    DiscoverScanInterface& operator=(const DiscoverScanInterface&) = delete;

private:
    DiscoverScanInterface();
};

// The same operations without the lines that log the call. The pointers must not be null.
DEVICEDISCOVER_API int StartDeviceScan(const DeviceCallbackInfo* info);
DEVICEDISCOVER_API int StopDeviceScan();
DEVICEDISCOVER_API int GetDeviceConnectState(const DeviceInfo* device);
DEVICEDISCOVER_API int BeforeConnectEventNotify(const DeviceInfo* device);
DEVICEDISCOVER_API int ConnectSuccessNotifyEvent(const DeviceInfo* device);
DEVICEDISCOVER_API int ConnectFailNotifyEvent(const DeviceInfo* device);

// Chooses the vendor, converts the record and calls the vendor's entry point.
class DEVICEDISCOVER_API ScanInterface {
public:
    // One vendor: its module and the module's entry points, null where it has none.
    struct VendorEntry {
        HINSTANCE module = nullptr;
        VENDORSDK_SCAN_ENTRY_POINTS(VENDORSDK_SLOT)
    };

    // The one instance. Its construction, on the first call, loads the vendors' modules.
    static ScanInterface& GetInstance();

    // Reads the application's vendor list again and adds the vendors that are not yet known; false
    // when the list is empty. This is how an application goes on after -2, once it has vendors. Not
    // to be called while another operation of this class runs.
    bool Init();

    // Registers `info`, replacing an earlier registration, and starts one scan in each vendor's
    // module, each on a thread of its own; does not wait for any of them. 0 when at least one was
    // started. -3 also when another thread stops meanwhile: vendors that were started by then run
    // on. A second start without a stop starts every vendor again. With -1 the registration stays
    // in place.
    int StartDeviceScan(const DeviceCallbackInfo& info);

    // Drops the registration, so that later reports are lost, then calls every vendor's stop. The
    // result is that of the last vendor, in the order of their product ids, that has a stop; -1
    // when none has.
    int StopDeviceScan();

    // Asks the device's vendor whether the device can be reached and would accept a job. 1, not 0,
    // means yes; any other value of the vendor's is its failure.
    int GetDeviceConnectState(const DeviceInfo& device);

    // Tell the device's vendor that the application is about to connect, has connected, or has
    // failed to. 0 is the vendor's success.
    int BeforeConnectEventNotify(const DeviceInfo& device);
    int ConnectSuccessNotifyEvent(const DeviceInfo& device);
    int ConnectFailNotifyEvent(const DeviceInfo& device);

    ScanInterface(const ScanInterface&) = delete;
    ScanInterface& operator=(const ScanInterface&) = delete;

private:
    ScanInterface();
    ~ScanInterface();

    bool GetDeviceFunc();
    void UnInit();

    bool initialised = false;
    std::mutex mutex;  // held by start and stop, and by nothing else
    std::map<std::string, VendorEntry> vendors;
};

// Holds the application's registration, gives the vendors one of its own, and passes on what they
// report. Takes no lock: reports may come while the registration is set or cleared.
class DEVICEDISCOVER_API ScanInterfaceListener {
public:
    static ScanInterfaceListener& GetInstance();

    // Registers the application's callback; a null one counts as none. Returns the registration for
    // the vendors: the same address on every call, valid as long as the process.
    VendorSdk::DeviceCallbackInfo* SetDeviceCallbackInfo(const DeviceCallbackInfo& info);

    // Forgets the application's callback: what vendors report from now on is dropped.
    void ClearDeviceCallbackInfo();

    // Whether a callback is registered.
    bool GetDeviceCallbackIsEnable();

    // Hands a copy of `device` to the application's callback and returns its result; 0 without a
    // callback, and for a null device, which is logged.
    int CallBackFunc(const VendorSdk::DeviceInfo* device);

    ScanInterfaceListener(const ScanInterfaceListener&) = delete;
    ScanInterfaceListener& operator=(const ScanInterfaceListener&) = delete;

private:
    ScanInterfaceListener();

    DeviceCallbackInfo registration{};
    VendorSdk::DeviceCallbackInfo vendorRegistration{};
};

}  // namespace PrinterDeviceDiscoverSdk
