// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "app/commands/command.h"

namespace App {

// The commands for printers on USB.
Command UsbCommand();

}  // namespace App
