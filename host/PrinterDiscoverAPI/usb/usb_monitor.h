// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "host/PrinterDiscoverAPI/usb/usb_manager.h"
#include "host/PrinterDiscoverAPI/usb/usb_printer_table.h"
#include "platform/PrinterDiscoverAPI/PrinterUsbDeviceManager.h"

namespace PrinterDiscoverAPI {

// Reports arrivals and removals of printers to one registration, on a thread that runs from start
// to stop. All operations are safe from any thread and from inside a report.
class UsbMonitor {
public:
    // Never destroyed: its thread may run while the process ends.
    static UsbMonitor& GetInstance();

    // 0; or -1, with the reason in `problem`.
    int Start(const DeviceStateChangeCallbackInfo& info, std::string& problem);
    void Stop();

    // The current problem of the events; empty when there is none.
    std::string Trouble();

    UsbMonitor(const UsbMonitor&) = delete;
    UsbMonitor& operator=(const UsbMonitor&) = delete;

private:
    // One run of the thread. The caller that ends a run puts it into `retired`, to be joined.
    struct Run {
        std::unique_ptr<UsbEvents> events;
        UsbPrinterTable table;
        std::thread thread;
        bool ended = false;
    };

    UsbMonitor() = default;
    ~UsbMonitor() = default;

    std::shared_ptr<Run> NewRun(std::string& problem);
    void Watch(Run& run);
    bool TakeEvent(Run& run);
    std::vector<UsbChange> ChangesBy(Run& run, const UsbEvent& event);
    std::vector<UsbChange> ChangesMeanwhile(Run& run);
    void SetTrouble(const Run& run, const std::string& text);
    bool HasEnded(const Run& run);
    bool DeliverAll(const Run& run, const std::vector<UsbChange>& changes);
    bool Deliver(const Run& run, const UsbChange& change);
    bool IsInsideReport() const;
    void WaitForReport(std::unique_lock<std::mutex>& lock);
    void WaitForRetired(std::unique_lock<std::mutex>& lock);

    std::mutex mutex;
    std::condition_variable reported;
    DeviceStateChangeCallbackInfo registration{};
    std::shared_ptr<Run> current;
    std::string trouble;  // of the current run
    // Ended but not yet joined: a thread inside a report cannot join itself.
    std::vector<std::shared_ptr<Run>> retired;
    std::thread::id reporter;   // the thread that is delivering a report
    std::uint64_t reports = 0;  // delivered so far
};

}  // namespace PrinterDiscoverAPI
