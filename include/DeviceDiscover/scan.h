// SPDX-License-Identifier: Apache-2.0

#pragma once

// Finding printers on the network, through all vendors' modules at once.
//
// Applications call DiscoverScanInterface. It logs each call and its device, and forwards it to
// ScanInterface, which calls the vendors. The free functions call ScanInterface without logging the
// call. The first call loads the vendors' modules; all objects live until the process ends.
//
// Results, unless said otherwise (names in results.h):
//    0  success
//   -1  kNothingToCall: no vendor has a module, none is the device's, or its module lacks the
//       entry point
//   -2  kNotInitialised: the application named no vendor (see ScanInterface::Init); nothing else
//       was done
//   -3  kNoCallback: a scan was started without a callback
//   any other value is the vendor's own
// Failures are logged and returned. Operations throw only the standard library's exceptions: out of
// memory, and std::system_error when a thread cannot be started or a lock cannot be taken.
//
// Every operation except ScanInterface::Init may be called from any thread. Start and stop take the
// same lock, and stop holds it while it calls the vendors. So a vendor's stop must not call either
// of them. A stop from inside a report deadlocks if the vendor's stop waits for its reports to end.
//
// Reports may still arrive after a stop has returned, and vendors may run until the end of the
// process, also while static objects are destroyed. An application whose callback calls the library
// must stop its scans and wait for its callbacks to return before the process ends.

#include <map>
#include <mutex>
#include <string>

#include "DeviceDiscover/export.h"
#include "DeviceDiscover/records.h"
#include "DeviceDiscover/results.h"
#include "VendorSdk/entry_points.h"
#include "platform/os.h"

namespace PrinterDeviceDiscoverSdk {

// The application's entry: logs each call with its key inputs and forwards it unchanged.
class DEVICEDISCOVER_API DiscoverScanInterface {
public:
    static DiscoverScanInterface& GetInstance();
    ~DiscoverScanInterface();

    // See the operations of ScanInterface.
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
    // One vendor: its module and the module's entry points. An entry point that the module lacks is
    // null.
    struct VendorEntry {
        HINSTANCE module = nullptr;
        VendorSdk::StartDeviceScanFunction* StartDeviceScan = nullptr;
        VendorSdk::StopDeviceScanFunction* StopDeviceScan = nullptr;
        VendorSdk::GetDeviceConnectStateFunction* GetDeviceConnectState = nullptr;
        VendorSdk::BeforeConnectEventNotifyFunction* BeforeConnectEventNotify = nullptr;
        VendorSdk::ConnectSuccessNotifyEventFunction* ConnectSuccessNotifyEvent = nullptr;
        VendorSdk::ConnectFailNotifyEventFunction* ConnectFailNotifyEvent = nullptr;
    };

    // The one instance. Its construction, on the first call, loads the vendors' modules.
    static ScanInterface& GetInstance();

    // Reads the application's vendor list again and adds the vendors that are not yet known. False
    // when the list is empty. After a result of -2, an application calls this once it has vendors.
    // Must not run at the same time as another operation of this class.
    bool Init();

    // Registers `info`, replacing an earlier registration, and starts a scan in each vendor's
    // module, each on a new thread, without waiting for them. 0: at least one scan was started. -3
    // also when another thread stops the scan during the start; scans already started continue. A
    // second start without a stop starts every vendor again. After -1 the registration stays in
    // place.
    int StartDeviceScan(const DeviceCallbackInfo& info);

    // Removes the registration, so that later reports are dropped, then calls every vendor's stop.
    // Returns the result of the last vendor, in the order of their product ids, that has a stop; -1
    // when none has.
    int StopDeviceScan();

    // Asks the device's vendor whether the device can be reached and would accept a job. 1, not 0,
    // means yes; any other result of the vendor means failure.
    int GetDeviceConnectState(const DeviceInfo& device);

    // Tell the device's vendor that the application is about to connect, has connected, or failed
    // to connect. 0: the vendor succeeded.
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

// Keeps the application's registration, gives the vendors a registration of this class, and
// forwards the vendors' reports. Takes no lock: a report may arrive while the registration is set
// or cleared.
class DEVICEDISCOVER_API ScanInterfaceListener {
public:
    static ScanInterfaceListener& GetInstance();

    // Registers the application's callback; null means no callback. Returns the registration to
    // give to vendors: the same address on every call, valid until the process ends.
    VendorSdk::DeviceCallbackInfo* SetDeviceCallbackInfo(const DeviceCallbackInfo& info);

    // Removes the application's callback: later reports of vendors are dropped.
    void ClearDeviceCallbackInfo();

    // Returns whether a callback is registered.
    bool GetDeviceCallbackIsEnable();

    // Calls the application's callback with a copy of `device` and returns its result. 0 without a
    // callback, and for a null `device`, which is logged.
    int CallBackFunc(const VendorSdk::DeviceInfo* device);

    ScanInterfaceListener(const ScanInterfaceListener&) = delete;
    ScanInterfaceListener& operator=(const ScanInterfaceListener&) = delete;

private:
    ScanInterfaceListener();

    DeviceCallbackInfo registration{};
    VendorSdk::DeviceCallbackInfo vendorRegistration{};
};

}  // namespace PrinterDeviceDiscoverSdk
