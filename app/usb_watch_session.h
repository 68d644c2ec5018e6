#pragma once

#include <functional>
#include <optional>

#include "app/arrival_list.h"
#include "app/running_work.h"
#include "app/settings.h"

namespace App {

// Watches printers being plugged in, from construction to Stop. Those that are go to the process's
// ArrivalList.
class UsbWatchSession {
public:
    // Names on standard error each vendor that cannot take part. Throws Problem when none can,
    // Interrupted.
    explicit UsbWatchSession(const Settings& settings);

    // As that of RunningWork: returns when no printer is being reported any more.
    void Stop(const std::function<void()>& onWait = [] {}) { watch->Stop(onWait); }

private:
    std::optional<RunningWork> watch;
};

}  // namespace App
