#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <set>
#include <vector>

#include "app/printer.h"

namespace App {

// The printers of a scan. Vendors' threads add to it, several at once; the program's own thread
// waits for what is new.
class PrinterList {
public:
    using Clock = std::chrono::steady_clock;

    // The one list of the process. It is never destroyed: vendors may report while the process
    // ends.
    static PrinterList& GetInstance();

    // Adds the printer, or renews what is known of it.
    void Add(const Printer& printer);

    // Ends every wait, now and later.
    void Cancel();
    bool IsCancelled() const;

    // Waits until there is something new, until `until`, or until Cancel. Returns the printers that
    // were added or have changed since the last call, in the order in which they were first found.
    std::vector<Printer> WaitForNews(Clock::time_point until);

    std::vector<Printer> GetPrinters() const;

private:
    mutable std::mutex mutex;
    std::condition_variable changed;
    std::vector<Printer> printers;
    std::set<std::size_t> news;  // indices into `printers`
    bool cancelled = false;
};

}  // namespace App
