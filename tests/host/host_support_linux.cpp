// SPDX-License-Identifier: Apache-2.0

#include <elf.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <thread>

#include "tests/host/host_support.h"

extern char** environ;

namespace HostTest {

fs::path ProgramFolder() {
    return fs::read_symlink("/proc/self/exe").parent_path();
}

std::string ProgramFileName(const std::string& name) {
    return name;
}

std::string ModuleSuffix() {
    return ".so";
}

void SetVariable(const std::string& name, const fs::path& value) {
    setenv(name.c_str(), value.c_str(), 1);
}

void ClearVariable(const std::string& name) {
    unsetenv(name.c_str());
}

void SetUserFolders(const fs::path& state, const fs::path& configuration) {
    SetVariable("XDG_STATE_HOME", state);
    SetVariable("XDG_CONFIG_HOME", configuration);
}

void LetAnyoneWrite(const fs::path& path) {
    fs::permissions(path, fs::perms::others_write, fs::perm_options::add);
}

// Root may read everything: it steps back for as long.
Unreadable::Unreadable(const fs::path& file) {
    fs::permissions(file, fs::perms::none);
    if (geteuid() == 0) {
        EXPECT_EQ(seteuid(12345), 0);
    }
}

Unreadable::~Unreadable() {
    EXPECT_EQ(seteuid(getuid()), 0);
}

std::string WhyUnreadable() {
    return "Permission denied";
}

std::string LibraryOfAnotherArchitecture() {
    Elf32_Ehdr header{};
    const unsigned char ident[] = {ELFMAG0,    ELFMAG1,     ELFMAG2,   ELFMAG3,
                                   ELFCLASS32, ELFDATA2LSB, EV_CURRENT};
    std::copy(std::begin(ident), std::end(ident), header.e_ident);
    header.e_type = ET_DYN;
    header.e_machine = EM_386;
    header.e_version = EV_CURRENT;
    header.e_ehsize = sizeof header;
    std::string file(reinterpret_cast<const char*>(&header), sizeof header);
    file.resize(4096);
    return file;
}

int Run(const fs::path& program, const std::vector<std::string>& arguments) {
    std::string name = program.string();
    std::vector<std::string> texts = arguments;
    std::vector<char*> pointers{name.data()};
    for (std::string& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    pid_t child = 0;
    if (posix_spawn(&child, name.c_str(), nullptr, nullptr, pointers.data(), environ) != 0) {
        return -3;
    }
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    int status = 0;
    while (waitpid(child, &status, WNOHANG) == 0) {
        if (std::chrono::steady_clock::now() > deadline) {
            kill(child, SIGKILL);
            waitpid(child, &status, 0);
            return -2;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace HostTest
