// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "host/LogHelper/log_settings.h"
#include "platform/os_calls.h"

namespace HostTest {

namespace fs = std::filesystem;

// A new folder, removed with all that is in it.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const fs::path& Path() const { return path; }

private:
    fs::path path;
};

// A user of the test's own: new, empty folders for state and configuration, no vendor list named.
class User {
public:
    User();
    fs::path LogFile() const { return StateFolder() / "DeviceDiscover.log"; }
    fs::path StateFolder() const { return folder.Path() / "state" / "DeviceDiscover"; }
    fs::path ConfigurationFolder() const { return folder.Path() / "config" / "DeviceDiscover"; }
    const fs::path& Folder() const { return folder.Path(); }

private:
    TemporaryFolder folder;
};

std::string Read(const fs::path& file);
std::vector<std::string> Lines(const fs::path& file);
// Makes the folders on the way, too.
void Write(const fs::path& file, const std::string& text);
std::string Utf8(const fs::path& path);

// A name for a file that no code page has.
fs::path ForeignName();

// Logs through the logger, as the broker does; Log returns when the line is in the file.
void LogOnly(LOG_MESSAGE_LEVEL level, const std::wstring& text);
void Log(LOG_MESSAGE_LEVEL level, const std::wstring& text);

// Waits until it is so; false when it does not become so.
bool Becomes(const std::function<bool()>& so);

// The file of a module that was built for the tests, and the file name of any module.
fs::path BuiltModule(const std::string& name);
std::string ModuleFileName(const std::string& name);

// Copies a module that was built for the tests into `folder`.
void ShipModule(const std::string& name, const fs::path& folder);

// Calls the entry point of a module that takes nothing; -1 when there is none.
int Call(HINSTANCE module, const char* name);

// Copies the libraries under test into `folder`.
void ShipLibraries(const fs::path& folder);

// The system's side.
fs::path ProgramFolder();
std::string ProgramFileName(const std::string& name);
std::string ModuleSuffix();
void SetVariable(const std::string& name, const fs::path& value);
void ClearVariable(const std::string& name);
void SetUserFolders(const fs::path& state, const fs::path& configuration);
void LetAnyoneWrite(const fs::path& path);
// While it lives, this process cannot read the file.
class Unreadable {
public:
    explicit Unreadable(const fs::path& file);
    ~Unreadable();
    Unreadable(const Unreadable&) = delete;
    Unreadable& operator=(const Unreadable&) = delete;

private:
    [[maybe_unused]] void* handle = nullptr;
};
// How the system's reason ends.
std::string WhyUnreadable();
// A file that the system takes for a library of another processor.
std::string LibraryOfAnotherArchitecture();
// Runs the program and returns its exit status; -1 when it crashed, -2 when it did not end.
int Run(const fs::path& program, const std::vector<std::string>& arguments);

}  // namespace HostTest
