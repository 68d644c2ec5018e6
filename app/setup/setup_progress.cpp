// SPDX-License-Identifier: Apache-2.0

#include "app/setup/setup_progress.h"

#include <fmt/format.h>

#include <array>
#include <utility>

#include "app/outcome/problem.h"
#include "app/program/messages.h"
#include "app/program/settings.h"
#include "app/terminal/console.h"
#include "base/text/display_text.h"

namespace App {

namespace {

struct StepNames {
    const char* json;
    const char* text;
};

constexpr std::array kSteps{StepNames{"printer", "Which printer"},
                            StepNames{"network", "Which network"},
                            StepNames{"passPhrase", "Its pass phrase"},
                            StepNames{"configure", "Putting the printer on the network"},
                            StepNames{"rejoin", "Joining this computer to the network"},
                            StepNames{"find", "Finding the printer there"}};

const StepNames& NamesOf(SetupStep step) {
    return kSteps[static_cast<std::size_t>(step)];
}

}  // namespace

void SetupProgress::Begin(SetupStep step) {
    current = step;
    Report("started",
           fmt::format("[{}/{}] {}", static_cast<std::size_t>(step) + 1, kSteps.size(),
                       NamesOf(step).text),
           {});
}

void SetupProgress::Done(const std::string& text, StepEvent event) {
    Report("done", "      " + text, std::move(event));
}

void SetupProgress::Skipped(const std::string& text) {
    Report("skipped", "      " + text, {});
}

void SetupProgress::Failed(const std::string& state, const std::string& problem, StepEvent event) {
    event.problem = problem;
    if (WritesJson()) {
        Report(state, "", std::move(event));
    }
    Complain(fmt::format("step {} of {}, {}: {}", static_cast<std::size_t>(current) + 1,
                         kSteps.size(), NamesOf(current).text, problem));
}

void SetupProgress::Report(const std::string& state, const std::string& text, StepEvent event) {
    event.step = NamesOf(current).json;
    event.state = state;
    Write(WritesJson() ? StepJson(event) : Base::DisplayText(text));
}

void SetupProgress::Write(const std::string& line) {
    if (outputIsLost) {
        return;
    }
    try {
        WriteOutput(line + "\n");
    } catch (const OutputClosed&) {
        outputIsLost = true;
    } catch (const Problem& problem) {
        outputIsLost = true;
        Warn(problem.what());
    }
}

}  // namespace App
