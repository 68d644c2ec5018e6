// SPDX-License-Identifier: Apache-2.0

#include "app/dialogue/pass_phrase.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <system_error>

#include "DeviceDiscover/DeviceDiscover.h"
#include "app/dialogue/prompt.h"
#include "app/outcome/problem.h"
#include "app/running/awaiting.h"
#include "app/terminal/interrupt.h"
#include "app/terminal/terminal_input.h"
#include "base/text/display_text.h"
#include "base/text/utf8.h"

namespace App {

namespace {

using Line = std::shared_ptr<Base::Secret>;

constexpr const char* kStandardInput = "-";
constexpr const char* kAdvice =
    "\nGive it with --pass-phrase-file FILE, or --pass-phrase-file - from standard input; --open "
    "is for\na network without one.";
// Longer than any pass phrase, but a wrong file may be longer.
constexpr std::size_t kLongestLine = 4096;

// Does not repeat the name of a missing file: it may be the pass phrase itself.
[[noreturn]] void ThrowCannotRead(const std::string& name, const std::filesystem::path& path,
                                  int error) {
    std::error_code unknown;
    const bool exists = std::filesystem::exists(path, unknown);
    throw Problem("cannot read the pass phrase from " +
                  (exists ? name : "the file that --pass-phrase-file names") +
                  (error == 0 ? "" : std::string(": ") + std::strerror(error)) +
                  "\nName a file with the pass phrase as its one line.");
}

// Reads the file's only line. Its line end may be missing.
Line ReadFile(const std::string& name) {
    std::filebuf file;
    file.pubsetbuf(nullptr, 0);  // no buffer, which would keep a copy
    const std::filesystem::path path(std::u8string(name.begin(), name.end()));
    std::error_code unknown;
    errno = 0;
    if (std::filesystem::is_directory(path, unknown) ||
        file.open(path, std::ios::in | std::ios::binary) == nullptr) {
        ThrowCannotRead(name, path, errno);
    }
    auto line = std::make_shared<Base::Secret>();
    for (auto next = file.sbumpc(); next != std::filebuf::traits_type::eof();
         next = file.sbumpc()) {
        if (line->View().size() == kLongestLine) {
            throw WrongInput("the file " + name + " is too long for a pass phrase" + kAdvice);
        }
        line->Append(std::filebuf::traits_type::to_char_type(next));
    }
    for (const char end : {'\n', '\r'}) {
        if (!line->View().empty() && line->View().back() == end) {
            line->RemoveLast();
        }
    }
    return line;
}

Line ReadStandardInput() {
    auto line = std::make_shared<Base::Secret>();
    ReadInputLine(*line);
    return line;
}

Line Read(const PassPhraseOptions& options) {
    const std::string name = options.file;
    const std::function<Line()> work = [name] {
        LeaveInterruptsToOthers();
        return name == kStandardInput ? ReadStandardInput() : ReadFile(name);
    };
    Line line = AwaitInterruptibly(work, [] {});
    if (line->View().empty()) {
        throw WrongInput(
            (name == kStandardInput ? "standard input" : "the file " + name) +
            std::string(" contains no pass phrase\n--open is for a network without one."));
    }
    return line;
}

Line Ask(const std::string& network) {
    Line line = AskSecret("Pass phrase of " + Base::DisplayText(network) +
                          " (empty for an open network): ");
    if (line == nullptr) {
        throw WrongInput(std::string("no pass phrase was given") + kAdvice);
    }
    return line;
}

void RequireText(const Base::Secret& passPhrase) {
    if (passPhrase.View().find('\n') != std::string_view::npos) {
        throw WrongInput("the pass phrase has more than one line");
    }
    if (passPhrase.View().find('\0') != std::string_view::npos ||
        !Base::IsUtf8(passPhrase.View())) {
        throw WrongInput("the pass phrase is not UTF-8 text");
    }
}

}  // namespace

const std::size_t kLongestPrinterPassPhrase =
    sizeof PrinterDeviceDiscoverSdk::WifiConfigInfo::pwd - 1;

void PassPhraseOptions::Require() const {
    const std::string obstacle = open || !file.empty() ? "" : ObstacleToAsking();
    if (!obstacle.empty()) {
        throw WrongInput("cannot ask for the pass phrase: " + obstacle + kAdvice);
    }
}

std::shared_ptr<Base::Secret> GetPassPhrase(const PassPhraseOptions& options,
                                            const std::string& network) {
    if (options.open) {
        return std::make_shared<Base::Secret>();
    }
    // Hide typed text, whether or not the prompt can be seen.
    const bool ask = options.file.empty() || (options.file == kStandardInput && InputIsTerminal());
    Line line = ask ? Ask(network) : Read(options);
    RequireText(*line);
    return line;
}

void RequirePrinterPassPhrase(const Base::Secret& passPhrase) {
    const std::size_t size = passPhrase.View().size();
    if (size > kLongestPrinterPassPhrase) {
        throw WrongInput(fmt::format("the pass phrase has {} bytes; a printer can be given {}",
                                     size, kLongestPrinterPassPhrase));
    }
}

}  // namespace App
