// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "app/outcome/exit_status.h"
#include "app/program/settings.h"

namespace App {

// Shows each vendor of the list, its modules and their entry points. kFound when at least one
// module could be loaded, kNoneFound when one exports none of its entry points.
ExitStatus Vendors(const Settings& settings);

}  // namespace App
