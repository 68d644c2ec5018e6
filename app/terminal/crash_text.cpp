// SPDX-License-Identifier: Apache-2.0

#include "app/terminal/crash_text.h"

#include "host/PrinterUtil/vendor_list.h"

namespace App {

namespace {

using PrinterDeviceDiscoverSdk::ReadVendorCall;
using PrinterDeviceDiscoverSdk::VendorCall;
using PrinterDeviceDiscoverSdk::VendorCallRows;
using PrinterDeviceDiscoverSdk::VendorCallState;

}  // namespace

CrashText::CrashText(std::string_view end) {
    Append(end);
    const bool inOne = AppendCalls(true, " in ");
    const bool inOthers = AppendCalls(false, inOne ? "; also under way: " : "; under way: ");
    const bool inLoad = AppendModules();
    if (!inOne && !inOthers && !inLoad) {
        Append("; no vendor was being called");
    }
}

void CrashText::Append(std::string_view more) {
    for (const char character : more.substr(0, text.size() - length)) {
        // A vendor's name may contain any bytes.
        text[length++] = character >= ' ' && character <= '~' ? character : '?';
    }
}

bool CrashText::AppendModules() {
    char modules[512];
    const std::size_t size = PrinterUtil::ReadModulesBeingLoaded(modules, sizeof modules);
    if (size > 0) {
        Append("; being loaded: ");
        Append({modules, size});
    }
    return size > 0;
}

bool CrashText::AppendCalls(bool onThisThread, std::string_view lead) {
    bool any = false;
    VendorCall call;
    for (std::size_t row = 0; row < VendorCallRows(); ++row) {
        if (!ReadVendorCall(row, call) || call.state != VendorCallState::kUnderWay ||
            call.isOnThisThread != onThisThread) {
            continue;
        }
        Append(any ? ", " : lead);
        Append("vendor ");
        Append(call.productId);
        Append(" (");
        Append(call.entryPoint);
        Append(")");
        any = true;
    }
    return any;
}

}  // namespace App
