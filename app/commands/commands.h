// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "app/commands/command.h"
#include "app/program/settings.h"

namespace App {

// The whole program as data. Parsing stores the common options in `settings`, which must outlive
// the commands.
Command ProgramCommand(Settings& settings);

}  // namespace App
