#pragma once

#include <cstddef>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "DeviceDiscover/DeviceDiscover.h"
#include "app/usb_question.h"
#include "app/usb_vendors.h"

namespace App {

// Watches printers being plugged in: asks each one's vendor a moment later, and adds what it hears
// to the ArrivalList. It goes past the broker's own monitor, which asks on threads that nobody can
// wait for: the broker could not be told of models that it does not know.
class UsbArrivals {
public:
    static UsbArrivals& GetInstance();

    // Throws Problem when the device manager cannot watch.
    void Start();
    // Returns when no report is under way; what is being asked then is not reported any more.
    int Stop();

    // What is plugged in around the start, before and after it. One that came between the two, and
    // that the device manager took for one that was there, counts as an arrival.
    void Compare(const UsbPortMap& before, const UsbPortMap& after);

    // A line for each model that is plugged in now, in `ports`, and was not reported.
    std::vector<std::string> Unreported(const UsbPortMap& before, const UsbPortMap& now) const;

    UsbArrivals(const UsbArrivals&) = delete;
    UsbArrivals& operator=(const UsbArrivals&) = delete;

private:
    // Of the arrivals of one hardware identifier.
    struct Model {
        std::size_t told = 0;   // by the device manager
        std::size_t asked = 0;  // and so many have been answered
        std::size_t answered = 0;
        std::string problem;  // with the last answer; empty: it was reported
    };

    UsbArrivals() = default;
    ~UsbArrivals() = default;

    static std::int32_t OnChange(const GUID& deviceClass, PrinterUsbApiStruct::EmDeviceState state,
                                 const std::wstring& deviceId);
    void AskSoon(const std::wstring& deviceId, std::size_t unlessTold);
    void Ask(const std::wstring& deviceId, std::size_t unlessTold);
    bool BeginQuestion(const std::wstring& deviceId, std::size_t unlessTold);
    void Report(const std::wstring& deviceId, const UsbAnswer& answer, const std::string& problem);

    mutable std::mutex mutex;
    bool isOpen = false;
    std::map<std::wstring, Model> models;
};

}  // namespace App
