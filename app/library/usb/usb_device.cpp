// SPDX-License-Identifier: Apache-2.0

#include "app/library/usb/usb_device.h"

#include <algorithm>
#include <iterator>
#include <numeric>
#include <stdexcept>

#include "DeviceDiscover/results.h"
#include "app/library/access_point_printer.h"
#include "app/library/usb/host_usb_problem.h"
#include "app/library/usb/usb_question.h"
#include "app/library/usb/usb_vendors.h"
#include "app/library/vendor_survey.h"
#include "app/library/vendor_texts.h"
#include "app/outcome/problem.h"
#include "app/program/messages.h"
#include "app/running/awaiting.h"
#include "base/text/display_text.h"
#include "host/PrinterUtil/vendor_list.h"

namespace App {

namespace {

using PrinterDeviceDiscoverSdk::DeviceUsbInfo;
using PrinterDeviceDiscoverSdk::DiscoverUsbInterface;
using PrinterDeviceDiscoverSdk::kNothingToCall;
using PrinterDeviceDiscoverSdk::kNotInitialised;
using PrinterDeviceDiscoverSdk::WifiConfigInfo;

constexpr const char* kAdvice =
    "\nPlug it in, switch it on, and wait a moment; `devicediscover usb watch` shows when it is "
    "there.";

// Throws Problem when the system cannot list the ports.
UsbPortMap PortsNow() {
    UsbPortMap ports;
    PrinterDiscoverAPI::PrinterUsbDeviceManager::GetInstance().GetCurrentPrinterPorts(ports);
    const std::string problem = LastUsbProblem();
    if (ports.empty() && !problem.empty()) {
        throw Problem("it is not known what is plugged in: " + problem + ".");
    }
    return ports;
}

// Asks each vendor once about each of its models, so that a problem with a printer is reported only
// once.
PluggedPrinters Ask() {
    const UsbPortMap ports = PortsNow();
    std::vector<std::wstring> deviceIds;
    std::transform(ports.begin(), ports.end(), std::back_inserter(deviceIds),
                   [](const auto& port) { return port.first; });
    const std::vector<UsbAnswer> answers = AskUsbVendors(deviceIds);
    std::vector<UsbPrinter> printers;
    bool isAnyAnswered = false;
    for (const UsbAnswer& answer : answers) {
        isAnyAnswered = isAnyAnswered || answer.result == 0;
        printers.insert(printers.end(), answer.printers.begin(), answer.printers.end());
    }
    if (!isAnyAnswered) {
        RequireUsbVendors("GetDeviceInfoByUsb", ports);
    }
    RequireUsbIdentifiers(ports);
    return {std::move(printers), UnreportedPorts(ports, answers)};
}

// The user may have copied the text from the table.
bool IsText(const std::string& text, const std::string& given) {
    return text == given || Base::DisplayText(text) == given;
}

bool IsCalled(const UsbPrinter& printer, const std::string& name) {
    return IsText(printer.serialNumber, name) || IsText(printer.address, name);
}

std::size_t CountCalled(const std::vector<UsbPrinter>& printers, const std::string& name) {
    return static_cast<std::size_t>(
        std::count_if(printers.begin(), printers.end(),
                      [&](const UsbPrinter& printer) { return IsCalled(printer, name); }));
}

// How the user can name the printer: its serial number or, if others share it, its place. Empty if
// neither identifies the printer.
std::string NameAmong(const std::vector<UsbPrinter>& printers, const UsbPrinter& printer) {
    for (const std::string& name : {printer.serialNumber, printer.address}) {
        if (!name.empty() && CountCalled(printers, name) == 1) {
            return Cell(name);
        }
    }
    return {};
}

std::string NamesOf(const std::vector<UsbPrinter>& printers) {
    std::string text;
    for (const UsbPrinter& printer : printers) {
        const std::string name = NameAmong(printers, printer);
        text += (text.empty() ? "" : ", ") + (name.empty() ? Cell(printer.serialNumber) : name);
    }
    return text;
}

// Throws unless there is exactly one.
UsbPrinter TheOnlyOne(const std::vector<UsbPrinter>& printers, const std::string& whichOnes) {
    if (printers.size() > 1) {
        const bool canBeNamed = std::none_of(
            printers.begin(), printers.end(),
            [&](const UsbPrinter& printer) { return NameAmong(printers, printer).empty(); });
        throw WrongInput("there is more than one printer on USB" + whichOnes + ": " +
                         NamesOf(printers) +
                         (canBeNamed ? "\nName one of them: `devicediscover usb ports` shows which "
                                       "is which."
                                     : "\nNothing tells them apart. Unplug the others."));
    }
    return printers.front();
}

}  // namespace

std::vector<InstalledPrinter> InstalledPrinters() {
    const std::function<std::vector<DeviceUsbInfo>()> work = [] {
        std::vector<DeviceUsbInfo> devices;
        DiscoverUsbInterface::GetInstance().GetDeviceNoConfigNet(devices);
        const std::string problem = LastInstalledPrintersProblem();
        if (devices.empty() && !problem.empty()) {
            throw Problem(
                "it is not known which printers are installed on this computer: " + problem +
                ".\n`devicediscover usb ports` shows those that are plugged in.");
        }
        return devices;
    };
    const auto devices = Await("Looking for the printers of this computer", work);
    return {devices.begin(), devices.end()};
}

UsbPortMap PortsPluggedIn() {
    return Await<UsbPortMap>("Looking at what is plugged in", PortsNow);
}

std::size_t CountPluggedIn(const UsbPortMap& ports) {
    return std::accumulate(
        ports.begin(), ports.end(), std::size_t{0}, [](std::size_t count, const auto& port) {
            return count + static_cast<std::size_t>(std::max(port.second.first, 1));
        });
}

UsbPortMap PortsPluggedInAtLast() {
    constexpr auto patience = std::chrono::seconds(2);
    try {
        return AwaitRegardless<UsbPortMap>(
            PortsNow, [] {}, patience);
    } catch (const Problem&) {
        return {};
    }
}

PluggedPrinters PrintersPluggedIn() {
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
    return Await("Asking the printers on USB who they are", work);
}

std::string NoneIsPluggedIn(const PluggedPrinters& plugged) {
    const char* const saying = plugged.problems.empty()
                                   ? "no printer is plugged in"
                                   : "no printer is plugged in that a vendor reports";
    return saying + Lines(plugged.problems) + kAdvice + "\n" + AdviceToReadLog();
}

UsbPrinter FindPluggedIn(const std::string& name) {
    const PluggedPrinters plugged = PrintersPluggedIn();
    const std::vector<UsbPrinter>& printers = plugged.printers;
    if (printers.empty()) {
        throw NoUsbPrinter(NoneIsPluggedIn(plugged));
    }
    if (name.empty()) {
        return TheOnlyOne(printers, "");
    }
    std::vector<UsbPrinter> called;
    std::copy_if(printers.begin(), printers.end(), std::back_inserter(called),
                 [&](const UsbPrinter& printer) { return IsCalled(printer, name); });
    if (called.empty()) {
        throw NoUsbPrinter("no printer with the serial number or at the place '" + name +
                           "' is plugged in that a vendor reports; there is " + NamesOf(printers) +
                           Lines(plugged.problems) + kAdvice);
    }
    return TheOnlyOne(called, " called '" + name + "'");
}

NetworksAnswer NetworksSeenBy(const UsbPrinter& printer, int option) {
    const std::function<NetworksAnswer()> work = [device = printer.record, option] {
        std::vector<WifiConfigInfo> networks;
        const int result =
            DiscoverUsbInterface::GetInstance().GetUSBWifiScan(device, networks, option);
        return NetworksAnswer{result, {networks.begin(), networks.end()}};
    };
    return Await("Asking the printer for the networks it sees", work);
}

int ConfigureNetwork(const UsbPrinter& printer, const std::string& network,
                     const std::shared_ptr<Base::Secret>& passPhrase) {
    const std::function<int()> work = [device = printer.record, network, passPhrase] {
        auto record = NetworkRecord(network, passPhrase->View());
        const Base::WipeAtEnd wiped(record);
        return DiscoverUsbInterface::GetInstance().SetDeviceAPNetConfigByUsb(device, record);
    };
    return Await("Waiting for the printer to join " + network, work, kJoinLimit);
}

std::string AboutNoNetworks(const UsbPrinter& printer) {
    const std::string text = MeaningOf(0, printer.vendor, "USBWifiScan");
    return text.empty() ? text : "\n" + text;
}

std::string UsbExplanation(const UsbPrinter& printer, int result, const std::string& entryPoint) {
    if (result != kNothingToCall && result != kNotInitialised) {
        return VendorsResult(result, printer.vendor, entryPoint);
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
    if (entryPoint != "PrinterUSBNetConfigEvent") {
        return shown + " has failed";
    }
    const std::string meanings = MeaningsOf(printer.vendor, entryPoint);
    return shown +
           " has failed\nAre the network's name and the pass phrase right, and is the network in "
           "the "
           "printer's reach?\nThe line \"call Func Fail\" in the log ends with the vendor's own "
           "result." +
           (meanings.empty() ? "" : " Of " + printer.vendor + ":" + meanings);
}

}  // namespace App
