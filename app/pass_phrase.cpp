#include "app/pass_phrase.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>

#include "DeviceDiscover/DeviceDiscover.h"
#include "app/cancellation.h"
#include "app/problem.h"
#include "app/prompt.h"
#include "app/terminal_input.h"
#include "app/text.h"

namespace App {

namespace {

using Line = std::shared_ptr<Secret>;

constexpr const char* kStandardInput = "-";
constexpr const char* kAdvice =
    "\nGive it with --pass-phrase-file FILE, or --pass-phrase-file - from standard input; --open "
    "is for\na network without one.";
// No pass phrase is longer; a wrong file may be.
constexpr std::size_t kLongestLine = 4096;

// Reads the file's one line. Its end may be missing.
Line ReadFile(const std::string& name) {
    std::filebuf file;
    file.pubsetbuf(nullptr, 0);  // no buffer that would keep a copy
    const std::filesystem::path path(std::u8string(name.begin(), name.end()));
    errno = 0;
    if (std::filesystem::is_directory(path) ||
        file.open(path, std::ios::in | std::ios::binary) == nullptr) {
        const int error = errno;
        throw Problem("cannot read the pass phrase from " + name +
                      (error == 0 ? "" : std::string(": ") + std::strerror(error)) +
                      "\nName a file with the pass phrase as its one line.");
    }
    auto line = std::make_shared<Secret>();
    for (auto next = file.sbumpc(); next != std::filebuf::traits_type::eof();
         next = file.sbumpc()) {
        if (line->View().size() == kLongestLine) {
            throw WrongInput("the file " + name + " holds more than a pass phrase" + kAdvice);
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
    auto line = std::make_shared<Secret>();
    ReadInputLine(*line);
    return line;
}

Line Read(const PassPhraseOptions& options) {
    const std::string name = options.file;
    const std::function<Line()> work = [name] {
        return name == kStandardInput ? ReadStandardInput() : ReadFile(name);
    };
    Line line = AwaitInterruptibly(work, [] {});
    if (line->View().empty()) {
        throw WrongInput(
            (name == kStandardInput ? "standard input" : "the file " + name) +
            std::string(" holds no pass phrase\n--open is for a network without one."));
    }
    return line;
}

Line Ask(const Settings& settings, const std::string& network) {
    Line line = AskSecret(
        settings, "Pass phrase of " + DisplayText(network) + " (empty for an open network): ");
    if (line == nullptr) {
        throw WrongInput(std::string("no pass phrase was given") + kAdvice);
    }
    return line;
}

void RequireText(const Secret& passPhrase) {
    if (passPhrase.View().find('\n') != std::string_view::npos) {
        throw WrongInput("the pass phrase has more than one line");
    }
    if (passPhrase.View().find('\0') != std::string_view::npos || !IsUtf8(passPhrase.View())) {
        throw WrongInput("the pass phrase is not UTF-8 text");
    }
}

}  // namespace

const std::size_t kLongestPrinterPassPhrase =
    sizeof PrinterDeviceDiscoverSdk::WifiConfigInfo::pwd - 1;

void PassPhraseOptions::Require() const {
    if (!open && file.empty() && !CanAsk()) {
        throw WrongInput("there is no terminal to ask for the pass phrase on" +
                         std::string(kAdvice));
    }
}

std::shared_ptr<Secret> GetPassPhrase(const Settings& settings, const PassPhraseOptions& options,
                                      const std::string& network) {
    if (options.open) {
        return std::make_shared<Secret>();
    }
    const bool ask = options.file.empty() || (options.file == kStandardInput && CanAsk());
    Line line = ask ? Ask(settings, network) : Read(options);
    RequireText(*line);
    return line;
}

void RequirePrinterPassPhrase(const Secret& passPhrase) {
    const std::size_t size = passPhrase.View().size();
    if (size > kLongestPrinterPassPhrase) {
        throw WrongInput(fmt::format("the pass phrase has {} bytes; a printer can be given {}",
                                     size, kLongestPrinterPassPhrase));
    }
}

}  // namespace App
