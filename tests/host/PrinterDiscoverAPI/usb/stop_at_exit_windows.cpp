// SPDX-License-Identifier: Apache-2.0

#include "platform/PrinterDiscoverAPI/PrinterUsbDeviceManager.h"

// A library that stops the monitor when the process ends.

namespace {

struct Stop {
    ~Stop() { PrinterDiscoverAPI::PrinterUsbDeviceManager::GetInstance().StopMonitor(); }
};

const Stop stop;

}  // namespace
