// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "app/commands/command.h"

namespace App {

// Asks whether a host answers at an address.
Command PingCommand();

}  // namespace App
