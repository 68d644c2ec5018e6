// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

#include "platform/PrinterAdapter/PrinterListProvider.h"

namespace PrinterAdapter {

// The attributes of a print queue with a device URI, in UTF-8.
struct PrintQueue {
    std::string name;
    std::string description;
    std::string location;
    std::string driverName;
    std::string deviceUri;
    std::string deviceId;  // IEEE 1284
    std::string uuid;      // of the queue
    std::string state;
};

// The printer of the queue. A USB printer that speaks IPP has a queue like a network printer's, but
// at this host's own address or with a name that ends in " (USB)"; it counts as USB.
//
// Serial number: from a USB device URI, else from the device id. A network printer without a known
// serial number gets a UUID instead, the printer's own if the device URI contains it, else the
// queue's: all printers without a serial number would count as the same. Model identifier: the
// model from the device id, else from a USB device URI, else empty.
PrinterSdk::PrinterProperty PrinterOf(const PrintQueue& queue);

}  // namespace PrinterAdapter
