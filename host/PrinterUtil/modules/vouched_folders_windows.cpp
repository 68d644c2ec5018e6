// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterUtil/modules/vouched_folders_windows.h"

#include "platform/os.h"

namespace PrinterUtil {

namespace {

bool IsSame(std::wstring one, std::wstring other) {
    for (std::wstring* folder : {&one, &other}) {
        folder->erase(folder->find_last_not_of(L'\\') + 1);
    }
    return CompareStringOrdinal(one.c_str(), -1, other.c_str(), -1, TRUE) == CSTR_EQUAL;
}

// Terminated texts, one after the other. Only administrators can write there.
std::wstring VouchedFolders() {
    std::wstring folders(std::size_t{16} * 1024, L'\0');
    auto size = static_cast<DWORD>(folders.size() * sizeof(wchar_t));
    const bool isThere =
        RegGetValueW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\DeviceDiscover", L"TrustedFolders",
                     RRF_RT_REG_MULTI_SZ, nullptr, folders.data(), &size) == ERROR_SUCCESS;
    folders.resize(isThere ? size / sizeof(wchar_t) : 0);
    return folders;
}

}  // namespace

bool IsVouchedFor(const std::wstring& folder) {
    const std::wstring folders = VouchedFolders();
    std::size_t start = 0;
    while (start < folders.size() && folders[start] != L'\0') {
        const std::wstring one = folders.c_str() + start;
        if (IsSame(one, folder)) {
            return true;
        }
        start += one.size() + 1;
    }
    return false;
}

}  // namespace PrinterUtil
