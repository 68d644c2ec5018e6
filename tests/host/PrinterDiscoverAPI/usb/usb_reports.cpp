// SPDX-License-Identifier: Apache-2.0

#include "tests/host/PrinterDiscoverAPI/usb/usb_reports.h"

#include <array>
#include <chrono>
#include <cstring>

namespace UsbTest {

namespace {

constexpr auto kPatience = std::chrono::seconds(20);
constexpr GUID kPrinterClass{
    0x28d78fad, 0x5a12, 0x11d1, {0xae, 0x5b, 0x00, 0x00, 0xf8, 0x03, 0xa8, 0xc2}};

struct Kept {
    std::mutex mutex;
    std::condition_variable added;
    std::array<Reports, 2> reports;
    std::function<void(const Report&)> action;
    bool onlyPrinterClass = true;
};

// Never destroyed: reports come while the process ends.
Kept& TheKept() {
    static Kept& kept = *new Kept;
    return kept;
}

template <Receiver receiver>
std::int32_t Take(const GUID& deviceClass, PrinterUsbApiStruct::EmDeviceState state,
                  const std::wstring& deviceId) {
    Kept& kept = TheKept();
    const Report report{state, deviceId};
    std::unique_lock lock(kept.mutex);
    kept.onlyPrinterClass = kept.onlyPrinterClass &&
                            std::memcmp(&deviceClass, &kPrinterClass, sizeof kPrinterClass) == 0;
    kept.reports[static_cast<std::size_t>(receiver)].push_back(report);
    kept.added.notify_all();
    const auto action = kept.action;
    lock.unlock();
    if (action) {
        action(report);
    }
    return 7;  // what a callback returns changes nothing
}

}  // namespace

DeviceStateChangeCallbackInfo Registration(Receiver receiver) {
    return {receiver == Receiver::first ? Take<Receiver::first> : Take<Receiver::second>, 42};
}

Reports ReportsTo(Receiver receiver) {
    return WaitForReports(0, receiver);
}

void ForgetReports() {
    Kept& kept = TheKept();
    const std::lock_guard lock(kept.mutex);
    kept.reports = {};
}

Reports WaitForReports(std::size_t count, Receiver receiver) {
    Kept& kept = TheKept();
    std::unique_lock lock(kept.mutex);
    const Reports& reports = kept.reports[static_cast<std::size_t>(receiver)];
    kept.added.wait_for(lock, kPatience, [&] { return reports.size() >= count; });
    return reports;
}

void InsideReports(std::function<void(const Report&)> action) {
    Kept& kept = TheKept();
    const std::lock_guard lock(kept.mutex);
    kept.action = std::move(action);
}

bool OnlyPrinterClassReported() {
    Kept& kept = TheKept();
    const std::lock_guard lock(kept.mutex);
    return kept.onlyPrinterClass;
}

void Gate::Open() {
    const std::lock_guard lock(mutex);
    isOpen = true;
    changed.notify_all();
}

void Gate::Pass() {
    std::unique_lock lock(mutex);
    changed.wait(lock, [this] { return isOpen; });
}

bool Gate::PassWithin(unsigned milliseconds) {
    std::unique_lock lock(mutex);
    return changed.wait_for(lock, std::chrono::milliseconds(milliseconds),
                            [this] { return isOpen; });
}

}  // namespace UsbTest
