// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <string>

namespace App {

// Work of the vendors or of the device manager that runs until it is stopped.
class RunningWork {
public:
    // `what`: the name of the work, "scan". `late`: the message if it does not stop in time and no
    // vendor is known to be the reason: "the device manager has not stopped its reports".
    RunningWork(std::string what, std::string late, std::function<int()> stopWork);
    // Stops the work, and reports if that took too long: now the message breaks no live display.
    ~RunningWork();

    // Stops the work and waits a few seconds at most; then abandons it. Calls `onWait` a few times
    // a second. Errors do not lose what was found so far.
    void Stop(const std::function<void()>& onWait = [] {});

    RunningWork(const RunningWork&) = delete;
    RunningWork& operator=(const RunningWork&) = delete;

private:
    const std::string name;
    const std::string lateness;
    const std::function<int()> stop;
    bool running = true;
    std::string problem;  // in stopping it
};

}  // namespace App
