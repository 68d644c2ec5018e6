// SPDX-License-Identifier: Apache-2.0

#include "modules/driverless/discovery/question_budget.h"

#include <sys/resource.h>

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "modules/driverless/discovery/printer_table.h"

namespace Driverless {

namespace {

// Used even if fewer descriptors are free: a scan without queries is useless.
constexpr std::size_t kMinQuestions = 8;

}  // namespace

std::size_t FreeDescriptors() {
    rlimit limit{};
    std::error_code failure;
    std::filesystem::directory_iterator open("/proc/self/fd", failure);
    if (failure || getrlimit(RLIMIT_NOFILE, &limit) != 0) {
        return 0;
    }
    // The listing itself uses one of the listed descriptors.
    rlim_t used = 0;
    for (; !failure && open != std::filesystem::directory_iterator(); open.increment(failure)) {
        ++used;
    }
    return limit.rlim_cur - std::min(limit.rlim_cur, used - 1);
}

QuestionBudget& QuestionBudget::OfProcess() {
    static QuestionBudget& budget = *new QuestionBudget;
    return budget;
}

void QuestionBudget::Join() {
    const std::size_t half = FreeDescriptors() / 2;
    const std::lock_guard lock(mutex);
    if (used == 0) {
        total = std::clamp(half, kMinQuestions, kMaxQuestions);
    }
    ++parts;
}

void QuestionBudget::Leave() {
    const std::lock_guard lock(mutex);
    --parts;
}

bool QuestionBudget::Take(bool isOnlyOne) {
    const std::lock_guard lock(mutex);
    if (used >= total && !isOnlyOne) {
        return false;
    }
    ++used;
    return true;
}

void QuestionBudget::Give() {
    const std::lock_guard lock(mutex);
    --used;
}

std::size_t QuestionBudget::RoomFor(std::size_t own) {
    const std::lock_guard lock(mutex);
    const std::size_t free = total - std::min(used, total);
    const std::size_t share = total / std::max<std::size_t>(parts, 1);
    return std::max<std::size_t>(std::min(own + free, share), 1);
}

}  // namespace Driverless
