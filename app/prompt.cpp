#include "app/prompt.h"

#include "app/cancellation.h"
#include "app/console.h"
#include "app/terminal_input.h"
#include "app/text.h"

namespace App {

namespace {

using Clock = Cancellation::Clock;

// Standard output is kept for results where these are for a program.
void WritePrompt(const Settings& settings, const std::string& text) {
    if (settings.json || !OutputScreen()) {
        WriteError(text);
    } else {
        WriteOutput(text);
    }
}

// Null when there is no more input.
std::shared_ptr<Secret> ReadLineInterruptibly() {
    using Line = std::shared_ptr<Secret>;
    const std::function<Line()> read = [] {
        auto line = std::make_shared<Secret>();
        return ReadInputLine(*line) ? line : nullptr;
    };
    Line line = AwaitInterruptibly(read, [] {});
    if (line == nullptr) {
        // Some systems end the input at Ctrl-C a moment before they tell of it.
        constexpr auto moment = std::chrono::milliseconds(300);
        Cancellation::GetInstance().WaitUntil(Clock::now() + moment, [] { return false; });
    }
    return line;
}

}  // namespace

bool CanAsk() {
    return InputIsTerminal();
}

std::optional<std::string> AskLine(const Settings& settings, const std::string& question) {
    CancelOnInterrupt();
    WritePrompt(settings, question);
    const std::shared_ptr<Secret> line = ReadLineInterruptibly();
    if (line == nullptr) {
        WritePrompt(settings, "\n");
        return std::nullopt;
    }
    return std::string(line->View());
}

std::shared_ptr<Secret> AskSecret(const Settings& settings, const std::string& question) {
    // First of all: nobody else would show typing again.
    CancelOnInterrupt();
    const HiddenTyping hidden;
    WritePrompt(settings, question);
    // The end of the line does not show either.
    try {
        std::shared_ptr<Secret> line = ReadLineInterruptibly();
        WritePrompt(settings, "\n");
        return line;
    } catch (const Interrupted&) {
        WritePrompt(settings, "\n");
        throw;
    }
}

}  // namespace App
