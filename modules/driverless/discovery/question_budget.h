// SPDX-License-Identifier: Apache-2.0

#pragma once

// Limits the queries that all scans of a process run at once. Each query takes a thread and a
// descriptor, and the process needs descriptors for other purposes, too.

#include <cstddef>
#include <mutex>

namespace Driverless {

// The descriptors that this process may still open.
std::size_t FreeDescriptors();

class QuestionBudget {
public:
    // The budget of the process: half of the free descriptors, counted when a scan begins while no
    // query runs. Never destroyed.
    static QuestionBudget& OfProcess();

    // Join and leave the participants, which share the budget evenly.
    void Join();
    void Leave();

    // Whether one more query may begin. Each participant may always run one.
    bool Take(bool isOnlyOne);
    void Give();

    // How many queries a participant with `own` running queries may run.
    std::size_t RoomFor(std::size_t own);

private:
    std::mutex mutex;
    std::size_t total = 0;
    std::size_t used = 0;
    std::size_t parts = 0;
};

}  // namespace Driverless
