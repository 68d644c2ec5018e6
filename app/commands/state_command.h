// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "app/commands/command.h"

namespace App {

// Looks for one printer and asks its vendor whether the printer accepts jobs.
Command StateCommand();

}  // namespace App
