// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "platform/PrinterDiscoverAPI/PrinterUsbDeviceManager.h"

namespace UsbTest {

using PrinterDiscoverAPI::DeviceStateChangeCallbackInfo;
using PrinterDiscoverAPI::PrinterUsbDeviceManager;

// What a callback was told: 1 and the identifier of a printer that came, 0 and that of one that
// went.
using Report = std::pair<int, std::wstring>;
using Reports = std::vector<Report>;

// Two registrations, of which everything reported is kept.
enum class Receiver { first, second };
DeviceStateChangeCallbackInfo Registration(Receiver receiver = Receiver::first);
Reports ReportsTo(Receiver receiver = Receiver::first);
void ForgetReports();

// Waits until so many reports have come; gives what has come when it takes too long.
Reports WaitForReports(std::size_t count, Receiver receiver = Receiver::first);

// Called inside each report, after it has been kept; an empty function ends it.
void InsideReports(std::function<void(const Report&)> action);

// All device classes that were reported so far are that of USB printers.
bool OnlyPrinterClassReported();

// Something that one thread waits for and another lets happen.
class Gate {
public:
    void Open();
    void Pass();
    bool PassWithin(unsigned milliseconds);

private:
    std::mutex mutex;
    std::condition_variable changed;
    bool isOpen = false;
};

}  // namespace UsbTest
