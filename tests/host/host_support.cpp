// SPDX-License-Identifier: Apache-2.0

#include "tests/host/host_support.h"

#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <iterator>
#include <random>
#include <sstream>
#include <thread>

namespace HostTest {

TemporaryFolder::TemporaryFolder() {
    std::random_device random;
    const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
    path = fs::canonical(testing::TempDir()) /
           ("host_test_" + std::to_string(now) + "_" + std::to_string(random()));
    fs::create_directories(path);
}

TemporaryFolder::~TemporaryFolder() {
    LogHelper::Settings settings;
    settings.file = false;
    LogHelper::Configure(settings);
    std::error_code failure;
    fs::remove_all(path, failure);
}

User::User() {
    SetUserFolders(folder.Path() / "state", folder.Path() / "config");
    ClearVariable("DEVICEDISCOVER_VENDORS");
}

std::string Read(const fs::path& file) {
    std::ifstream input(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(input), std::istreambuf_iterator<char>()};
}

std::vector<std::string> Lines(const fs::path& file) {
    std::istringstream text(Read(file));
    std::vector<std::string> lines;
    for (std::string line; std::getline(text, line);) {
        if (line.ends_with('\r')) {
            line.pop_back();
        }
        lines.push_back(line);
    }
    return lines;
}

void Write(const fs::path& file, const std::string& text) {
    fs::create_directories(file.parent_path());
    std::ofstream output(file, std::ios::binary);
    output << text;
    ASSERT_TRUE(output.flush()) << file;
}

std::string Utf8(const fs::path& path) {
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

fs::path ForeignName() {
    return std::u8string(u8"\u00E9\u20AC\u0416");
}

void LogOnly(LOG_MESSAGE_LEVEL level, const std::wstring& text) {
    std::wstringstream line;
    line << text;
    KzLogger::GetInstance().Log(level, line);
}

void Log(LOG_MESSAGE_LEVEL level, const std::wstring& text) {
    LogOnly(level, text);
    LogHelper::Flush();
}

bool Becomes(const std::function<bool()>& so) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!so()) {
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

fs::path BuiltModule(const std::string& name) {
    return ProgramFolder() / "modules" / ModuleFileName(name);
}

std::string ModuleFileName(const std::string& name) {
    return name + ModuleSuffix();
}

void ShipModule(const std::string& name, const fs::path& folder) {
    fs::create_directories(folder);
    const fs::path built = BuiltModule(name);
    const fs::path source =
        fs::exists(built) ? built : built.parent_path() / ("lib" + ModuleFileName(name));
    fs::copy_file(source, folder / source.filename());
}

int Call(HINSTANCE module, const char* name) {
    const auto function = reinterpret_cast<void*>(GetProcAddress(module, name));
    return function == nullptr ? -1 : reinterpret_cast<int (*)()>(function)();
}

void ShipLibraries(const fs::path& folder) {
    fs::create_directories(folder);
    const fs::path built = ProgramFolder() / ".." / ".." / "bin";
    for (const char* name : {PRINTERUTIL_FILE, LOGHELPER_FILE}) {
        fs::copy_file(built / name, folder / name);
    }
}

}  // namespace HostTest
