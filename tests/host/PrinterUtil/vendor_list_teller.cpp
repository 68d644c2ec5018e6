// SPDX-License-Identifier: Apache-2.0

#include <fstream>

#include "host/PrinterUtil/vendor_list.h"
#include "host/common/paths.h"

// vendor_list_teller OUTPUT [LIST]: writes the list's path and the names of its vendors.
int main(int count, char** arguments) {
    if (count < 2 || count > 3) {
        return 2;
    }
    if (count == 3) {
        PrinterUtil::UseVendorList(arguments[2]);
    }
    const PrinterUtil::VendorListReport report = PrinterUtil::DescribeVendorList();
    std::ofstream output(Host::PathFromUtf8(arguments[1]), std::ios::binary);
    for (const VendorInfo& vendor : report.vendors) {
        output << vendor.productId << "\n";
    }
    for (const std::string& problem : report.problems) {
        output << problem << "\n";
    }
    return 0;
}
