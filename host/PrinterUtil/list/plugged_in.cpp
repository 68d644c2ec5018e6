// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterUtil/list/plugged_in.h"

#include <map>
#include <set>
#include <sstream>
#include <utility>

#include "base/text/utf8.h"
#include "platform/PrinterDiscoverAPI/PrinterUsbDeviceManager.h"

namespace PrinterUtil {

namespace {

// Only blanks separate identifiers.
std::set<std::string> IdentifiersOf(const VendorInfo& vendor) {
    std::set<std::string> identifiers;
    std::istringstream text(vendor.usbIdList);
    for (std::string identifier; std::getline(text, identifier, ' ');) {
        identifiers.insert(identifier);
    }
    return identifiers;
}

}  // namespace

bool ServesAnyPrinter(const VendorInfo& vendor) {
    return IdentifiersOf(vendor).count("*") != 0;
}

void AddUnnamed(std::vector<VendorInfo>& vendors, const std::vector<std::string>& identifiers) {
    std::set<std::string> named;
    for (const VendorInfo& vendor : vendors) {
        named.merge(IdentifiersOf(vendor));
    }
    std::string unnamed;
    for (const std::string& identifier : identifiers) {
        if (named.count(identifier) == 0) {
            unnamed += " " + identifier;
        }
    }
    for (VendorInfo& vendor : vendors) {
        if (ServesAnyPrinter(vendor)) {
            vendor.usbIdList += unnamed;
        }
    }
}

std::vector<std::string> PluggedInIdentifiers() {
    std::map<std::wstring, std::pair<int, int>> ports;
    PrinterDiscoverAPI::PrinterUsbDeviceManager::GetInstance().GetCurrentPrinterPorts(ports);
    std::vector<std::string> identifiers;
    identifiers.reserve(ports.size());
    for (const auto& port : ports) {
        identifiers.push_back(Base::ToUtf8(port.first));
    }
    return identifiers;
}

}  // namespace PrinterUtil
