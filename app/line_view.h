#pragma once

#include "app/scan_view.h"

namespace App {

// One line a printer, as soon as it is found; another when there is news about it.
class LineView : public ScanView {
public:
    using Format = std::string(const Printer& printer);

    explicit LineView(Format& lineFormat) : format(lineFormat) {}

    void Show(const std::vector<Printer>& news, const std::string& status) override;
    void Finish() override {}

private:
    Format& format;
};

// Serial number, make and model, address, port and vendor, separated by tabs.
std::string TabbedLine(const Printer& printer);

}  // namespace App
