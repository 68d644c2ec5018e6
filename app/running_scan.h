#pragma once

#include <functional>
#include <string>

namespace App {

// A scan that vendors run, and how it ends.
class RunningScan {
public:
    // `who` runs it: "a vendor".
    RunningScan(std::string who, std::function<int()> stopScan);
    // Stops it, and tells if that took too long: now no live display is torn by it.
    ~RunningScan();

    // Waits for the vendors; after a request to end the program only for a moment, since mostly it
    // is that request which stops a scan: then they are left behind.
    void Stop();

    RunningScan(const RunningScan&) = delete;
    RunningScan& operator=(const RunningScan&) = delete;

private:
    const std::string owner;
    const std::function<int()> stop;
    bool running = true;
    bool isLate = false;
};

}  // namespace App
