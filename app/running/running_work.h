#pragma once

#include <functional>
#include <string>

namespace App {

// What vendors or the device manager do until they are told to stop, and how it ends.
class RunningWork {
public:
    // `what` runs: "scan". `late` is what is so when it does not stop in time and no vendor is
    // known to be the reason: "the device manager has not stopped its reports".
    RunningWork(std::string what, std::string late, std::function<int()> stopWork);
    // Stops it, and tells if that took too long: now no live display is torn by it.
    ~RunningWork();

    // Waits until it has stopped, but for a few seconds only: then it is left behind. `onWait` is
    // called a few times a second. What goes wrong costs nothing that was found so far.
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
