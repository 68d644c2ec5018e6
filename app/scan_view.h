#pragma once

#include <string>
#include <vector>

#include "app/printer.h"

namespace App {

// How a running scan is shown on standard output.
class ScanView {
public:
    virtual ~ScanView() = default;

    // Called a few times a second. `news` are printers that are new or have changed, `status` is
    // how the scan stands.
    virtual void Show(const std::vector<Printer>& news, const std::string& status) = 0;

    // The scan has ended.
    virtual void Finish() = 0;
};

}  // namespace App
