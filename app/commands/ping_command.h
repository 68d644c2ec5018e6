#pragma once

#include <string>

#include "app/outcome/exit_status.h"
#include "app/program/settings.h"

namespace App {

// Whether something answers at the address; kNoneFound when nothing does. Throws Problem when
// nobody could be asked.
ExitStatus Ping(const Settings& settings, const std::string& address);

}  // namespace App
