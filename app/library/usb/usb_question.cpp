// SPDX-License-Identifier: Apache-2.0

#include "app/library/usb/usb_question.h"

#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <set>

#include "DeviceDiscover/results.h"
#include "app/library/usb/usb_vendors.h"
#include "app/terminal/crash_report.h"
#include "base/side_by_side.h"
#include "platform/PrinterUtil/PrinterUtil.h"

namespace App {

namespace {

// Each caller that waits for the answers has its own limit.
constexpr Base::SideBySideLimits kAskingLimits{kUsbQuestionsAtATime, std::chrono::hours(1)};

using PrinterDeviceDiscoverSdk::DeviceInfo;
using PrinterDeviceDiscoverSdk::kNothingToCall;
using PrinterDeviceDiscoverSdk::kNotInitialised;
using PrinterDeviceDiscoverSdk::UsbConnInterface;

// Controls requests to the broker and updates of its identifiers. Never destroyed: requests may run
// while the process ends.
class Desk {
public:
    static Desk& GetInstance() {
        static Desk& desk = *new Desk;
        return desk;
    }

    void BeginQuestion() {
        std::unique_lock lock(mutex);
        changed.wait(lock, [this] { return !isLearning; });
        ++questions;
    }

    void EndQuestion() {
        const std::lock_guard lock(mutex);
        --questions;
        changed.notify_all();
    }

    // Updates the broker's identifiers from the vendors' current lists, once for each missing
    // identifier. False when there was nothing to update, or no chance to.
    bool Learn(const std::wstring& deviceId) {
        std::unique_lock lock(mutex);
        if (!changed.wait_for(lock, kQuestionLimit,
                              [this] { return questions == 0 && !isLearning; }) ||
            learned.count(deviceId) != 0) {
            return learned.count(deviceId) != 0;
        }
        isLearning = true;
        lock.unlock();
        const bool isListed = LearnNow(deviceId);
        lock.lock();
        isLearning = false;
        if (isListed) {
            learned.insert(deviceId);
        }
        changed.notify_all();
        return true;
    }

    bool HasLearned(const std::wstring& deviceId) {
        const std::lock_guard lock(mutex);
        return learned.count(deviceId) != 0;
    }

private:
    static constexpr std::chrono::seconds kQuestionLimit{30};

    // A printer that was unplugged meanwhile may have been missed.
    static bool LearnNow(const std::wstring& deviceId) {
        try {
            UsbConnInterface::GetInstance().Init();
            return UsbVendorOf(PrinterUtil::WStringToString(deviceId)).has_value();
        } catch (const std::exception&) {
            return false;
        }
    }

    std::mutex mutex;
    std::condition_variable changed;
    int questions = 0;
    bool isLearning = false;
    std::set<std::wstring> learned;
};

// The broker's tables do not change during this object's lifetime.
class Question {
public:
    Question() { Desk::GetInstance().BeginQuestion(); }
    ~Question() { Desk::GetInstance().EndQuestion(); }
    Question(const Question&) = delete;
    Question& operator=(const Question&) = delete;
};

UsbAnswer Ask(const std::wstring& deviceId) {
    const Question question;
    std::vector<DeviceInfo> devices;
    const int result = UsbConnInterface::GetInstance().GetDeviceInfoByUsb(devices, deviceId);
    return {result, {devices.begin(), devices.end()}};
}

}  // namespace

UsbAnswer AskUsbVendor(const std::wstring& deviceId) {
    UsbAnswer answer = Ask(deviceId);
    const bool isUnknown = answer.result == kNothingToCall || answer.result == kNotInitialised;
    Desk& desk = Desk::GetInstance();
    if (!isUnknown || desk.HasLearned(deviceId) ||
        !UsbVendorOf(PrinterUtil::WStringToString(deviceId)) || !desk.Learn(deviceId)) {
        return answer;
    }
    return Ask(deviceId);
}

std::vector<UsbAnswer> AskUsbVendors(const std::vector<std::wstring>& deviceIds) {
    std::vector<UsbAnswer> answers(deviceIds.size());
    Base::AskSideBySide(deviceIds.size(), kAskingLimits, [&](std::size_t number) {
        ReportCrashesOfThisThread();
        answers[number] = Ask(deviceIds[number]);
    });
    return answers;
}

}  // namespace App
