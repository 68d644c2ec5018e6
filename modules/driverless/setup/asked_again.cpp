// SPDX-License-Identifier: Apache-2.0

#include "modules/driverless/setup/asked_again.h"

#include <algorithm>

namespace Driverless {

AskedAgain AskedAgain::Once(Time start, Duration patience) {
    AskedAgain asked(start, start + patience, patience);
    asked.isOnce = true;
    return asked;
}

AskedAgain AskedAgain::Until(Time deadline, Time start, Duration patience) {
    return {start, deadline, patience};
}

std::optional<AskedAgain::Time> AskedAgain::Next(Time now) {
    if (IsOver(now)) {
        return std::nullopt;
    }
    isOver = isOnce;
    const Time end = now + std::max(patience, now - start);
    // The remaining time would be too short for another answer.
    return deadline - end < patience ? deadline : end;
}

void AskedAgain::Refused() {
    deadline = std::min(deadline, start + patience);
}

}  // namespace Driverless
