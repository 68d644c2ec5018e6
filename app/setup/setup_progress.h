// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>
#include <string>

#include "app/output/json_output.h"

namespace App {

// The steps of a set-up, in order.
enum class SetupStep : std::size_t { Printer, Network, PassPhrase, Configure, Rejoin, Find };

// Shows the progress of a set-up on standard output. If its reader has gone or the output fails,
// the set-up continues without it.
class SetupProgress {
public:
    void Begin(SetupStep step);
    void Done(const std::string& text, StepEvent event = {});
    void Skipped(const std::string& text);

    // Reports, also on standard error, that the current step has failed or was interrupted.
    void Failed(const std::string& state, const std::string& problem, StepEvent event = {});

    SetupStep Current() const { return current; }

private:
    void Report(const std::string& state, const std::string& text, StepEvent event);
    void Write(const std::string& line);

    SetupStep current = SetupStep::Printer;
    bool outputIsLost = false;
};

}  // namespace App
