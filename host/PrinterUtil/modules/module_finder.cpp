// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterUtil/modules/module_finder.h"

#include <algorithm>
#include <filesystem>

#include "host/PrinterUtil/modules/loading_note.h"
#include "host/PrinterUtil/modules/module_loader.h"
#include "host/common/paths.h"

namespace PrinterUtil {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kLongestName = 255;

bool IsControl(char character) {
    const auto byte = static_cast<unsigned char>(character);
    return byte < 0x20 || byte == 0x7F;
}

bool LeadsElsewhere(char character) {
    return IsControl(character) || character == '/' || character == '\\' || character == ':';
}

// Whether the name cannot lead out of the folder on any system.
bool IsPlainName(const std::string& name) {
    return !name.empty() && name.size() <= kLongestName && name.find("..") == std::string::npos &&
           std::none_of(name.begin(), name.end(), LeadsElsewhere);
}

// The name in quotation marks, without characters that control a terminal.
std::string Quoted(const std::string& name) {
    std::string quoted = "\"";
    for (const char character : name.substr(0, kLongestName)) {
        quoted += IsControl(character) ? '?' : character;
    }
    return quoted + "\"";
}

fs::path ModuleFile(const fs::path& folder, const std::string& name) {
    const bool hasSuffix = name.ends_with(kModuleSuffix);
    return folder / Host::PathFromUtf8(hasSuffix ? name : name + std::string(kModuleSuffix));
}

std::string Load(const fs::path& folder, const fs::path& file, HINSTANCE& module) {
    if (!folder.is_absolute()) {
        return "its folder has no absolute path";
    }
    std::error_code failure;
    if (fs::status(folder, failure).type() == fs::file_type::not_found) {
        return "there is no folder " + Host::PathToUtf8(folder);
    }
    const TrustedFile trusted = TrustedFile::Open(file);
    std::string problem = trusted.Problem();
    if (problem.empty()) {
        const LoadingNote note(Host::PathToUtf8(file));
        module = LoadModule(trusted, problem);
    }
    return problem;
}

}  // namespace

ModuleReport OpenModule(const std::string& folder, const std::string& name) {
    ModuleReport report;
    if (!IsPlainName(name)) {
        report.problem = "module " + Quoted(name) + ": not a plain name";
        return report;
    }
    const fs::path folderPath = Host::PathFromUtf8(folder);
    const fs::path file = ModuleFile(folderPath, name);
    report.path = Host::PathToUtf8(file);
    const std::string problem = Load(folderPath, file, report.module);
    if (!problem.empty()) {
        report.problem = "module " + report.path + ": " + problem;
    }
    return report;
}

}  // namespace PrinterUtil
