// SPDX-License-Identifier: Apache-2.0

#include "modules/driverless/setup/first_questions.h"

#include <algorithm>

namespace Driverless {

AskedAgain FirstQuestions::Begin(const std::string& network, Duration first, Time now) {
    if (network != current) {
        current = network;
        since = now;
        hasAnswered = false;
    }
    return hasAnswered ? AskedAgain::Once(now, patience)
                       : AskedAgain::Until(std::max(now + patience, since + first), now, patience);
}

void FirstQuestions::Answered(const std::string& network) {
    hasAnswered = hasAnswered || network == current;
}

}  // namespace Driverless
