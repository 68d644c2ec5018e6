// SPDX-License-Identifier: Apache-2.0

#pragma once

// Decides how long to query the printer in the host's network. Right after the host has joined the
// printer may not be reachable yet: then the query is repeated. Knows no network and no clock:
// callers report events with their time.

#include <string>

#include "modules/driverless/setup/asked_again.h"

namespace Driverless {

class FirstQuestions {
public:
    using Time = AskedAgain::Time;
    using Duration = AskedAgain::Duration;

    // `answerPatience`: how long one query waits for its answer.
    explicit FirstQuestions(Duration answerPatience) : patience(answerPatience) {}

    // The queries to the printer in `network`, to which the host is joined. Until a printer has
    // answered there, they are repeated for `first` after the host was first seen there.
    AskedAgain Begin(const std::string& network, Duration first, Time now);

    // The printer in `network` has answered.
    void Answered(const std::string& network);

private:
    const Duration patience;
    std::string current;
    Time since{};
    bool hasAnswered = false;
};

}  // namespace Driverless
