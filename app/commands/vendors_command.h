// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "app/commands/command.h"

namespace App {

// Shows each vendor of the list, its modules and their entry points.
Command VendorsCommand();

}  // namespace App
