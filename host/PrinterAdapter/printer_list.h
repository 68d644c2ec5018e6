// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <vector>

#include "platform/PrinterAdapter/PrinterListProvider.h"

namespace PrinterAdapter {

// The printers that are installed on the host. Appends none, and logs the reason, when the spooler
// does not answer. Takes at most kSpoolerTime.
class PrinterList : public PrinterSdk::PrinterListProvider {
public:
    void GetPrinterList(std::vector<PrinterSdk::PrinterProperty>& printers) override;
};

}  // namespace PrinterAdapter
