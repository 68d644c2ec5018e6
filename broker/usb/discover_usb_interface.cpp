// SPDX-License-Identifier: Apache-2.0

#include <cstring>
#include <unordered_set>

#include "DeviceDiscover/printer_sdk.h"
#include "DeviceDiscover/usb.h"
#include "broker/binding/relay.h"
#include "broker/binding/vendor_thread.h"
#include "broker/records/bounded_copy.h"
#include "broker/records/device_lines.h"
#include "platform/PrinterUtil/PrinterUtil.h"

using PrinterDeviceDiscoverSdk::DeviceUsbInfo;
using PrinterSdk::PrinterProperty;

// Fills in the serial number and the model. A text that does not fit leaves its field empty.
static void PrinterPropertyToDeviceInfo(const PrinterProperty& printer, DeviceUsbInfo& device) {
    const std::string serialNumber = PrinterUtil::WStringToString(printer.serialNumber);
    const std::string modelId = PrinterUtil::WStringToString(printer.modelID);
    Broker::Log(LOG_LEVEL_DEBUG, HERE, "serialNumber:", serialNumber.c_str());
    Broker::Log(LOG_LEVEL_DEBUG, HERE, "modelID:", modelId.c_str());
    Broker::BoundedText(device.deviceSN, serialNumber.c_str());
    Broker::BoundedText(device.modelID, modelId.c_str());
}

namespace PrinterDeviceDiscoverSdk {

namespace {

std::vector<PrinterProperty> KnownPrinters() {
    std::vector<PrinterProperty> printers;
    PrinterSdk::IPrinterAdapter& adapter = PrinterSdk::IPrinterAdapter::GetInstance();
    if (PrinterSdk::PrinterListProvider* const provider = adapter.GetPrinterListProvider()) {
        provider->GetPrinterList(printers);
    }
    return printers;
}

}  // namespace

DiscoverUsbInterface& DiscoverUsbInterface::GetInstance() {
    static DiscoverUsbInterface instance;
    return instance;
}

DiscoverUsbInterface::DiscoverUsbInterface() = default;

DiscoverUsbInterface::~DiscoverUsbInterface() = default;

int DiscoverUsbInterface::StartDeviceMonitor(const DeviceCallbackInfo& info) {
    Broker::Log(LOG_LEVEL_DEBUG, HERE, "Start usb Monitor");
    // The device manager reports on its own thread.
    Broker::KeepThisLibrary();
    const PrinterDiscoverAPI::DeviceStateChangeCallbackInfo registration =
        UsbInterfaceMonitor::GetInstance().SetDeviceStateCallbackInfo(info);
    // The device manager's thread may still be reading the registration of an earlier start.
    Broker::ReplaceField(monitorRegistration.value, registration.value);
    Broker::ReplaceField(monitorRegistration.callback, registration.callback);
    PrinterDiscoverAPI::PrinterUsbDeviceManager::GetInstance().StartMonitor(monitorRegistration);
    return 0;
}

int DiscoverUsbInterface::StopDeviceMonitor() {
    Broker::Log(LOG_LEVEL_DEBUG, HERE, "Stop usb Monitor");
    UsbInterfaceMonitor::GetInstance().ClearDeviceStateCallbackInfo();
    PrinterDiscoverAPI::PrinterUsbDeviceManager::GetInstance().StopMonitor();
    return 0;
}

int DiscoverUsbInterface::GetDeviceNoConfigNet(std::vector<DeviceUsbInfo>& devices) {
    Broker::Log(LOG_LEVEL_DEBUG, HERE, "Get usb Device printer list");
    const std::vector<PrinterProperty> printers = KnownPrinters();
    std::vector<const PrinterProperty*> usbPrinters;
    std::unordered_set<std::wstring_view> wlanSerialNumbers;
    for (const PrinterProperty& printer : printers) {
        if (printer.connectType == PrinterSdk::kConnectTypeUsb) {
            Broker::Log(LOG_LEVEL_DEBUG, HERE, "get one Typeusb");
            usbPrinters.push_back(&printer);
        } else if (printer.connectType == PrinterSdk::kConnectTypeWlan) {
            Broker::Log(LOG_LEVEL_DEBUG, HERE, "get one TypeWLAN");
            wlanSerialNumbers.insert(printer.serialNumber);
        }
    }
    if (usbPrinters.empty()) {
        Broker::Log(LOG_LEVEL_WARNING, HERE, "usbList is empty");
    }
    for (const PrinterProperty* const printer : usbPrinters) {
        DeviceUsbInfo device;
        std::memset(&device, 0, sizeof device);  // also its last byte, which is padding
        PrinterPropertyToDeviceInfo(*printer, device);
        device.isNetConfigured = wlanSerialNumbers.contains(printer->serialNumber);
        Broker::Log(LOG_LEVEL_WARNING, HERE, "get one usbInfo");
        devices.push_back(device);
    }
    return 0;
}

int DiscoverUsbInterface::GetDeviceInfoByUsb(std::vector<DeviceInfo>& devices) {
    Broker::Log(LOG_LEVEL_DEBUG, HERE, "Start GetCurrentPrinterPorts");
    std::map<std::wstring, std::pair<int, int>> ports;
    PrinterDiscoverAPI::PrinterUsbDeviceManager::GetInstance().GetCurrentPrinterPorts(ports);
    Broker::Log(LOG_LEVEL_DEBUG, HERE, "Stop GetCurrentPrinterPorts", std::uint64_t{ports.size()});
    int result = kVendorFailed;
    for (const auto& port : ports) {
        const std::wstring& deviceId = port.first;
        Broker::Log(LOG_LEVEL_DEBUG, HERE, L"deviceId:", deviceId);
        std::vector<DeviceInfo> found;
        if (UsbConnInterface::GetInstance().GetDeviceInfoByUsb(found, deviceId) != 0) {
            continue;
        }
        result = 0;
        Broker::Log(LOG_LEVEL_DEBUG, HERE, "call Func OK", std::uint64_t{found.size()});
        devices.insert(devices.end(), found.begin(), found.end());
    }
    return result;
}

int DiscoverUsbInterface::SetDeviceAPNetConfigByUsb(const DeviceInfo& device,
                                                    const WifiConfigInfo& network) {
    Broker::LogDevice(device, HERE);
    Broker::LogSecret(LOG_LEVEL_DEBUG, HERE, "pwd", Broker::FieldText(network, network.pwd));
    Broker::LogSecret(LOG_LEVEL_DEBUG, HERE, "ssid", Broker::FieldText(network, network.ssid));
    return UsbConnInterface::GetInstance().PrinterUSBNetConfigEvent(device, network);
}

int DiscoverUsbInterface::GetUSBWifiScan(const DeviceInfo& device,
                                         std::vector<WifiConfigInfo>& networks, int option) {
    Broker::LogDevice(device, HERE);
    return UsbConnInterface::GetInstance().GetUSBWifiScan(device, networks, option);
}

}  // namespace PrinterDeviceDiscoverSdk
