#include "app/usb_vendors.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <sstream>

#include "DeviceDiscover/DeviceDiscover.h"
#include "app/access_point_printer.h"
#include "app/broker_result.h"
#include "app/messages.h"
#include "app/problem.h"
#include "app/vendor_survey.h"
#include "host/PrinterUtil/vendor_list.h"
#include "platform/PrinterUtil/PrinterUtil.h"

namespace App {

namespace {

using PrinterDeviceDiscoverSdk::DeviceInfo;
using PrinterDeviceDiscoverSdk::UsbConnInterface;
using PrinterUtil::WStringToString;

// What a vendor lists that has no printer on USB.
constexpr const char* kNoUsbIdentifier = "-";

// As the broker reads them: only blanks separate.
std::vector<std::string> UsbIdsOf(const VendorInfo& vendor) {
    std::vector<std::string> usbIds;
    std::istringstream text(vendor.usbIdList);
    for (std::string usbId; std::getline(text, usbId, ' ');) {
        if (!usbId.empty() && usbId != kNoUsbIdentifier) {
            usbIds.push_back(usbId);
        }
    }
    return usbIds;
}

// The vendor that lists the identifier first.
std::optional<std::string> VendorOf(const std::string& usbId) {
    for (const VendorInfo& vendor : PrinterUtil::DescribeVendorList().vendors) {
        const std::vector<std::string> usbIds = UsbIdsOf(vendor);
        if (std::find(usbIds.begin(), usbIds.end(), usbId) != usbIds.end()) {
            return vendor.productId;
        }
    }
    return std::nullopt;
}

std::string NotListed(const std::string& usbId) {
    return fmt::format("{}: no vendor has it or * in its usbIdList, in {}", usbId,
                       PrinterUtil::DescribeVendorList().path);
}

std::string PluggedIn(const UsbPortMap& ports) {
    std::string text;
    for (const auto& port : ports) {
        text += fmt::format(" {}", WStringToString(port.first));
    }
    return text.empty() ? "" : "\nPlugged in now:" + text;
}

// A printer's port whose vendor is known.
struct ServedPort {
    std::wstring deviceId;
    std::string vendor;
    std::size_t plugged;
};

// Why a watch has not reported that port; empty when it may have.
std::string NotWatched(const std::wstring& deviceId, bool isAnyReported) {
    const std::string usbId = WStringToString(deviceId);
    const auto vendor = VendorOf(usbId);
    if (!vendor) {
        return NotListed(usbId);
    }
    std::vector<DeviceInfo> devices;
    const int result = UsbConnInterface::GetInstance().GetDeviceInfoByUsb(devices, deviceId);
    if (result == kNothingToCall) {
        return fmt::format(
            "{}: not shown, since it was not there when the vendors were first asked; "
            "`devicediscover usb ports` shows it, and so does a new watch",
            usbId);
    }
    if (result != 0) {
        return fmt::format("{}: vendor {} does not report it: {}", usbId, *vendor,
                           VendorsResult(result, *vendor));
    }
    return isAnyReported ? ""
                         : fmt::format(
                               "{}: plugged in, but the watch was not told of it; the log "
                               "says why, or it has only just come",
                               usbId);
}

// Asks the vendor again; nothing when it reports all that is plugged in.
std::string NotReported(const ServedPort& port) {
    const auto& [deviceId, vendor, plugged] = port;
    const std::string usbId = WStringToString(deviceId);
    std::vector<DeviceInfo> devices;
    const int result = UsbConnInterface::GetInstance().GetDeviceInfoByUsb(devices, deviceId);
    if (result == kNothingToCall) {
        return fmt::format("{}: vendor {} cannot be asked about printers on USB", usbId, vendor);
    }
    if (result != 0) {
        return fmt::format("{}: vendor {} does not report it: {}", usbId, vendor,
                           VendorsResult(result, vendor));
    }
    return devices.size() >= plugged ? ""
                                     : fmt::format("{}: {} plugged in, vendor {} reports {}", usbId,
                                                   plugged, vendor, devices.size());
}

}  // namespace

void RequireUsbIdentifiers(const UsbPortMap& ports) {
    const PrinterUtil::VendorListReport list = PrinterUtil::DescribeVendorList();
    std::string without;
    for (const VendorInfo& vendor : list.vendors) {
        if (!UsbIdsOf(vendor).empty()) {
            return;
        }
        without += "\n  vendor " + vendor.productId;
    }
    if (!without.empty()) {
        throw Problem(
            "no printer on USB can be reached: the vendor list has only vendors without USB "
            "identifiers:" +
            without + "\nName those of a vendor's printers, or * for all, in its usbIdList, in " +
            list.path + PluggedIn(ports));
    }
}

std::vector<std::string> RequireUsbVendors(const std::string& entryPoint, const UsbPortMap& ports) {
    const ServiceSurvey survey = SurveyConfiguration({entryPoint});
    if (survey.anyVendorServes) {
        RequireUsbIdentifiers(ports);
        return survey.problems;
    }
    throw Problem("no vendor can do this" + Lines(survey.problems) +
                  "\nName a vendor list with --vendors FILE, or put the modules in order; "
                  "`devicediscover vendors` shows what is there.");
}

std::vector<std::string> UnreportedPorts(const UsbPortMap& ports,
                                         const std::vector<UsbPrinter>& reported) {
    std::vector<std::string> lines;
    std::vector<ServedPort> served;
    std::map<std::string, std::size_t> missing;  // by vendor
    for (const auto& [deviceId, port] : ports) {
        const std::string usbId = WStringToString(deviceId);
        const auto vendor = VendorOf(usbId);
        if (vendor) {
            const auto plugged = static_cast<std::size_t>(std::max(port.first, 1));
            served.push_back({deviceId, *vendor, plugged});
            missing[*vendor] += plugged;
        } else {
            lines.push_back(NotListed(usbId));
        }
    }
    for (const UsbPrinter& printer : reported) {
        std::size_t& ofVendor = missing[printer.vendor];
        ofVendor -= ofVendor > 0 ? 1 : 0;
    }
    for (const ServedPort& port : served) {
        const std::string line = missing[port.vendor] == 0 ? "" : NotReported(port);
        if (!line.empty()) {
            lines.push_back(line);
        }
    }
    return lines;
}

std::vector<std::string> UnwatchedPorts(const UsbPortMap& ports, bool isAnyReported) {
    std::vector<std::string> lines;
    for (const auto& port : ports) {
        const std::string line = NotWatched(port.first, isAnyReported);
        if (!line.empty()) {
            lines.push_back(line);
        }
    }
    return lines;
}

}  // namespace App
