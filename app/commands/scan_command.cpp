// SPDX-License-Identifier: Apache-2.0

#include "app/commands/scan_command.h"

#include "app/items/printer_table.h"
#include "app/library/scan_session.h"
#include "app/output/json_output.h"
#include "app/program/messages.h"

namespace App {

ExitStatus Scan(const Settings& settings, const ScanOptions& options) {
    ScanSession session(settings);
    const auto view = ViewFor<Printer>(settings, PrinterJson);
    const bool isAnyFound = RunScan(session, *view, options);
    if (session.HasEnded()) {
        if (!isAnyFound || options.watch) {
            ThrowNobodyLooks(session);
        }
        WarnOfAll(session.TakeFailures());
    }
    if (isAnyFound) {
        return kFound;
    }
    Complain("no printer found.\n" + AdviceAfterScan());
    return kNoneFound;
}

}  // namespace App
