#pragma once

// Printers on USB: which are there, which are plugged in, and putting one of them on a network.
//
// DiscoverUsbInterface is the way in: it logs each call with its key inputs, the pass phrase among
// them. UsbConnInterface chooses the vendor: a printer that is only known by the hardware
// identifier of its port goes by the identifiers that the application's vendors list, one that has
// a record by its model id. UsbInterfaceMonitor turns "plugged in" into complete records. Nothing
// happens before the first call that needs a vendor, which loads the vendors' modules; everything
// lives until the process ends.
//
// Results, unless said otherwise:
//    0  success
//   -1  nothing could be called: no vendor for the identifier or the device, or its module
//       lacks the entry point
//   -2  not initialised: the application named no vendor, or one without USB identifiers (see
//       UsbConnInterface::Init)
//   any other value is the vendor's own
// Failures are logged and returned. What can be thrown is the standard library's own: out of
// memory, and std::out_of_range where said. When a thread is not to be had for a printer that was
// plugged in, std::system_error goes to the device manager that reported it.
//
// Every operation may be called from any thread, but for UsbConnInterface::Init, and for the start
// and the stop of the monitor, which belong on one thread. An operation that asks a vendor waits
// for it, and GetDeviceNoConfigNet waits for the application's printer adapter. Printers that were
// plugged in a moment ago may still be reported while the process ends: an application whose
// callback stands on objects of its own stops the monitor before they go, and lets its callbacks
// end.

#include <cstddef>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "DeviceDiscover/export.h"
#include "DeviceDiscover/records.h"
#include "VendorSdk/entry_points.h"
#include "platform/PrinterDiscoverAPI/PrinterUsbDeviceManager.h"
#include "platform/os.h"

namespace PrinterDeviceDiscoverSdk {

// A printer on USB: the fields of a DeviceInfo, text fields being NUL-terminated narrow text, and
// whether it is on the network already. It crosses the library's border inside a vector: its layout
// is fixed, and its first 228 bytes are those of a DeviceInfo.
struct DeviceUsbInfo {
    std::uint16_t code1;
    std::uint16_t code2;
    char deviceSN[64];
    char modelID[32];
    char extra1[64];
    char extra2[32];
    char extra3[32];
    bool isNetConfigured;
};
static_assert(sizeof(DeviceUsbInfo) == 230 && alignof(DeviceUsbInfo) == 2);
static_assert(offsetof(DeviceUsbInfo, code1) == 0 && offsetof(DeviceUsbInfo, code2) == 2);
static_assert(offsetof(DeviceUsbInfo, deviceSN) == 4 && offsetof(DeviceUsbInfo, modelID) == 68);
static_assert(offsetof(DeviceUsbInfo, extra1) == 100 && offsetof(DeviceUsbInfo, extra2) == 164);
static_assert(offsetof(DeviceUsbInfo, extra3) == 196);
static_assert(offsetof(DeviceUsbInfo, isNetConfigured) == 228);

// The way in.
class DEVICEDISCOVER_API DiscoverUsbInterface {
public:
    static DiscoverUsbInterface& GetInstance();
    ~DiscoverUsbInterface();

    // Reports each printer that is plugged in from now on: a second after it was, when it has had
    // time to get ready, with one call of info.callback for each record that its vendor gives: also
    // those of printers of the same model that were there before. Each arrival has a thread of its
    // own, so that calls may come at the same time; what they return is ignored, and they must not
    // throw. A printer whose thread has no memory is not reported. A further start replaces the
    // registration. Always 0, also when the device manager cannot watch, which only its own log
    // tells.
    int StartDeviceMonitor(const DeviceCallbackInfo& info);

    // Ends the reports: what a thread still has to report is dropped. Waits for none of them: a
    // call of the callback that has begun goes to its end, and may do so after this returns. Always
    // 0.
    int StopDeviceMonitor();

    // Appends the USB printers that the application's printer adapter knows, each marked whether
    // one with the same serial number is known over WLAN too; two without a serial number are the
    // same. A serial number of 64 characters or a model of 32 does not fit and leaves its field
    // empty; fields that the adapter does not know are zero. Asks no vendor. Always 0.
    int GetDeviceNoConfigNet(std::vector<DeviceUsbInfo>& devices);

    // Appends the records of the printers on the host's USB printer ports, in the order of their
    // identifiers. 0 when at least one port's vendor succeeded, else -1, also when there is no
    // port. Throws std::out_of_range as UsbConnInterface does.
    int GetDeviceInfoByUsb(std::vector<DeviceInfo>& devices);

