#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "app/items/printer_list.h"
#include "app/library/vendor_scans.h"
#include "app/program/settings.h"
#include "app/running/running_work.h"
#include "base/first_lines.h"

namespace App {

// A scan in every vendor's module, from construction to Stop. What is found goes to the process's
// PrinterList; a request to end the program cancels that list's waits.
class ScanSession {
public:
    // Starts the scan, and names on standard error each vendor that cannot take part. Throws
    // Problem when none can, and TimedOut when a module does not get ready in its time.
    explicit ScanSession(const Settings& settings);

    // As that of RunningWork.
    void Stop(const std::function<void()>& onWait = [] {});

    // Whether nobody looks any more: each vendor's scan has failed.
    bool HasEnded();

    // Lines that a user should read, new since the last call: vendors whose scan has failed while
    // others look on, and printers that no vendor of the list can be asked about.
    std::vector<std::string> TakeRemarks();

    // Why vendors do not look: those that no remark has told.
    std::vector<std::string> TakeFailures();

    // All of them so far.
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
