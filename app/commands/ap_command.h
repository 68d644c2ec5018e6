// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "app/commands/command.h"

namespace App {

// The commands for a printer's own access point. All except `check` need the host to be joined to
// one.
Command AccessPointCommand();

}  // namespace App
