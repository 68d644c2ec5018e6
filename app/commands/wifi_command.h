// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "app/commands/command.h"

namespace App {

// The commands for the host's own Wi-Fi.
Command WifiCommand();

}  // namespace App
