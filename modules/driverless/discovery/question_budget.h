#pragma once

// How many questions all scans of a process have under way at once. Each takes a thread and a
// descriptor, and the process needs descriptors for other things, too.

#include <cstddef>
#include <mutex>

namespace Driverless {

// The descriptors that this process may still open.
std::size_t FreeDescriptors();

class QuestionBudget {
public:
    // For the whole process: half of the free descriptors, counted when a scan begins and no
    // question is under way. Never destroyed.
    static QuestionBudget& OfProcess();

    // Shared evenly among those who take part.
    void Join();
    void Leave();

    // Whether one more question may begin. Each who takes part may always have one.
    bool Take(bool isOnlyOne);
    void Give();

    // How many questions one who takes part and has `own` under way may have.
    std::size_t RoomFor(std::size_t own);

private:
    std::mutex mutex;
    std::size_t total = 0;
    std::size_t used = 0;
    std::size_t parts = 0;
};

}  // namespace Driverless
