#pragma once

#include "base/environment.h"

namespace Base {

// Whether this process may do what the user who started it may not: on Linux a set-user-ID,
// set-group-ID or file-capability program, or one whose effective user is not its real user; on
// Windows an elevated one, unless an administrator has said that elevated programs may be led by
// the environment: the number 1 as `ElevatedEnvironment` below
// HKEY_LOCAL_MACHINE\SOFTWARE\DeviceDiscover.
bool HasMoreRightsThanItsUser();

// An environment variable as it stands, whoever has set it; empty when it is not set.
NativeText RawEnvironment(const char* name);

}  // namespace Base
