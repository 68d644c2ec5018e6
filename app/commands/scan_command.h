// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "app/commands/command.h"

namespace App {

// Looks for printers through every vendor's module and shows them as they are found.
Command ScanCommand();

}  // namespace App
