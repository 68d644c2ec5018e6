// SPDX-License-Identifier: Apache-2.0

#include "app/dialogue/prompt.h"

#include "app/program/settings.h"
#include "app/running/awaiting.h"
#include "app/running/cancellation.h"
#include "app/terminal/console.h"
#include "app/terminal/interrupt.h"
#include "app/terminal/terminal_input.h"

namespace App {

namespace {

using Clock = Cancellation::Clock;

bool AsksOnOutput() {
    return !WritesJson() && OutputScreen();
}

// Null at the end of the input.
std::shared_ptr<Base::Secret> ReadLineInterruptibly() {
    using Line = std::shared_ptr<Base::Secret>;
    const std::function<Line()> read = [] {
        LeaveInterruptsToOthers();
        auto line = std::make_shared<Base::Secret>();
        return ReadInputLine(*line) ? line : nullptr;
    };
    Line line = AwaitInterruptibly(read, [] {});
    if (line == nullptr) {
        // Some systems end the input at Ctrl-C a moment before they report Ctrl-C.
        constexpr auto moment = std::chrono::milliseconds(300);
        Cancellation::GetInstance().WaitUntil(Clock::now() + moment, [] { return false; });
    }
    return line;
}

}  // namespace

std::string ObstacleToAsking() {
    if (!InputIsTerminal()) {
        return "standard input is not a terminal";
    }
    if (!AsksOnOutput() && !ErrorIsTerminal()) {
        return "standard error, which shows the question, is not a terminal";
    }
    return {};
}

void WritePrompt(const std::string& text) {
    if (AsksOnOutput()) {
        WriteOutput(text);
    } else {
        WriteError(text);
    }
}

std::optional<std::string> AskLine(const std::string& question) {
    CancelOnInterrupt();
    WritePrompt(question);
    const std::shared_ptr<Base::Secret> line = ReadLineInterruptibly();
    if (line == nullptr) {
        WritePrompt("\n");
        return std::nullopt;
    }
    return std::string(line->View());
}

std::shared_ptr<Base::Secret> AskSecret(const std::string& question) {
    // Do this first: no other code would show typed text again.
    CancelOnInterrupt();
    const HiddenTyping hidden;
    WritePrompt(question);
    // The typed end of the line is hidden, too.
    try {
        std::shared_ptr<Base::Secret> line = ReadLineInterruptibly();
        WritePrompt("\n");
        return line;
    } catch (const Interrupted&) {
        WritePrompt("\n");
        throw;
    }
}

}  // namespace App
