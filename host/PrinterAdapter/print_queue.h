#pragma once

#include <string>

#include "platform/PrinterAdapter/PrinterListProvider.h"

namespace PrinterAdapter {

// What a spooler that knows printers by device URI says of one, in UTF-8.
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

// The printer behind the queue. One on USB that speaks IPP has a queue of a network printer, at
// this host's own address or with a name that ends in " (USB)": it is on USB all the same.
//
// Serial number: that of a USB device URI, else that of the device identifier. A network printer
// whose serial number is not known has the UUID in its place, the printer's own if the device URI
// has it, else the queue's: printers without one would all be taken for the same.
// Model identifier: the model of the device identifier, else of a USB device URI, else empty.
PrinterSdk::PrinterProperty PrinterOf(const PrintQueue& queue);

}  // namespace PrinterAdapter
