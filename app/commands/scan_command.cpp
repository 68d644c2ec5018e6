// SPDX-License-Identifier: Apache-2.0

#include "app/commands/scan_command.h"

#include <memory>

#include "app/commands/common_options.h"
#include "app/items/printer_table.h"
#include "app/library/scan_session.h"
#include "app/output/json_output.h"
#include "app/program/messages.h"

namespace App {

namespace {

ExitStatus Scan(const ScanOptions& options) {
    ScanSession session;
    const auto view = ViewFor<Printer>(PrinterJson);
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

constexpr const char* kScanDetails =
    R"(On a terminal a table shows the printers found so far. When the output is not a
terminal, each printer becomes a line as soon as it is found, with columns
separated by tabs: serial number, make and model, address, port, vendor.

Printers that share a serial number are told apart by their addresses. A printer
that changes its address during the scan is shown at both.

If a vendor cannot look, a warning says why. If no vendor can look, or all have
stopped, the scan ends at once with exit status 3; without --watch the status is
0 if a printer was found before.

Ctrl-C stops the scan. A vendor that has not stopped after 3 seconds is abandoned
with a warning. A second Ctrl-C ends the program at once.)";

}  // namespace

Command ScanCommand() {
    const auto options = std::make_shared<ScanOptions>();
    Command command{.name = "scan",
                    .summary = "Look for printers and show them as they are found.",
                    .examples = {{"scan", "a live table for 5 seconds"},
                                 {"scan --seconds 30", "give slow printers more time"},
                                 {"scan --watch", "until Ctrl-C"},
                                 {"scan --json | jq .address"},
                                 {"scan --vendors ./vendors.json --log-level debug"}},
                    .details = kScanDetails,
                    .exitTexts = ExitTexts("at least one printer was found", "no printer was found",
                                           "could not run; no vendor could look"),
                    .run = [options] { return Scan(*options); }};
    AddScanOptions(command, *options);
    return command;
}

}  // namespace App
