// SPDX-License-Identifier: Apache-2.0

#include <aclapi.h>
#include <gtest/gtest.h>

#include <cstring>

#include "tests/host/host_support.h"

namespace HostTest {

namespace {

std::wstring Wide(const std::string& utf8) {
    return fs::path(std::u8string(utf8.begin(), utf8.end())).wstring();
}

}  // namespace

fs::path ProgramFolder() {
    wchar_t path[4096];
    GetModuleFileNameW(nullptr, path, 4096);
    return fs::path(path).parent_path();
}

std::string ProgramFileName(const std::string& name) {
    return name + ".exe";
}

std::string ModuleSuffix() {
    return ".dll";
}

void SetVariable(const std::string& name, const fs::path& value) {
    SetEnvironmentVariableW(Wide(name).c_str(), value.c_str());
}

void ClearVariable(const std::string& name) {
    SetEnvironmentVariableW(Wide(name).c_str(), nullptr);
}

void SetUserFolders(const fs::path& state, const fs::path& configuration) {
    SetVariable("LOCALAPPDATA", state);
    SetVariable("APPDATA", configuration);
}

void LetAnyoneWrite(const fs::path& path) {
    PACL list = nullptr;
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    std::wstring name = path.wstring();
    GetNamedSecurityInfoW(name.data(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr,
                          &list, nullptr, &descriptor);
    wchar_t everyone[] = L"Everyone";
    EXPLICIT_ACCESSW access{};
    access.grfAccessPermissions = GENERIC_READ | GENERIC_WRITE | GENERIC_EXECUTE;
    access.grfAccessMode = GRANT_ACCESS;
    access.grfInheritance = NO_INHERITANCE;
    access.Trustee.TrusteeForm = TRUSTEE_IS_NAME;
    access.Trustee.ptstrName = everyone;
    PACL widened = nullptr;
    SetEntriesInAclW(1, &access, list, &widened);
    SetNamedSecurityInfoW(name.data(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr,
                          widened, nullptr);
    LocalFree(widened);
    LocalFree(descriptor);
}

// Nobody else may open it.
Unreadable::Unreadable(const fs::path& file)
    : handle(CreateFileW(file.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING,
                         FILE_ATTRIBUTE_NORMAL, nullptr)) {
    EXPECT_NE(handle, INVALID_HANDLE_VALUE);
}

Unreadable::~Unreadable() {
    CloseHandle(handle);
}

std::string WhyUnreadable() {
    return "(error 32)";
}

std::string LibraryOfAnotherArchitecture() {
    struct {
        IMAGE_DOS_HEADER dos;
        IMAGE_NT_HEADERS32 image;
    } file{};
    file.dos.e_magic = IMAGE_DOS_SIGNATURE;
    file.dos.e_lfanew = sizeof file.dos;
    file.image.Signature = IMAGE_NT_SIGNATURE;
    file.image.FileHeader.Machine = IMAGE_FILE_MACHINE_I386;
    file.image.FileHeader.SizeOfOptionalHeader = sizeof file.image.OptionalHeader;
    file.image.FileHeader.Characteristics = IMAGE_FILE_DLL | IMAGE_FILE_EXECUTABLE_IMAGE;
    file.image.OptionalHeader.Magic = IMAGE_NT_OPTIONAL_HDR32_MAGIC;
    file.image.OptionalHeader.SectionAlignment = 4096;
    file.image.OptionalHeader.FileAlignment = 512;
    file.image.OptionalHeader.SizeOfImage = 4096;
    file.image.OptionalHeader.SizeOfHeaders = 512;
    std::string text(4096, '\0');
    std::memcpy(text.data(), &file, sizeof file);
    return text;
}

int Run(const fs::path& program, const std::vector<std::string>& arguments) {
    std::wstring command = L"\"" + program.wstring() + L"\"";
    for (const std::string& argument : arguments) {
        command += L" \"" + Wide(argument) + L"\"";
    }
    STARTUPINFOW start{};
    start.cb = sizeof start;
    PROCESS_INFORMATION process{};
    if (CreateProcessW(program.c_str(), command.data(), nullptr, nullptr, FALSE, 0, nullptr,
                       nullptr, &start, &process) == 0) {
        return -3;
    }
    DWORD status = 0;
    const bool ended = WaitForSingleObject(process.hProcess, 30000) == WAIT_OBJECT_0;
    if (!ended) {
        TerminateProcess(process.hProcess, 1);
    }
    GetExitCodeProcess(process.hProcess, &status);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return ended ? static_cast<int>(status) : -2;
}

}  // namespace HostTest
