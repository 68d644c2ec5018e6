// SPDX-License-Identifier: Apache-2.0

#include "app/library/host_function.h"

#include <string>

#include "platform/os.h"

namespace App {

void* HostFunction(const char* library, const char* name) {
    const HMODULE module = GetModuleHandleA((std::string(library) + ".dll").c_str());
    return module == nullptr ? nullptr : reinterpret_cast<void*>(GetProcAddress(module, name));
}

}  // namespace App
