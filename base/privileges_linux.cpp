// SPDX-License-Identifier: Apache-2.0

#include <sys/auxv.h>
#include <unistd.h>

#include <cstdlib>

#include "base/privileges.h"

namespace Base {

bool HasMoreRightsThanItsUser() {
    // The kernel records the rights from the program's file; the program may change its users
    // later.
    return getauxval(AT_SECURE) != 0 || geteuid() != getuid() || getegid() != getgid();
}

NativeText RawEnvironment(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? NativeText() : NativeText(value);
}

}  // namespace Base
