// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

#include "app/outcome/exit_status.h"
#include "app/program/settings.h"

namespace App {

// Tells whether a host answers at the address; kNoneFound when none does. Throws Problem when no
// request could be sent.
ExitStatus Ping(const Settings& settings, const std::string& address);

}  // namespace App