    // Hands the printer a network's name and pass phrase, as
    // UsbConnInterface::PrinterUSBNetConfigEvent, whose result this has. The pass phrase is written
    // to the log: whoever keeps the log keeps it secret.
    int SetDeviceAPNetConfigByUsb(const DeviceInfo& device, const WifiConfigInfo& network);

    // As UsbConnInterface::GetUSBWifiScan.
    int GetUSBWifiScan(const DeviceInfo& device, std::vector<WifiConfigInfo>& networks, int option);

    DiscoverUsbInterface(const DiscoverUsbInterface&) = delete;
    DiscoverUsbInterface& operator=(const DiscoverUsbInterface&) = delete;

private:
    DiscoverUsbInterface();

    // The device manager is handed a reference to it and may keep that.
    PrinterDiscoverAPI::DeviceStateChangeCallbackInfo monitorRegistration{};
};

// Chooses the vendor, converts the records and calls the vendor's entry point.
class DEVICEDISCOVER_API UsbConnInterface {
public:
    // One vendor: its module and the module's entry points, null where it has none.
    struct VendorEntry {
        HINSTANCE module = nullptr;
        VENDORSDK_USB_ENTRY_POINTS(VENDORSDK_SLOT)
    };

    // The one instance. Its construction, on the first call, loads the vendors' modules.
    static UsbConnInterface& GetInstance();

    // Reads the application's vendor list again and adds the vendors and identifiers that are not
    // yet known; false when the list is empty or one vendor has no USB identifiers, and then the
    // identifiers of those after it are not read. This is how an application goes on after -2, once
    // it has its vendors. Not to be called while another operation of this class runs.
    bool Init();

    // Appends the records of the printers of one hardware identifier, VID_vvvv&PID_pppp exactly as
    // a vendor lists it. A vendor that reports more than 64 records at once is taken to report
    // none. Throws std::out_of_range when a vendor lists an identifier of fewer than 13 characters.
    int GetDeviceInfoByUsb(std::vector<DeviceInfo>& devices, std::wstring deviceId);

    // Appends the Wi-Fi networks that the printer sees; `option` goes to the vendor as it stands. A
    // vendor that reports more than 128 networks is taken to report none.
    int GetUSBWifiScan(const DeviceInfo& device, std::vector<WifiConfigInfo>& networks, int option);

    // Hands the printer a network's name and pass phrase; of a name that fills its 128 characters,
    // or a pass phrase that fills its 32, the last one is cut off. Every failure of the vendor's is
    // -1.
    int PrinterUSBNetConfigEvent(const DeviceInfo& device, const WifiConfigInfo& network);

    UsbConnInterface(const UsbConnInterface&) = delete;
    UsbConnInterface& operator=(const UsbConnInterface&) = delete;

private:
    UsbConnInterface();
    ~UsbConnInterface();

    bool GetDeviceFunc();
    bool GetUsbItemMap();
    void UnInit();
    bool split(const std::string& text, std::vector<std::string>& pieces);

    bool initialised = false;
    std::mutex mutex;  // held by nothing
    std::map<std::string, std::string> usbIdMap;
    std::map<std::string, VendorEntry> vendors;
};

// Waits a second after a printer is plugged in, asks its vendor for the records and reports each.
// Takes no lock: reports may come while the registration is set or cleared.
class DEVICEDISCOVER_API UsbInterfaceMonitor {
public:
    static UsbInterfaceMonitor& GetInstance();

    // Registers the application's callback and returns the registration for the device manager.
    PrinterDiscoverAPI::DeviceStateChangeCallbackInfo SetDeviceStateCallbackInfo(
        const DeviceCallbackInfo& info);

    // Forgets the application's callback; threads that still wait find nobody to report to.
    void ClearDeviceStateCallbackInfo();

    // Takes one change from the device manager, of which only an arrival counts, and returns at
    // once. Always 0. When the records are not to be had, the arrival's thread logs why and reports
    // nothing. An identifier that a vendor lists but that is too short to hold its numbers is told
    // in a line of its own, "deviceId is too short, err:", before that of the failure, -1. A thread
    // that has no memory ends without a report, and maybe without a line; later arrivals do not
    // suffer from it.
    int CallBackFunc(const GUID& deviceClass, PrinterUsbApiStruct::EmDeviceState state,
                     const std::wstring& deviceId);

    UsbInterfaceMonitor(const UsbInterfaceMonitor&) = delete;
    UsbInterfaceMonitor& operator=(const UsbInterfaceMonitor&) = delete;

private:
    UsbInterfaceMonitor();

    DeviceCallbackInfo registration{};
};

}  // namespace PrinterDeviceDiscoverSdk
