#pragma once

#include "app/arrival_list.h"
#include "app/settings.h"

namespace App {

// Watches printers being plugged in, from construction to Stop. Those that are go to the process's
// ArrivalList.
class UsbWatchSession {
public:
    // Names on standard error each vendor that cannot take part. Throws Problem when none can,
    // Interrupted.
    explicit UsbWatchSession(const Settings& settings);
    ~UsbWatchSession();

    // Returns when no printer is being reported any more; after a request to end the program it
    // waits for that only for a moment.
    void Stop();

    UsbWatchSession(const UsbWatchSession&) = delete;
    UsbWatchSession& operator=(const UsbWatchSession&) = delete;

private:
    bool running = false;
    bool isLate = false;
};

}  // namespace App
