#include "app/usb_device.h"

#include <algorithm>
#include <stdexcept>

#include "app/access_point_printer.h"
#include "app/awaiting.h"
#include "app/messages.h"
#include "app/problem.h"
#include "app/text.h"
#include "app/usb_vendors.h"
#include "app/vendor_survey.h"
#include "host/PrinterUtil/vendor_list.h"

namespace App {

namespace {

using PrinterDeviceDiscoverSdk::DeviceInfo;
using PrinterDeviceDiscoverSdk::DeviceUsbInfo;
using PrinterDeviceDiscoverSdk::DiscoverUsbInterface;
using PrinterDeviceDiscoverSdk::WifiConfigInfo;

constexpr int kNothingToCall = -1;
constexpr int kNotInitialised = -2;
// How a vendor reaches printers on USB is its own affair; it is known of one.
constexpr const char* kNeedsBridge = "driverless";
constexpr const char* kAdvice =
    "\nPlug it in, switch it on, and wait a moment; `devicediscover usb watch` shows when it is "
    "there.";

UsbPortMap PortsNow() {
    UsbPortMap ports;
    PrinterDiscoverAPI::PrinterUsbDeviceManager::GetInstance().GetCurrentPrinterPorts(ports);
    return ports;
}

PluggedPrinters Ask() {
    std::vector<DeviceInfo> devices;
    const int result = DiscoverUsbInterface::GetInstance().GetDeviceInfoByUsb(devices);
    const UsbPortMap ports = PortsNow();
    if (result != 0) {
        RequireUsbVendors("GetDeviceInfoByUsb", ports);
    }
    return {{devices.begin(), devices.end()}, UnreportedPorts(ports, devices.size())};
}

std::string Lines(const std::vector<std::string>& problems) {
    std::string text;
    for (const std::string& problem : problems) {
        text += "\n  " + problem;
    }
    return text;
}

std::string SerialNumbersOf(const std::vector<UsbPrinter>& printers) {
    std::string text;
    for (const UsbPrinter& printer : printers) {
        text += (text.empty() ? "" : ", ") + Cell(printer.serialNumber);
    }
    return text;
}

}  // namespace

std::vector<InstalledPrinter> InstalledPrinters(const Settings& settings) {
    const std::function<std::vector<DeviceUsbInfo>()> work = [] {
        std::vector<DeviceUsbInfo> devices;
        DiscoverUsbInterface::GetInstance().GetDeviceNoConfigNet(devices);
        return devices;
    };
    const auto devices = Await(settings, "Looking for the printers of this computer", work);
    return {devices.begin(), devices.end()};
}

PluggedPrinters PrintersPluggedIn(const Settings& settings) {
    const std::function<PluggedPrinters()> work = [] {
        try {
            return Ask();
        } catch (const std::out_of_range&) {
            throw Problem(
                "the vendor list has a USB identifier that is too short, and that is plugged in"
                "\nWrite it as VID_vvvv&PID_pppp, in " +
                PrinterUtil::DescribeVendorList().path);
        }
    };
    return Await(settings, "Asking the printers on USB who they are", work);
}

std::string NoneIsPluggedIn(const PluggedPrinters& plugged) {
    return "no printer is plugged in that a vendor reports" + Lines(plugged.problems) + kAdvice +
           "\n" + AdviceToReadLog();
}

UsbPrinter FindPluggedIn(const Settings& settings, const std::string& serialNumber) {
    const PluggedPrinters plugged = PrintersPluggedIn(settings);
    const std::vector<UsbPrinter>& printers = plugged.printers;
    if (printers.empty()) {
        throw NoUsbPrinter{NoneIsPluggedIn(plugged)};
    }
    if (serialNumber.empty()) {
        if (printers.size() > 1) {
            throw WrongInput("there is more than one printer on USB: " + SerialNumbersOf(printers) +
                             "\nName one of them by its serial number.");
        }
        return printers.front();
    }
    const auto found =
        std::find_if(printers.begin(), printers.end(), [&](const UsbPrinter& printer) {
            return printer.serialNumber == serialNumber ||
                   DisplayText(printer.serialNumber) == serialNumber;
        });
    if (found == printers.end()) {
        throw NoUsbPrinter{"no printer with the serial number '" + serialNumber +
                           "' is plugged in that a vendor reports; there is " +
                           SerialNumbersOf(printers) + Lines(plugged.problems) + kAdvice};
    }
    return *found;
}

NetworksAnswer NetworksSeenBy(const Settings& settings, const UsbPrinter& printer, int option) {
    const std::function<NetworksAnswer()> work = [device = printer.record, option] {
        std::vector<WifiConfigInfo> networks;
        const int result =
            DiscoverUsbInterface::GetInstance().GetUSBWifiScan(device, networks, option);
        return NetworksAnswer{result, {networks.begin(), networks.end()}};
    };
    return Await(settings, "Asking the printer for the networks it sees", work);
}

int ConfigureNetwork(const Settings& settings, const UsbPrinter& printer,
                     const std::string& network, const std::shared_ptr<Secret>& passPhrase) {
    const std::function<int()> work = [device = printer.record, network, passPhrase] {
        auto record = NetworkRecord(network, passPhrase->View());
        const int result =
            DiscoverUsbInterface::GetInstance().SetDeviceAPNetConfigByUsb(device, record);
        Wipe(&record, sizeof record);
        return result;
    };
    return Await(settings, "Waiting for the printer to join " + network, work);
}

std::string UsbExplanation(const UsbPrinter& printer, int result, const std::string& entryPoint) {
    if (result != kNothingToCall && result != kNotInitialised) {
        return VendorsResult(result, printer.vendor);
    }
    const auto vendors = PrinterUtil::DescribeVendorList().vendors;
    const auto vendor = std::find_if(vendors.begin(), vendors.end(), [&](const VendorInfo& listed) {
        return listed.productId == printer.vendor;
    });
    const std::string shown = "vendor " + printer.vendor;
    if (vendor == vendors.end()) {
        return "the printer names the " + shown + ", and the vendor list has no such productId";
    }
    const ModuleSurvey module = SurveyConfigurationModule(*vendor);
    if (!module.Has(entryPoint)) {
        throw Problem(shown + " cannot do this: " +
                      (module.IsLoaded()
                           ? "its module " + module.path + " has no entry point " + entryPoint
                           : module.problem) +
                      "\nAsk the vendor for a module that has it; `devicediscover vendors` shows "
                      "what is there.");
    }
    std::string text = shown + " has failed";
    if (entryPoint == "PrinterUSBNetConfigEvent") {
        text +=
            ". Are the network's name and the pass phrase right, and is the network in the "
            "printer's "
            "reach? The log's line \"call Func Fail\" ends with the vendor's own result";
    }
    if (printer.vendor == kNeedsBridge && entryPoint == "PrinterUSBNetConfigEvent") {
        text += ". The printer has to speak IPP over USB, and the program ipp-usb to run";
    }
    return text;
}

}  // namespace App
