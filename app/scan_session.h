#pragma once

#include <optional>

#include "app/printer_list.h"
#include "app/running_work.h"

namespace App {

// A scan in every vendor's module, from construction to Stop. What is found goes to the process's
// PrinterList; a request to end the program cancels that list's waits.
class ScanSession {
public:
    // Starts the scan, and names on standard error each vendor that cannot take part. Throws
    // Problem when none can.
    ScanSession();

    // As that of RunningWork.
    void Stop() { scan->Stop(); }

    PrinterList& Printers() { return PrinterList::GetInstance(); }

private:
    std::optional<RunningWork> scan;
};

}  // namespace App
