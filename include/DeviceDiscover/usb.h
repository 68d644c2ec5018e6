// SPDX-License-Identifier: Apache-2.0

#pragma once

// Printers on USB: listing them, reporting arrivals, and putting a printer on a network.
//
// Applications call DiscoverUsbInterface. It logs each call with its key inputs, including the pass
// phrase. UsbConnInterface chooses the vendor: by the model id for a printer with a record, else by
// the hardware identifier of the printer's port, which a vendor of the application must list.
// UsbInterfaceMonitor turns a device arrival into complete records. The first call that needs a
// vendor loads the vendors' modules; all objects live until the process ends.
//
// Results, unless said otherwise (names in results.h):
//    0  success
//   -1  kNothingToCall: no vendor for the identifier or the device, or its module lacks the
//       entry point
//   -2  kNotInitialised: the application named no vendor, or one without USB identifiers (see
//       UsbConnInterface::Init)
//   any other value is the vendor's own
// Failures are logged and returned. Operations throw only the standard library's exceptions: out of
// memory, and std::out_of_range where stated. When the thread for an arrival cannot be started,
// std::system_error is thrown to the device manager that reported the arrival.
//
// Every operation may be called from any thread, except UsbConnInterface::Init; start and stop of
// the monitor must be called from one thread. An operation that calls a vendor waits for the
// vendor; GetDeviceNoConfigNet waits for the application's printer adapter. Recent arrivals may
// still be reported while the process ends: an application whose callback uses the application's
// own objects must stop the monitor and wait for its callbacks to return before it destroys them.

#include <cstddef>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "DeviceDiscover/export.h"
#include "DeviceDiscover/records.h"
#include "DeviceDiscover/results.h"
#include "VendorSdk/entry_points.h"
#include "platform/PrinterDiscoverAPI/PrinterUsbDeviceManager.h"
#include "platform/os.h"

namespace PrinterDeviceDiscoverSdk {

// The most records that one call of a vendor returns.
inline constexpr std::int32_t kMaxDevices = VendorSdk::kMaxDevices;
inline constexpr std::int32_t kMaxNetworks = VendorSdk::kMaxNetworks;

// A printer on USB: the fields of a DeviceInfo, and whether the printer is already on the network.
// Text fields are NUL-terminated narrow text. The record is passed between libraries inside a
// vector: its layout is fixed, and its first 228 bytes are laid out as a DeviceInfo.
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

// The application's entry: logs each call with its key inputs.
class DEVICEDISCOVER_API DiscoverUsbInterface {
public:
    static DiscoverUsbInterface& GetInstance();
    ~DiscoverUsbInterface();

    // Reports each printer that is plugged in from now on. One second after an arrival, when the
    // printer has had time to get ready, info.callback is called once for each record that the
    // vendor returns, including records of printers of the same model that were plugged in before.
    // Each arrival has its own thread, so calls may overlap; the callback must not throw, and its
    // result is ignored. A printer is not reported if its thread runs out of memory. A second start
    // replaces the registration. Always 0, also when the device manager cannot watch for devices;
    // only its own log says so.
    int StartDeviceMonitor(const DeviceCallbackInfo& info);

    // Ends the reports: reports that are still pending are dropped. Does not wait: a call of the
    // callback that has already begun may return after this operation has. Always 0.
    int StopDeviceMonitor();

    // Appends the USB printers that the application's printer adapter knows. isNetConfigured is
    // true when the adapter also knows a WLAN printer with the same serial number; two empty serial
    // numbers count as the same. A serial number of 64 or more characters, or a model of 32 or
    // more, does not fit and leaves its field empty; fields that the adapter does not know are
    // zero. Calls no vendor. Always 0.
    int GetDeviceNoConfigNet(std::vector<DeviceUsbInfo>& devices);

    // Appends the records of the printers on the host's USB printer ports, in the order of their
    // hardware identifiers. 0 when the vendor of at least one port succeeded; -1, kVendorFailed,
    // otherwise, also when there is no port. Throws std::out_of_range like
    // UsbConnInterface::GetDeviceInfoByUsb.
    int GetDeviceInfoByUsb(std::vector<DeviceInfo>& devices);

