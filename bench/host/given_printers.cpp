#include "bench/host/given_printers.h"

#include <utility>

namespace {

class List : public PrinterSdk::PrinterListProvider {
public:
    void GetPrinterList(std::vector<PrinterSdk::PrinterProperty>& printers) override {
        printers.insert(printers.end(), given.begin(), given.end());
    }

    std::vector<PrinterSdk::PrinterProperty> given;
};

// An adapter for its list only.
class Adapter : public PrinterSdk::IPrinterAdapter {
public:
    int Open() override { return 0; }
    int Close() override { return 0; }
    PrinterSdk::IPrintCap* GetPrintCap(const wchar_t*) override { return nullptr; }
    PrinterSdk::IScanCap* GetScanCap(const wchar_t*) override { return nullptr; }
    PrinterSdk::ICopyCap* GetCopyCap(const wchar_t*) override { return nullptr; }
    PrinterSdk::PrinterListProvider* GetPrinterListProvider() override { return &list; }

    List list;
};

Adapter& TheAdapter() {
    static Adapter* const adapter = new Adapter;
    return *adapter;
}

}  // namespace

PrinterSdk::IPrinterAdapter& PrinterSdk::IPrinterAdapter::GetInstance() {
    return TheAdapter();
}

void Bench::HavePrinters(std::vector<PrinterSdk::PrinterProperty> printers) {
    TheAdapter().list.given = std::move(printers);
}
