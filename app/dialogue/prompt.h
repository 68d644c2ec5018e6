// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <optional>
#include <string>

#include "base/secret.h"

namespace App {

// Why the user cannot be asked on a terminal; empty when that is possible.
std::string ObstacleToAsking();

// Writes part of a question: to standard output, but to standard error if standard output carries
// results for a program or is not a terminal.
void WritePrompt(const std::string& text);

// Ask the user on the terminal; nothing at the end of the input. Throw Interrupted.
std::optional<std::string> AskLine(const std::string& question);

// Does not show the typed text.
std::shared_ptr<Base::Secret> AskSecret(const std::string& question);

}  // namespace App
