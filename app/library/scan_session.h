// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "app/items/printer.h"
#include "app/library/vendor_scans.h"
#include "app/running/running_work.h"
#include "base/first_lines.h"

namespace App {

// A scan through every vendor's module, from construction to Stop. Printers go to the process's
// PrinterList; a request to end the program cancels the list's waits.
class ScanSession {
public:
    // Starts the scan, and names on standard error each vendor that cannot take part. Throws
    // Problem when none can, and TimedOut when a module is not loaded in time.
    ScanSession();

    // See RunningWork::Stop.
    void Stop(const std::function<void()>& onWait = [] {});

    // Whether every vendor's scan has failed.
    bool HasEnded();

    // Lines for the user, new since the last call: vendors whose scan has failed while others
    // continue, and printers whose vendor is not in the list.
    std::vector<std::string> TakeRemarks();

    // The reasons of failed scans that no remark has reported.
    std::vector<std::string> TakeFailures();

    // All reasons so far.
    const std::vector<std::string>& Failures() const { return scans->Failures(); }

    PrinterList& Printers() { return PrinterList::GetInstance(); }

private:
    void RemarkStrangers(std::vector<std::string>& remarks);
    void RemarkRest(std::vector<std::string>& remarks);

    std::optional<VendorScans> scans;
    std::optional<RunningWork> scan;
    std::size_t remarked = 0;            // failures that were told
    std::set<std::string> strangers;     // vendors of printers that are not in the list
    std::set<std::string> knownVendors;  // the list's
    Base::LineLimit strangerLines;
    Base::LineLimit failureLines;
    bool isStopped = false;
};

// Throws Problem with the reasons of a session that has ended.
[[noreturn]] void ThrowNobodyLooks(const ScanSession& session);

}  // namespace App
