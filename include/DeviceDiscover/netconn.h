#pragma once

// Putting a printer on a network through the printer's own access point, while the host is joined
// to it.
//
// DiscoverNetConnInterface is the way in: it logs each call with its key inputs, the pass phrase
// among them, then hands it to NetConnInterface. Which vendor serves a call is found out anew each
// time: every vendor is asked, in the order of the product ids, whether the host is joined to the
// access point of one of its printers, and the first that says yes is taken. Only
// IsLocalAreaNetworkOK goes by the device's model id. Nothing happens before the first call, which
// loads the vendors' modules; everything lives until the process ends.
//
// Results, unless said otherwise:
//    0  the vendor's entry point returned 0
//   -1  no vendor could be chosen, or its module lacks the entry point
//   -2  not initialised: the application named no vendor (see NetConnInterface::Init)
//   -3  a scan was started without a callback
//   any other value is the vendor's own
// Failures are logged and returned. What can be thrown is the standard library's own: out of
// memory, and std::system_error when a thread or a lock is not to be had.
//
// Every operation may be called from any thread.

#include <map>
#include <mutex>
#include <string>

#include "DeviceDiscover/export.h"
#include "DeviceDiscover/records.h"
#include "VendorSdk/entry_points.h"
#include "platform/os.h"

namespace PrinterDeviceDiscoverSdk {

// The way in: logs each call with its key inputs and forwards it unchanged.
class DEVICEDISCOVER_API DiscoverNetConnInterface {
public:
    static DiscoverNetConnInterface& GetInstance();
    ~DiscoverNetConnInterface();

    // As the operations of NetConnInterface. PrinterAPNetConfigEvent writes the pass phrase to the
    // log: whoever keeps the log keeps it secret.
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

// One vendor: its module and the module's entry points, null where it has none.
struct NetConnInterfaceItem {
    HINSTANCE module = nullptr;
    VENDORSDK_NETCONN_ENTRY_POINTS(VENDORSDK_SLOT)
};

// Chooses the vendor, converts the record and calls the vendor's entry point.
class DEVICEDISCOVER_API NetConnInterface {
public:
    // The one instance. Its construction, on the first call, loads the vendors' modules.
    static NetConnInterface& GetInstance();

    // Reads the application's vendor list again and adds the vendors that are not yet known; false
    // when the list is empty. Not to be called while another operation of this class runs.
    bool Init();

    // Registers `info`, replacing an earlier registration, and starts the chosen vendor's Wi-Fi
    // scan on a thread of its own; does not wait for it. 0 once it is started: what the scan itself
    // returns shows in the log only. On every failure but -2 the registration stays in place.
    int StartAPWifiScan(const WifiCallbackInfo& info);

    // Drops the registration, so that later reports are lost, then calls the chosen vendor's stop:
    // that of the access point the host is joined to now. Does not wait for the scan's thread.
    int StopAPWifiScan();

    // Hands the printer the network's name and pass phrase. A name of 128 bytes or a pass phrase of
    // 32 loses its last byte.
    int PrinterAPNetConfigEvent(const WifiConfigInfo& network);

    // Fills `device` with the printer's record; leaves it untouched unless the result is 0.
    int GetDeviceInfoByNet(DeviceInfo& device);

    // Whether the printer is on the local network: 0 is yes. The vendor is the one whose product id
    // equals the device's model id; the host need not be joined to an access point.
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

// Holds the application's registration, gives the vendor one of its own, and passes on what it
// reports. Takes no lock: reports may come while the registration is set or cleared.
class DEVICEDISCOVER_API NetConnInterfaceListener {
public:
    static NetConnInterfaceListener& GetInstance();

    // Registers the application's callback; a null one counts as none. Returns the registration for
    // the vendors: the same address on every call, valid as long as the process.
    VendorSdk::WifiCallbackInfo* SetDeviceCallbackInfo(const WifiCallbackInfo& info);

    // Forgets the application's callback: what a vendor reports from now on is dropped.
    void ClearDeviceCallbackInfo();

    // Whether a callback is registered.
    bool GetDeviceCallbackIsEnable();

    // Hands a copy of `network`, its texts terminated, to the application's callback and returns
    // its result; 0 without a callback.
    int CallBackFunc(const VendorSdk::WifiConfigInfo* network);

    NetConnInterfaceListener(const NetConnInterfaceListener&) = delete;
    NetConnInterfaceListener& operator=(const NetConnInterfaceListener&) = delete;

private:
    NetConnInterfaceListener();

    WifiCallbackInfo registration{};
    VendorSdk::WifiCallbackInfo vendorRegistration{};
};

}  // namespace PrinterDeviceDiscoverSdk
