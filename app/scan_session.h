#pragma once

#include "app/printer_list.h"

namespace App {

// A scan in every vendor's module, from construction to Stop. What is found goes to the process's
// PrinterList; a request to end the program cancels that list's waits.
class ScanSession {
public:
    // Starts the scan, and names on standard error each vendor that cannot take part. Throws
    // Problem when none can.
    ScanSession();
    ~ScanSession();

    // Returns when every vendor has been told; after a request to end the program it waits for
    // them only for a moment. That one took longer is told at the end of the session, when no live
    // display is torn by it.
    void Stop();

    PrinterList& Printers() { return PrinterList::GetInstance(); }

    ScanSession(const ScanSession&) = delete;
    ScanSession& operator=(const ScanSession&) = delete;

private:
    bool running = false;
    bool isLate = false;  // a vendor has not stopped in time
};

}  // namespace App
