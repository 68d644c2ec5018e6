// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <optional>
#include <string>

#include "app/program/settings.h"
#include "base/secret.h"

namespace App {

// Why the user cannot be asked on a terminal; empty when that is possible.
std::string ObstacleToAsking(const Settings& settings);

// Writes part of a question: to standard output, but to standard error if standard output carries
// results for a program or is not a terminal.
void WritePrompt(const Settings& settings, const std::string& text);

// Ask the user on the terminal; nothing at the end of the input. Throw Interrupted.
std::optional<std::string> AskLine(const Settings& settings, const std::string& question);

// Does not show the typed text.
std::shared_ptr<Base::Secret> AskSecret(const Settings& settings, const std::string& question);

}  // namespace App
