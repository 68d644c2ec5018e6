// SPDX-License-Identifier: Apache-2.0

#include "app/library/usb/host_usb_problem.h"

#include <array>

#include "app/library/host_function.h"
#include "platform/PrinterAdapter/PrinterListProblem.h"
#include "platform/PrinterDiscoverAPI/PrinterUsbControl.h"

namespace App {

namespace {

constexpr const char* kDeviceLibrary = "PrinterDiscoverAPI";
constexpr const char* kPrinterLibrary = "PrinterAdapter";

template <class Function>
std::string TextFrom(const char* library, const char* name) {
    const auto tell = reinterpret_cast<Function*>(HostFunction(library, name));
    std::array<char, 512> text{};
    return tell != nullptr && tell(text.data(), text.size()) != 0 ? text.data() : std::string();
}

}  // namespace

std::string LastUsbProblem() {
    return TextFrom<decltype(PrinterUsbProblem)>(kDeviceLibrary, "PrinterUsbProblem");
}

std::string UsbMonitorProblem() {
    return TextFrom<decltype(PrinterUsbMonitorProblem)>(kDeviceLibrary, "PrinterUsbMonitorProblem");
}

std::string LastInstalledPrintersProblem() {
    return TextFrom<decltype(PrinterListProblem)>(kPrinterLibrary, "PrinterListProblem");
}

}  // namespace App
