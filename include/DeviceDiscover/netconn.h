// SPDX-License-Identifier: Apache-2.0

#pragma once

// Putting a printer on a network through the printer's own access point, while the host is joined
// to it.
//
// Applications call DiscoverNetConnInterface. It logs each call with its key inputs, including the
// pass phrase, and forwards it to NetConnInterface, which chooses the vendor again for each call:
// it asks the vendors, in the order of their product ids, whether the host is joined to the access
// point of one of their printers, and takes the first that says yes. Only IsLocalAreaNetworkOK
// chooses by the device's model id. The first call loads the vendors' modules; all objects live
// until the process ends.
//
// Results, unless said otherwise (names in results.h):
//    0  the vendor's entry point returned 0
//   -1  kNothingToCall: no vendor could be chosen, or its module lacks the entry point
//   -2  kNotInitialised: the application named no vendor (see NetConnInterface::Init)
//   -3  kNoCallback: a scan was started without a callback
//   any other value is the vendor's own
// Failures are logged and returned. Operations throw only the standard library's exceptions: out of
// memory, and std::system_error when a thread cannot be started or a lock cannot be taken.
//
// Every operation may be called from any thread.

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
class DEVICEDISCOVER_API DiscoverNetConnInterface {
public:
    static DiscoverNetConnInterface& GetInstance();
    ~DiscoverNetConnInterface();

    // See the operations of NetConnInterface. PrinterAPNetConfigEvent writes the pass phrase to the
    // log, so the log must be kept secret.
    int StartAPWifiScan(const WifiCallbackInfo& info);
    int StopAPWifiScan();
    int PrinterAPNetConfigEvent(const WifiConfigInfo& network);
    int GetDeviceInfoByNet(DeviceInfo& device);
    int IsLocalAreaNetworkOK(const DeviceInfo& device);

    DiscoverNetConnInterface(const DiscoverNetConnInterface&) = delete;
    DiscoverNetConnInterface& operator=(const DiscoverNetConnInterface&) = delete;

private:
    DiscoverNetConnInterface();
};

// One vendor: its module and the module's entry points. An entry point that the module lacks is
// null.
struct NetConnInterfaceItem {
    HINSTANCE module = nullptr;
    VendorSdk::StartAPWifiScanFunction* StartAPWifiScan = nullptr;
    VendorSdk::StopAPWifiScanFunction* StopAPWifiScan = nullptr;
    VendorSdk::PrinterAPNetConfigEventFunction* PrinterAPNetConfigEvent = nullptr;
    VendorSdk::IsLocalAreaNetworkOKFunction* IsLocalAreaNetworkOK = nullptr;
    VendorSdk::GetDeviceInfoByNetFunction* GetDeviceInfoByNet = nullptr;
    VendorSdk::IsConnectCurrentWifiAPFunction* IsConnectCurrentWifiAP = nullptr;
};

// Chooses the vendor, converts the record and calls the vendor's entry point.
class DEVICEDISCOVER_API NetConnInterface {
public:
    // The one instance. Its construction, on the first call, loads the vendors' modules.
    static NetConnInterface& GetInstance();

    // Reads the application's vendor list again and adds the vendors that are not yet known. False
    // when the list is empty. Must not run at the same time as another operation of this class.
    bool Init();

    // Registers `info`, replacing an earlier registration, and starts the chosen vendor's Wi-Fi
    // scan on a new thread, without waiting for it. 0: the scan was started; the scan's own result
    // is only logged. After any failure except -2 the registration stays in place.
    int StartAPWifiScan(const WifiCallbackInfo& info);

    // Removes the registration, so that later reports are dropped, then calls the stop of the
    // vendor whose access point the host is joined to now. Does not wait for the scan's thread.
    int StopAPWifiScan();

    // Sends the network's name and pass phrase to the printer. A name of 128 bytes or a pass phrase
    // of 32 bytes loses its last byte.
    int PrinterAPNetConfigEvent(const WifiConfigInfo& network);

    // Fills `device` with the printer's record; leaves it untouched unless the result is 0.
    int GetDeviceInfoByNet(DeviceInfo& device);

    // Asks whether the printer is on the local network; 0 means yes. Asks the vendor whose product
    // id equals the device's model id; the host need not be joined to an access point.
    int IsLocalAreaNetworkOK(const DeviceInfo& device);

    NetConnInterface(const NetConnInterface&) = delete;
    NetConnInterface& operator=(const NetConnInterface&) = delete;

private:
    NetConnInterface();
    ~NetConnInterface();

    bool GetDeviceFunc();
    void UnInit();
    std::map<std::string, NetConnInterfaceItem>::iterator GetCurrentNetConnectWifiAPInterface();

    bool initialised = false;
    std::mutex mutex;  // held by start and stop, and by nothing else
    std::map<std::string, NetConnInterfaceItem> vendors;
};

// Keeps the application's registration, gives the vendor a registration of this class, and forwards
// the vendor's reports. Takes no lock: a report may arrive while the registration is set or
// cleared.
class DEVICEDISCOVER_API NetConnInterfaceListener {
public:
    static NetConnInterfaceListener& GetInstance();

    // Registers the application's callback; null means no callback. Returns the registration to
    // give to vendors: the same address on every call, valid until the process ends.
    VendorSdk::WifiCallbackInfo* SetDeviceCallbackInfo(const WifiCallbackInfo& info);

    // Removes the application's callback: later reports of a vendor are dropped.
    void ClearDeviceCallbackInfo();

    // Returns whether a callback is registered.
    bool GetDeviceCallbackIsEnable();

    // Calls the application's callback with a copy of `network`, whose texts are terminated, and
    // returns its result. 0 without a callback.
    int CallBackFunc(const VendorSdk::WifiConfigInfo* network);

    NetConnInterfaceListener(const NetConnInterfaceListener&) = delete;
    NetConnInterfaceListener& operator=(const NetConnInterfaceListener&) = delete;

private:
    NetConnInterfaceListener();

    WifiCallbackInfo registration{};
    VendorSdk::WifiCallbackInfo vendorRegistration{};
};

}  // namespace PrinterDeviceDiscoverSdk
