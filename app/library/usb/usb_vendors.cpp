// SPDX-License-Identifier: Apache-2.0

#include "app/library/usb/usb_vendors.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <sstream>

#include "DeviceDiscover/DeviceDiscover.h"
#include "app/library/vendor_survey.h"
#include "app/library/vendor_texts.h"
#include "app/outcome/problem.h"
#include "app/program/messages.h"
#include "host/PrinterUtil/vendor_list.h"
#include "platform/PrinterUtil/PrinterUtil.h"

namespace App {

namespace {

using PrinterDeviceDiscoverSdk::kNothingToCall;
using PrinterDeviceDiscoverSdk::kNotInitialised;
using PrinterUtil::WStringToString;

// The entry of a vendor without printers on USB.
constexpr const char* kNoUsbIdentifier = "-";

// Splits like the broker: only blanks separate.
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

using VendorByUsbId = std::map<std::string, std::string>;

// The first vendor in the list with the identifier counts.
VendorByUsbId ReadUsbVendors() {
    VendorByUsbId vendors;
    for (const VendorInfo& vendor : PrinterUtil::DescribeVendorList().vendors) {
        for (const std::string& usbId : UsbIdsOf(vendor)) {
            vendors.emplace(usbId, vendor.productId);
        }
    }
    return vendors;
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

// A printer's port with a known vendor, and the vendor's answer.
struct ServedPort {
    std::string usbId;
    std::string vendor;
    std::size_t plugged;
    const UsbAnswer* answer;
};

// Why the vendor gave no usable answer; empty when it did.
std::string Failure(const std::string& usbId, const std::string& vendor, int result) {
    if (result == 0) {
        return {};
    }
    return result == kNothingToCall || result == kNotInitialised
               ? fmt::format("{}: vendor {} cannot be asked about printers on USB", usbId, vendor)
               : fmt::format("{}: vendor {} does not report it: {}", usbId, vendor,
                             VendorsResult(result, vendor, "GetDeviceInfoByUsb"));
}

// Empty when the vendor reports all plugged-in printers of the port.
std::string NotReported(const ServedPort& port) {
    const auto& [usbId, vendor, plugged, answer] = port;
    const std::string failure = Failure(usbId, vendor, answer->result);
    const std::size_t reported = answer->printers.size();
    return !failure.empty() || reported >= plugged
               ? failure
               : fmt::format("{}: {} plugged in, vendor {} reports {}", usbId, plugged, vendor,
                             reported);
}

}  // namespace

void RequireUsbIdentifiers(const UsbPortMap& ports) {
    const PrinterUtil::VendorListReport list = PrinterUtil::DescribeVendorList();
    std::vector<std::string> without;
    for (const VendorInfo& vendor : list.vendors) {
        if (!UsbIdsOf(vendor).empty()) {
            return;
        }
        without.push_back("vendor " + vendor.productId);
    }
    if (!without.empty()) {
        throw Problem(
            "no printer on USB can be reached: the vendor list has only vendors without USB "
            "identifiers:" +
            Lines(without) +
            "\nName those of a vendor's printers, or * for all, in its usbIdList, in " + list.path +
            PluggedIn(ports));
    }
}

std::vector<std::string> RequireUsbVendors(const std::string& entryPoint, const UsbPortMap& ports) {
    const ServiceSurvey survey = SurveyConfiguration({entryPoint});
    if (survey.anyVendorServes) {
        RequireUsbIdentifiers(ports);
        return survey.problems;
    }
    throw Problem("no vendor can do this" + Lines(survey.problems) +
                  "\nName a vendor list with --vendors FILE, or install the missing modules; "
                  "`devicediscover vendors` shows what is there.");
}

std::optional<std::string> UsbVendorOf(const std::string& usbId) {
    const VendorByUsbId vendors = ReadUsbVendors();
    const auto vendor = vendors.find(usbId);
    return vendor == vendors.end() ? std::nullopt : std::optional(vendor->second);
}

std::string WhyUsbAnswerIsNone(const std::string& usbId, const UsbAnswer& answer) {
    const auto vendor = UsbVendorOf(usbId);
    if (!vendor) {
        return answer.result == 0 ? "" : NotListed(usbId);
    }
    return answer.printers.empty() && answer.result == 0
               ? fmt::format("{}: vendor {} reports none", usbId, *vendor)
               : Failure(usbId, *vendor, answer.result);
}

std::vector<std::string> UnreportedPorts(const UsbPortMap& ports,
                                         const std::vector<UsbAnswer>& answers) {
    // Read once: reading the list may look at everything that is plugged in.
    const VendorByUsbId vendors = ReadUsbVendors();
    std::vector<std::string> lines;
    std::vector<ServedPort> served;
    std::map<std::string, std::size_t> missing;  // by vendor
    auto answer = answers.begin();
    for (const auto& [deviceId, port] : ports) {
        const std::string usbId = WStringToString(deviceId);
        const auto vendor = vendors.find(usbId);
        if (vendor != vendors.end()) {
            const auto plugged = static_cast<std::size_t>(std::max(port.first, 1));
            served.push_back({usbId, vendor->second, plugged, &*answer});
            missing[vendor->second] += plugged;
        } else {
            lines.push_back(NotListed(usbId));
        }
        ++answer;
    }
    for (const UsbAnswer& one : answers) {
        for (const UsbPrinter& printer : one.printers) {
            std::size_t& ofVendor = missing[printer.vendor];
            ofVendor -= ofVendor > 0 ? 1 : 0;
        }
    }
    for (const ServedPort& port : served) {
        const std::string line = missing[port.vendor] == 0 ? "" : NotReported(port);
        if (!line.empty()) {
            lines.push_back(line);
        }
    }
    return lines;
}

}  // namespace App
