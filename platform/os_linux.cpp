// SPDX-License-Identifier: Apache-2.0

#include <dlfcn.h>
#include <link.h>

#include <chrono>
#include <thread>

#include "platform/os_calls.h"

namespace {

// dlsym also searches the module's dependencies, so check which module contains the symbol. The
// time of this check does not grow with the number of loaded modules.
bool LivesIn(HINSTANCE module, void* symbol) {
    link_map* own = nullptr;
    dl_find_object holder{};
    return dlinfo(module, RTLD_DI_LINKMAP, &own) == 0 && _dl_find_object(symbol, &holder) == 0 &&
           own == holder.dlfo_link_map;
}

}  // namespace

FARPROC GetProcAddress(HINSTANCE module, const char* name) {
    if (module == nullptr || name == nullptr) {
        return nullptr;
    }
    void* symbol = dlsym(module, name);
    if (symbol == nullptr || !LivesIn(module, symbol)) {
        return nullptr;
    }
    return reinterpret_cast<FARPROC>(symbol);
}

int FreeLibrary(HINSTANCE module) {
    return module != nullptr && dlclose(module) == 0 ? 1 : 0;
}

bool KeepLoaded(const void* address) {
    Dl_info info{};
    void* found = nullptr;
    if (dladdr1(address, &info, &found, RTLD_DL_LINKMAP) == 0) {
        return false;
    }
    // The program itself has an empty name and always stays loaded.
    const char* const name = static_cast<const link_map*>(found)->l_name;
    void* const library = dlopen(name[0] == '\0' ? nullptr : name,
                                 RTLD_NOW | RTLD_LOCAL | RTLD_NOLOAD | RTLD_NODELETE);
    const bool isThisLibrary = library == found || name[0] == '\0';
    if (library != nullptr) {
        dlclose(library);
    }
    return library != nullptr && isThisLibrary;
}

void Sleep(std::uint32_t milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}
