#pragma once

#include <string>
#include <vector>

#include "app/outcome/exit_status.h"

namespace App {

// Reads the arguments and runs the command that they name. Wrong arguments are explained on
// standard error.
ExitStatus RunCommandLine(std::vector<std::string> arguments);

}  // namespace App
