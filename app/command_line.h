// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <vector>

#include "app/outcome/exit_status.h"

namespace App {

// Parses the arguments and runs the command that they name. Explains wrong arguments on standard
// error. Throws what ends the command, an Ending, except WrongInput.
ExitStatus RunCommandLine(std::vector<std::string> arguments);

}  // namespace App
