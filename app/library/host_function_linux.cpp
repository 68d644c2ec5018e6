// SPDX-License-Identifier: Apache-2.0

#include "app/library/host_function.h"

#include <dlfcn.h>

namespace App {

// The libraries are loaded with the program, and all their function names differ.
void* HostFunction(const char*, const char* name) {
    return dlsym(RTLD_DEFAULT, name);
}

}  // namespace App
