#pragma once

#include <string>

namespace App {

// Makes the log file, readable by the user alone, or finds that it can be written. Never waits for
// whatever the name stands for. Returns why it cannot be written; nothing when it can.
std::string PrepareLogFile(const std::string& file);

}  // namespace App
