// SPDX-License-Identifier: Apache-2.0

#include "tests/support/module_files.h"

namespace ModuleFiles {

namespace {

// The folder beside that of this library.
std::wstring Path(const std::string& moduleName) {
    HMODULE library = nullptr;
    GetModuleHandleExW(
        GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
        reinterpret_cast<LPCWSTR>(&Path), &library);
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(library, path, MAX_PATH);
    std::wstring folder = path;
    for (int level = 0; level < 2; ++level) {
        folder.erase(folder.rfind(L'\\'));
    }
    return folder + L"\\modules\\" + std::wstring(moduleName.begin(), moduleName.end()) + L".dll";
}

}  // namespace

HINSTANCE Load(const std::string& moduleName, bool) {
    return LoadLibraryExW(Path(moduleName).c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
}

int ReleaseAll(const std::string& moduleName) {
    const std::wstring path = Path(moduleName);
    int references = 0;
    while (const HMODULE module = GetModuleHandleW(path.c_str())) {
        FreeLibrary(module);
        ++references;
    }
    return references;
}

}  // namespace ModuleFiles
