// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "DeviceDiscover/DeviceDiscover.h"
#include "app/library/usb/arrival_queue.h"
#include "app/library/usb/usb_question.h"
#include "app/library/usb/usb_vendors.h"
#include "base/first_lines.h"

namespace App {

// Watches for printers being plugged in: calls each printer's vendor a moment later and adds the
// answer to the ArrivalList. Takes the arrivals from the device manager, past the broker's own
// monitor (DiscoverUsbInterface::StartDeviceMonitor). That monitor calls vendors on detached
// threads of its own, and nobody learns when such a call ends; but a model that the broker does not
// know yet can be added to its list only while no call runs. That monitor also starts a thread for
// each arrival, however many, and tells neither that the device manager cannot watch nor that a
// vendor failed: "could not look" would be shown as "none".
class UsbArrivals {
public:
    static UsbArrivals& GetInstance();

    // `patience` is how long a vendor may take for an answer before that is remarked. Throws
    // Problem when the device manager cannot watch.
    void Start(ArrivalQueue::Duration patience);
    // Returns when no report is under way; what is being asked then is not reported any more.
    int Stop();

    // Takes the printers plugged in before and after the start. A printer that arrived in between,
    // and that the device manager counted as present, is reported as an arrival.
    void Compare(const UsbPortMap& before, const UsbPortMap& after);

    // Lines that a user should read at once, new since the last call: vendors that take too long,
    // and that more is plugged in than can be asked about.
    std::vector<std::string> TakeRemarks();

    // A line for each model that is plugged in now, in `ports`, and was not reported, but for those
    // whose vendor has not answered.
    std::vector<std::string> Unreported(const UsbPortMap& before, const UsbPortMap& now) const;

    // A line for each model whose vendor has not answered, and one for arrivals that no vendor was
    // asked about before Stop; those that were remarked only on request.
    std::vector<std::string> Unanswered(bool alsoRemarked) const;

    UsbArrivals(const UsbArrivals&) = delete;
    UsbArrivals& operator=(const UsbArrivals&) = delete;

private:
    // The arrivals of one hardware identifier.
    struct Model {
        std::size_t told = 0;   // arrivals from the device manager
        std::size_t asked = 0;  // vendor calls started
        std::size_t answered = 0;
        bool isLate = false;      // an answer is
        std::string problem;      // with the last question; empty: it was reported
        bool isAnswered = false;  // the last question was
    };

    // What became of a question.
    struct Outcome {
        UsbAnswer answer;
        std::string problem;
        bool isAnswer;
    };

    // Ends the question, also when the vendor ends its thread.
    class Asking;

    UsbArrivals();
    ~UsbArrivals() = default;

    static std::int32_t OnChange(const GUID& deviceClass, PrinterUsbApiStruct::EmDeviceState state,
                                 const std::wstring& deviceId);
    void Add(const std::wstring& deviceId, std::size_t unlessTold);
    Model* ModelOf(const std::wstring& deviceId);
    void AskInTurn();
    void BeginQuestions();
    bool IsBegun(const ArrivalQueue::Question& question);
    void Ask(const ArrivalQueue::Question& question);
    void Report(const ArrivalQueue::Question& question, const Outcome& outcome);
    void RemarkLate(const std::wstring& deviceId);

    mutable std::mutex mutex;  // guards what follows
    bool isOpen = false;
    ArrivalQueue::Duration patience{};
    ArrivalQueue queue;
    std::map<std::wstring, Model> models;
    std::vector<std::wstring> late;  // models to remark
    Base::LineLimit lateLines;
    bool isMissingRemarked = false;
    std::size_t unasked = 0;  // arrivals, at Stop

    std::condition_variable changed;
    std::thread asker;  // starts the questions
};

}  // namespace App
