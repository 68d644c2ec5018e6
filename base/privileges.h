// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "base/environment.h"

namespace Base {

// Whether this process has more rights than the user who started it: on Linux a set-user-ID,
// set-group-ID or file-capability program, or a program whose effective user differs from its real
// user; on Windows an elevated program, unless an administrator has allowed elevated programs to
// use the environment, by the number 1 as `ElevatedEnvironment` in
// HKEY_LOCAL_MACHINE\SOFTWARE\DeviceDiscover.
bool HasMoreRightsThanItsUser();

// The value of an environment variable without any check; empty when it is not set.
NativeText RawEnvironment(const char* name);

}  // namespace Base
