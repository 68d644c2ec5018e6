#pragma once

// One scan: from the call of StartDeviceScan to its return.

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

#include "VendorSdk/records.h"
#include "printer.h"

namespace Driverless {

class ScanSession {
public:
    explicit ScanSession(VendorSdk::DeviceCallbackInfo* listener);
    ~ScanSession();

    // Looks for printers until it is stopped, and reports on the calling thread. Returns
    // StartDeviceScan's result.
    int Run();

    // Makes Run return; no report begins any more. True once no report is under way, other than one
    // from which this is called; false when that takes longer than `patience`.
    bool Stop(std::chrono::milliseconds patience);

    bool ReportsToSameAs(const ScanSession& other) const { return info == other.info; }

    ScanSession(const ScanSession&) = delete;
    ScanSession& operator=(const ScanSession&) = delete;

private:
    class Inbox;

    void Report(const Printer& printer);
    bool BeginReport();
    void EndReport();

    VendorSdk::DeviceCallbackInfo* const info;
    const std::shared_ptr<Inbox> inbox;

    std::mutex mutex;
    std::condition_variable changed;
    bool stopped = false;
    bool reporting = false;
    std::thread::id reporter;
};

}  // namespace Driverless
