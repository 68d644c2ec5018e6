#include <dlfcn.h>
#include <link.h>

#include <chrono>
#include <thread>

#include "platform/os.h"

namespace {

// dlsym also searches the module's dependencies; the module that really holds the symbol is asked
// for, in a way that takes no longer when many modules are loaded.
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

void Sleep(std::uint32_t milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}
