#pragma once

// How long the printer in the host's network is asked for. Right after the host has joined, the way
// to the printer may not be open yet: then it is asked again and again. Knows no network and no
// clock: it is told what happened and when.

#include <string>

#include "modules/driverless/setup/asked_again.h"

namespace Driverless {

class FirstQuestions {
public:
    using Time = AskedAgain::Time;
    using Duration = AskedAgain::Duration;

    // How long one question waits for its answer.
    explicit FirstQuestions(Duration answerPatience) : patience(answerPatience) {}

    // The questions to the printer in `network`, which the host is in; until one has answered
    // there, they go on for `first` after the host was seen there first.
    AskedAgain Begin(const std::string& network, Duration first, Time now);

    // The printer in that network has answered.
    void Answered(const std::string& network);

private:
    const Duration patience;
    std::string current;
    Time since{};
    bool hasAnswered = false;
};

}  // namespace Driverless
