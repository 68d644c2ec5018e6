// SPDX-License-Identifier: Apache-2.0

#include <cstring>

#include "platform/os.h"
#include "tests/support/release_watch.h"
#include "tests/support/scripted_vendors.h"

namespace {

HANDLE record = INVALID_HANDLE_VALUE;
int (*question)() = nullptr;

BOOL WINAPI NotedFreeLibrary(HMODULE module) {
    ReleaseWatch::Note(ScriptedVendors::NameOf(module) + ' ' + std::to_string(question()));
    return FreeLibrary(module);
}

// The place where the library's call of FreeLibrary finds the function.
ULONG_PTR* ImportOfFreeLibrary(HMODULE library) {
    auto* const base = reinterpret_cast<unsigned char*>(library);
    const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* const nt = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    const IMAGE_DATA_DIRECTORY& imports =
        nt->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    for (auto* from =
             reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + imports.VirtualAddress);
         from->Name != 0; ++from) {
        auto* name = reinterpret_cast<const IMAGE_THUNK_DATA*>(base + from->OriginalFirstThunk);
        auto* place = reinterpret_cast<IMAGE_THUNK_DATA*>(base + from->FirstThunk);
        for (; name->u1.AddressOfData != 0; ++name, ++place) {
            if (IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal)) {
                continue;
            }
            const auto* const import =
                reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(base + name->u1.AddressOfData);
            if (std::strcmp(reinterpret_cast<const char*>(import->Name), "FreeLibrary") == 0) {
                return reinterpret_cast<ULONG_PTR*>(&place->u1.Function);
            }
        }
    }
    return nullptr;
}

}  // namespace

namespace ReleaseWatch {

void Note(const std::string& line) {
    const std::string whole = line + '\n';
    DWORD written = 0;
    WriteFile(record, whole.data(), static_cast<DWORD>(whole.size()), &written, nullptr);
}

void Start(const std::string& recordPath, int (*ask)()) {
    question = ask;
    record = CreateFileA(recordPath.c_str(), FILE_APPEND_DATA, FILE_SHARE_READ, nullptr,
                         OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    ULONG_PTR* const place = ImportOfFreeLibrary(GetModuleHandleW(L"DeviceDiscover.dll"));
    DWORD before = 0;
    if (place == nullptr || VirtualProtect(place, sizeof *place, PAGE_READWRITE, &before) == 0) {
        ExitProcess(90);
    }
    *place = reinterpret_cast<ULONG_PTR>(&NotedFreeLibrary);
    VirtualProtect(place, sizeof *place, before, &before);
}

}  // namespace ReleaseWatch
