#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

#include "tests/support/process.h"
#include "tests/support/process_system.h"

namespace Process {

unsigned long OwnId() {
    return static_cast<unsigned long>(getpid());
}

std::string OwnFolder() {
    return std::filesystem::read_symlink("/proc/self/exe").parent_path().string() + '/';
}

void SetEnvironment(const std::string& name, const std::string& value) {
    setenv(name.c_str(), value.c_str(), 1);
}

int Run(const std::string& program, const std::vector<std::string>& arguments) {
    std::vector<std::string> words = {OwnFolder() + program};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> pointers;
    for (std::string& word : words) {
        pointers.push_back(word.data());
    }
    pointers.push_back(nullptr);
    pid_t child = 0;
    int status = 0;
    if (posix_spawn(&child, pointers[0], nullptr, nullptr, pointers.data(), environ) != 0 ||
        waitpid(child, &status, 0) != child) {
        return -1;
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 256 + WTERMSIG(status);
}

}  // namespace Process
