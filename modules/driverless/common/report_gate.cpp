// SPDX-License-Identifier: Apache-2.0

#include "modules/driverless/common/report_gate.h"

namespace Driverless {

bool ReportGate::Enter() {
    const std::lock_guard lock(mutex);
    reporting = !closed;
    reporter = std::this_thread::get_id();
    return reporting;
}

void ReportGate::Leave() {
    const std::lock_guard lock(mutex);
    reporting = false;
    changed.notify_all();
}

bool ReportGate::Close(std::chrono::milliseconds patience) {
    std::unique_lock lock(mutex);
    closed = true;
    const auto silent = [this] { return !reporting || reporter == std::this_thread::get_id(); };
    return changed.wait_for(lock, patience, silent);
}

}  // namespace Driverless
