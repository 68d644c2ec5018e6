#pragma once

#include <memory>
#include <optional>
#include <string>

#include "app/program/settings.h"
#include "base/secret.h"

namespace App {

// What keeps the user from being asked on a terminal; nothing when that can be done.
std::string ObstacleToAsking(const Settings& settings);

// Writes what a question needs to where questions go: the terminal at standard output, but standard
// error where results for a program go there, or no terminal is.
void WritePrompt(const Settings& settings, const std::string& text);

// Ask the user on the terminal; nothing when there is no more input. Throw Interrupted.
std::optional<std::string> AskLine(const Settings& settings, const std::string& question);

// What is typed does not show.
std::shared_ptr<Base::Secret> AskSecret(const Settings& settings, const std::string& question);

}  // namespace App
