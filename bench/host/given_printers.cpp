// SPDX-License-Identifier: Apache-2.0

#include "bench/host/given_printers.h"

#include <utility>

namespace {

using PrinterSdk::PrinterProperty;

class Adapter : public PrinterSdk::IPrinterAdapter, public PrinterSdk::PrinterListProvider {
public:
    int Open() override { return 0; }
    int Close() override { return 0; }
    PrinterSdk::IPrintCap* GetPrintCap(const wchar_t*) override { return nullptr; }
    PrinterSdk::IScanCap* GetScanCap(const wchar_t*) override { return nullptr; }
    PrinterSdk::ICopyCap* GetCopyCap(const wchar_t*) override { return nullptr; }
    PrinterSdk::PrinterListProvider* GetPrinterListProvider() override { return this; }
    void GetPrinterList(std::vector<PrinterProperty>& list) override {
        list.insert(list.end(), printers.begin(), printers.end());
    }

    std::vector<PrinterProperty> printers;
};

Adapter& TheAdapter() {
    static auto* const adapter = new Adapter;
    return *adapter;
}

}  // namespace

PrinterSdk::IPrinterAdapter& PrinterSdk::IPrinterAdapter::GetInstance() {
    return TheAdapter();
}

void Bench::KnowPrinters(std::vector<PrinterProperty> printers) {
    TheAdapter().printers = std::move(printers);
}
