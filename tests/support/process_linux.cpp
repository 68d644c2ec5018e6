// SPDX-License-Identifier: Apache-2.0

#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <thread>

#include "tests/support/process.h"
#include "tests/support/process_system.h"

namespace Process {

unsigned long OwnId() {
    return static_cast<unsigned long>(getpid());
}

std::string OwnFile() {
    return std::filesystem::read_symlink("/proc/self/exe").string();
}

void SetEnvironment(const std::string& name, const std::string& value) {
    setenv(name.c_str(), value.c_str(), 1);
}

bool MayHangAtItsEnd() {
    return false;
}

namespace {

// Waits for the child, and ends it when the time is over.
int StatusOf(pid_t child, int seconds) {
    const auto giveUp = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
    int status = 0;
    for (;;) {
        const pid_t ended = waitpid(child, &status, WNOHANG);
        if (ended != 0) {
            return WIFEXITED(status) ? WEXITSTATUS(status) : 256 + WTERMSIG(status);
        }
        if (std::chrono::steady_clock::now() > giveUp) {
            kill(child, SIGKILL);
            waitpid(child, &status, 0);
            return kHung;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
}

}  // namespace

int Run(const std::string& program, const std::vector<std::string>& arguments, int seconds) {
    std::vector<std::string> words = {OwnFolder() + program};
    words.insert(words.end(), arguments.begin(), arguments.end());
    return RunCommand(words, seconds);
}

int RunCommand(const std::vector<std::string>& words, int seconds) {
    std::vector<char*> pointers;
    for (const std::string& word : words) {
        pointers.push_back(const_cast<char*>(word.c_str()));
    }
    pointers.push_back(nullptr);
    pid_t child = 0;
    if (posix_spawnp(&child, pointers[0], nullptr, nullptr, pointers.data(), environ) != 0) {
        return kNotStarted;
    }
    return StatusOf(child, seconds);
}

}  // namespace Process
