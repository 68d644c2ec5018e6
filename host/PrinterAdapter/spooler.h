// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "platform/PrinterAdapter/PrinterListProvider.h"

namespace PrinterAdapter {

// The installed printers; none, with the reason in `problem`, when the spooler does not answer.
// `note` is a log line about ignored settings of the spooler's address.
struct SpoolerAnswer {
    std::vector<PrinterSdk::PrinterProperty> printers;
    std::string problem;
    std::string note;
};

// The time that the spooler has for its answer.
inline constexpr std::chrono::milliseconds kSpoolerTime{2000};

// Asks the system's spooler on the calling thread. If the spooler hangs this may take longer than
// kSpoolerTime.
SpoolerAnswer AskSpooler();

// Asks the spooler on a separate thread and waits at most kSpoolerTime. Only one request runs at a
// time; other callers wait for it, with the same time limit.
SpoolerAnswer AskSpoolerInTime();

}  // namespace PrinterAdapter