    // Sends a network's name and pass phrase to the printer and returns the result of
    // UsbConnInterface::PrinterUSBNetConfigEvent. Writes the pass phrase to the log, so the log
    // must be kept secret.
    int SetDeviceAPNetConfigByUsb(const DeviceInfo& device, const WifiConfigInfo& network);

    // See UsbConnInterface::GetUSBWifiScan.
    int GetUSBWifiScan(const DeviceInfo& device, std::vector<WifiConfigInfo>& networks, int option);

    DiscoverUsbInterface(const DiscoverUsbInterface&) = delete;
    DiscoverUsbInterface& operator=(const DiscoverUsbInterface&) = delete;

private:
    DiscoverUsbInterface();

    // The device manager gets a reference to this member and may keep it.
    PrinterDiscoverAPI::DeviceStateChangeCallbackInfo monitorRegistration{};
};

// Chooses the vendor, converts the records and calls the vendor's entry point.
class DEVICEDISCOVER_API UsbConnInterface {
public:
    // One vendor: its module and the module's entry points. An entry point that the module lacks is
    // null.
    struct VendorEntry {
        HINSTANCE module = nullptr;
        VendorSdk::GetDeviceInfoByUsbFunction* pGetDeviceInfoByUsb = nullptr;
        VendorSdk::USBWifiScanFunction* pGetUSBWifiScan = nullptr;
        VendorSdk::PrinterUSBNetConfigEventFunction* pPrinterUSBNetConfigEvent = nullptr;
    };

    // The one instance. Its construction, on the first call, loads the vendors' modules.
    static UsbConnInterface& GetInstance();

    // Reads the application's vendor list again and adds the vendors and identifiers that are not
    // yet known. False when the list is empty, or when a vendor has no USB identifiers; the
    // identifiers of the vendors after it are then not read. After a result of -2, an application
    // calls this once it has its vendors. Must not run at the same time as another operation of
    // this class.
    bool Init();

    // Appends the records of the printers with the hardware identifier `deviceId`,
    // VID_vvvv&PID_pppp exactly as a vendor lists it. If the vendor reports more than kMaxDevices
    // records, none is appended. Throws std::out_of_range when a vendor lists `deviceId` with fewer
    // than 13 characters.
    int GetDeviceInfoByUsb(std::vector<DeviceInfo>& devices, std::wstring deviceId);

    // Appends the Wi-Fi networks that the printer sees. `option` goes to the vendor unchanged. If
    // the vendor reports more than kMaxNetworks networks, none is appended.
    int GetUSBWifiScan(const DeviceInfo& device, std::vector<WifiConfigInfo>& networks, int option);

    // Sends a network's name and pass phrase to the printer. A name of 128 characters or a pass
    // phrase of 32 characters loses its last character. Any failure of the vendor is returned as
    // -1, kVendorFailed.
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
    std::mutex mutex;  // never locked
    std::map<std::string, std::string> usbIdMap;
    std::map<std::string, VendorEntry> vendors;
};

// Waits one second after a printer is plugged in, asks its vendor for the records and reports each
// record. Takes no lock: a report may arrive while the registration is set or cleared.
class DEVICEDISCOVER_API UsbInterfaceMonitor {
public:
    static UsbInterfaceMonitor& GetInstance();

    // Registers the application's callback and returns the registration to give to the device
    // manager.
    PrinterDiscoverAPI::DeviceStateChangeCallbackInfo SetDeviceStateCallbackInfo(
        const DeviceCallbackInfo& info);

    // Removes the application's callback; threads that are still waiting then report nothing.
    void ClearDeviceStateCallbackInfo();

    // Takes one change from the device manager and returns at once. Always 0. Only arrivals are
    // processed. If the records cannot be read, the arrival's thread logs the reason and reports
    // nothing. An identifier of fewer than 13 characters that a vendor lists is logged as "deviceId
    // is too short, err:" and then as failure -1. If memory runs out the arrival is dropped,
    // perhaps without a log line; later arrivals are unaffected.
    int CallBackFunc(const GUID& deviceClass, PrinterUsbApiStruct::EmDeviceState state,
                     const std::wstring& deviceId);

    UsbInterfaceMonitor(const UsbInterfaceMonitor&) = delete;
    UsbInterfaceMonitor& operator=(const UsbInterfaceMonitor&) = delete;

private:
    UsbInterfaceMonitor();

    DeviceCallbackInfo registration{};
};

}  // namespace PrinterDeviceDiscoverSdk
