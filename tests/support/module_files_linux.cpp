// SPDX-License-Identifier: Apache-2.0

#include <dlfcn.h>

#include "tests/support/module_files.h"

namespace ModuleFiles {

namespace {

// The folder beside that of this library.
std::string Path(const std::string& moduleName) {
    Dl_info info{};
    dladdr(reinterpret_cast<const void*>(&Load), &info);
    std::string folder = info.dli_fname;
    folder.erase(folder.rfind('/'));
    return folder + "/../modules/" + moduleName + ".so";
}

}  // namespace

HINSTANCE Load(const std::string& moduleName, bool keepMapped) {
    const int flags = RTLD_NOW | RTLD_LOCAL | (keepMapped ? RTLD_NODELETE : 0);
    return static_cast<HINSTANCE>(dlopen(Path(moduleName).c_str(), flags));
}

int ReleaseAll(const std::string& moduleName) {
    const std::string path = Path(moduleName);
    int references = 0;
    while (void* const module = dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD)) {
        dlclose(module);
        dlclose(module);
        ++references;
    }
    return references;
}

}  // namespace ModuleFiles
