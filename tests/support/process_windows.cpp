// SPDX-License-Identifier: Apache-2.0

#include <cstdlib>

#include "platform/os.h"
#include "tests/support/process.h"
#include "tests/support/process_system.h"

namespace Process {

unsigned long OwnId() {
    return GetCurrentProcessId();
}

std::string OwnFile() {
    char path[MAX_PATH] = {};
    GetModuleFileNameA(nullptr, path, MAX_PATH);
    return path;
}

void SetEnvironment(const std::string& name, const std::string& value) {
    // Both the run-time library's copy, which programs read, and the system's, which children get.
    _putenv((name + '=' + value).c_str());
}

bool MayHangAtItsEnd() {
    return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
}

int Run(const std::string& program, const std::vector<std::string>& arguments, int seconds) {
    std::vector<std::string> words = {OwnFolder() + program + ".exe"};
    words.insert(words.end(), arguments.begin(), arguments.end());
    return RunCommand(words, seconds);
}

int RunCommand(const std::vector<std::string>& words, int seconds) {
    std::string line;
    for (const std::string& word : words) {
        line += (line.empty() ? "\"" : " \"") + word + '"';
    }
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    if (CreateProcessA(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup,
                       &process) == 0) {
        return kNotStarted;
    }
    const DWORD patience = static_cast<DWORD>(seconds) * 1000;
    const bool hung = WaitForSingleObject(process.hProcess, patience) == WAIT_TIMEOUT;
    if (hung) {
        TerminateProcess(process.hProcess, 1);
        WaitForSingleObject(process.hProcess, INFINITE);
    }
    DWORD status = 0;
    GetExitCodeProcess(process.hProcess, &status);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return hung ? kHung : static_cast<int>(status);
}

}  // namespace Process
