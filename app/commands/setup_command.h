// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "app/commands/command.h"

namespace App {

// Puts a new printer on a network and finds it there. After a set-up through the printer's access
// point, the host joins the network, too.
Command SetupCommand();

}  // namespace App
