#pragma once

#include <memory>
#include <optional>
#include <string>

#include "app/secret.h"
#include "app/settings.h"

namespace App {

// Whether the user can be asked: standard input is a terminal.
bool CanAsk();

// Ask the user on the terminal; nothing when there is no more input. Throw Interrupted.
std::optional<std::string> AskLine(const Settings& settings, const std::string& question);

// What is typed does not show.
std::shared_ptr<Secret> AskSecret(const Settings& settings, const std::string& question);

}  // namespace App
