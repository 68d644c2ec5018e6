// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

namespace App {

// Why an operation on this computer failed; empty when it did not. A replacement of a library may
// not tell.

// The problem of the calling thread's last operation of the USB device manager.
std::string LastUsbProblem();

// The current problem of the running USB monitor's events.
std::string UsbMonitorProblem();

// The problem of the calling thread's last list of installed printers.
std::string LastInstalledPrintersProblem();

}  // namespace App
