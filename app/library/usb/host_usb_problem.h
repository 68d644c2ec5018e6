#pragma once

#include <string>

namespace App {

// Why something of this computer is not known; empty when nothing stands in the way. Libraries of
// other vendors may not tell.

// Of the calling thread's last operation of the USB device manager.
std::string LastUsbProblem();

// Of the running USB monitor's events, now.
std::string UsbMonitorProblem();

// Of the calling thread's last list of installed printers.
std::string LastInstalledPrintersProblem();

}  // namespace App
