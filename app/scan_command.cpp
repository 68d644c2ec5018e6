#include "app/scan_command.h"

#include "app/json_output.h"
#include "app/messages.h"
#include "app/printer_table.h"
#include "app/scan_session.h"

namespace App {

ExitStatus Scan(const Settings& settings, const ScanOptions& options) {
    ScanSession session;
    const auto view = ViewFor<Printer>(settings, PrinterJson);
    if (RunScan(session, *view, options)) {
        return kFound;
    }
    Complain("no printer found.\n" + AdviceAfterScan());
    return kNoneFound;
}

}  // namespace App
