#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "platform/PrinterAdapter/PrinterListProvider.h"

namespace PrinterAdapter {

// The installed printers; none, with the reason in `problem`, when the spooler does not say. `note`
// is a line for the log: what was not heeded when the spooler was looked for.
struct SpoolerAnswer {
    std::vector<PrinterSdk::PrinterProperty> printers;
    std::string problem;
    std::string note;
};

// How long the spooler has for its answer.
inline constexpr std::chrono::milliseconds kSpoolerTime{2000};

// Asks the system's spooler on the calling thread; a spooler that hangs may take longer than it
// has.
SpoolerAnswer AskSpooler();

// Asks it on a thread of its own and waits no longer than it has. One question is asked at a time:
// behind one that hangs others wait, and give up in time as well.
SpoolerAnswer AskSpoolerInTime();

}  // namespace PrinterAdapter
