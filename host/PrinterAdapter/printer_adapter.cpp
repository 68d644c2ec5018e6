// SPDX-License-Identifier: Apache-2.0

#include "DeviceDiscover/printer_sdk.h"
#include "host/PrinterAdapter/printer_list.h"

namespace PrinterAdapter {

namespace {

constexpr int kNotOffered = -1;

// An adapter that only lists the installed printers. Printing, scanning and copying are not
// supported.
class Adapter : public PrinterSdk::IPrinterAdapter {
public:
    int Open() override { return kNotOffered; }
    int Close() override { return kNotOffered; }
    PrinterSdk::IPrintCap* GetPrintCap(const wchar_t*) override { return nullptr; }
    PrinterSdk::IScanCap* GetScanCap(const wchar_t*) override { return nullptr; }
    PrinterSdk::ICopyCap* GetCopyCap(const wchar_t*) override { return nullptr; }
    PrinterSdk::PrinterListProvider* GetPrinterListProvider() override { return &list; }

private:
    PrinterList list;
};

}  // namespace

}  // namespace PrinterAdapter

PrinterSdk::IPrinterAdapter& PrinterSdk::IPrinterAdapter::GetInstance() {
    static IPrinterAdapter& instance = *new ::PrinterAdapter::Adapter;
    return instance;
}
