#pragma once

#include <cstddef>
#include <string>

#include "app/output/json_output.h"
#include "app/program/settings.h"

namespace App {

// The steps of the journey, in order.
enum class SetupStep : std::size_t { Printer, Network, PassPhrase, Configure, Rejoin, Find };

// Shows on standard output how the journey gets on. When whoever read it has gone, or nothing can
// be written any more, the journey goes on without.
class SetupProgress {
public:
    explicit SetupProgress(const Settings& appSettings) : settings(appSettings) {}

    void Begin(SetupStep step);
    void Done(const std::string& text, StepEvent event = {});
    void Skipped(const std::string& text);

    // The current step has failed, or was interrupted. Says so on standard error too.
    void Failed(const std::string& state, const std::string& problem, StepEvent event = {});

    SetupStep Current() const { return current; }

private:
    void Report(const std::string& state, const std::string& text, StepEvent event);
    void Write(const std::string& line);

    const Settings& settings;
    SetupStep current = SetupStep::Printer;
    bool outputIsLost = false;
};

}  // namespace App
