#pragma once

#include <functional>
#include <string>

namespace App {

// What vendors or the device manager do until they are told to stop, and how it ends.
class RunningWork {
public:
    // `what` runs: "scan". `late` is what is so when it does not stop in time: "a vendor has not
    // stopped its scan".
    RunningWork(std::string what, std::string late, std::function<int()> stopWork);
    // Stops it, and tells if that took too long: now no live display is torn by it.
    ~RunningWork();

    // Waits until it has stopped; after a request to end the program only for a moment, since
    // mostly it is that request which stops it: then it is left behind.
    void Stop();

    RunningWork(const RunningWork&) = delete;
    RunningWork& operator=(const RunningWork&) = delete;

private:
    const std::string name;
    const std::string lateness;
    const std::function<int()> stop;
    bool running = true;
    bool isLate = false;
};

}  // namespace App
