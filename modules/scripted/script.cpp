// SPDX-License-Identifier: Apache-2.0

#include "script.h"

#include <algorithm>
#include <charconv>
#include <istream>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string_view>

#include "VendorSdk/entry_points.h"

namespace ScriptedVendor {

namespace {

#define ENTRY_POINT_NAME(name) #name,
constexpr std::string_view kEntryPoints[] = {VENDORSDK_SCAN_ENTRY_POINTS(ENTRY_POINT_NAME)
                                                 VENDORSDK_NETCONN_ENTRY_POINTS(ENTRY_POINT_NAME)
                                                     VENDORSDK_USB_ENTRY_POINTS(ENTRY_POINT_NAME)};
#undef ENTRY_POINT_NAME

using Words = std::vector<std::string>;

[[noreturn]] void Refuse(const std::string& problem) {
    throw std::invalid_argument(problem);
}

std::string Quoted(std::string_view text) {
    return '"' + std::string(text) + '"';
}

int Number(std::string_view text, int least = std::numeric_limits<int>::min(),
           int most = std::numeric_limits<int>::max()) {
    int value = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, value);
    if (error == std::errc::invalid_argument || rest != end) {
        Refuse(Quoted(text) + " is no number");
    }
    if (error != std::errc() || value < least || value > most) {
        Refuse(Quoted(text) + " is out of range");
    }
    return value;
}

// The character behind a backslash at line[at - 1]; `at` moves past it.
char Escaped(std::string_view line, std::size_t& at) {
    if (at == line.size()) {
        Refuse("the line ends in a backslash");
    }
    switch (const char kind = line[at++]) {
        case 'n':
            return '\n';
        case 't':
            return '\t';
        case '\\':
        case '"':
            return kind;
        case 'x': {
            unsigned char value = 0;
            const std::string_view digits = line.substr(at, 2);
            const char* const end = digits.data() + digits.size();
            const auto [rest, error] = std::from_chars(digits.data(), end, value, 16);
            if (digits.size() < 2 || error != std::errc() || rest != end) {
                Refuse("\\x needs two hexadecimal digits");
            }
            at += 2;
            return static_cast<char>(value);
        }
        default:
            Refuse("unknown escape \\" + std::string(1, kind));
    }
}

std::string QuotedWord(std::string_view line, std::size_t& at) {
    std::string word;
    for (++at; at < line.size() && line[at] != '"';) {
        const char c = line[at++];
        word += c == '\\' ? Escaped(line, at) : c;
    }
    if (at == line.size()) {
        Refuse("a quotation mark is missing");
    }
    ++at;
    return word;
}

// The words of a line, up to a comment; words in quotation marks may hold blanks and escapes.
Words WordsOf(std::string_view line) {
    constexpr std::string_view blanks = " \t\r";
    Words words;
    for (std::size_t at = 0;;) {
        at = line.find_first_not_of(blanks, at);
        if (at == std::string_view::npos || line[at] == '#') {
            return words;
        }
        if (line[at] == '"') {
            words.push_back(QuotedWord(line, at));
        } else {
            const std::size_t end = std::min(line.find_first_of(blanks, at), line.size());
            words.emplace_back(line.substr(at, end - at));
            at = end;
        }
    }
}

std::string EntryPointName(const std::string& word) {
    if (std::find(std::begin(kEntryPoints), std::end(kEntryPoints), word) ==
        std::end(kEntryPoints)) {
        Refuse(Quoted(word) + " is no entry point");
    }
    return word;
}

Misbehaviour MisbehaviourNamed(const std::string& word) {
    const std::optional<Misbehaviour> named = FindMisbehaviour(word);
    if (!named) {
        Refuse(Quoted(word) + " is no misbehaviour");
    }
    return *named;
}

// The name of an entry point that writes records and their number.
std::string CountingEntryPointName(const std::string& word) {
    if (EntryPointName(word) != "GetDeviceInfoByUsb" && word != "USBWifiScan") {
        Refuse(Quoted(word) + " writes no count");
    }
    return word;
}

template <std::size_t Width>
void Fill(char (&field)[Width], const std::string& text) {
    if (text.size() > Width) {
        Refuse(Quoted(text) + " is longer than its field of " + std::to_string(Width) + " bytes");
    }
    std::copy(text.begin(), text.end(), field);
}

VendorSdk::DeviceInfo Device(const Words& words) {
    VendorSdk::DeviceInfo device{};
    Fill(device.deviceSN, words[1]);
    Fill(device.modelID, words[2]);
    Fill(device.extra1, words[3]);
    Fill(device.extra2, words[4]);
    Fill(device.extra3, words[5]);
    device.code1 = static_cast<std::uint16_t>(Number(words[6], 0, 0xFFFF));
    device.code2 = static_cast<std::uint16_t>(Number(words[7], 0, 0xFFFF));
    return device;
}

// "nan" and "inf" are decimals too.
float Decimal(const std::string& text) {
    float value = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, value);
    if (error == std::errc::invalid_argument || rest != end) {
        Refuse(Quoted(text) + " is no number");
    }
    if (error != std::errc()) {
        Refuse(Quoted(text) + " is out of range");
    }
    return value;
}

VendorSdk::WifiConfigInfo Network(const Words& words) {
    VendorSdk::WifiConfigInfo network{};
    network.rssi = Decimal(words[1]);
    Fill(network.ssid, words[2]);
    Fill(network.pwd, words[3]);
    return network;
}

struct Directive {
    std::string_view name;
    std::size_t words;  // with the name
    void (*apply)(Script& script, const Words& words);
};

constexpr Directive kDirectives[] = {
    {"result", 3,
     [](Script& script, const Words& words) {
         script.results[EntryPointName(words[1])] = Number(words[2]);
     }},
    {"delay", 3,
     [](Script& script, const Words& words) {
         script.delays[EntryPointName(words[1])] = std::chrono::milliseconds(Number(words[2], 0));
     }},
    {"misbehave", 3,
     [](Script& script, const Words& words) {
         script.misbehaviours[EntryPointName(words[1])] = MisbehaviourNamed(words[2]);
     }},
    {"count", 3,
     [](Script& script, const Words& words) {
         script.counts[CountingEntryPointName(words[1])] = Number(words[2]);
     }},
    {"device", 8,
     [](Script& script, const Words& words) { script.devices.push_back(Device(words)); }},
    {"network", 4,
     [](Script& script, const Words& words) { script.networks.push_back(Network(words)); }},
    {"threads", 2,
     [](Script& script, const Words& words) { script.threads = Number(words[1], 1, 64); }},
    {"repeat", 2, [](Script& script, const Words& words) { script.repeat = Number(words[1], 0); }},
    {"interval", 2,
     [](Script& script, const Words& words) {
         script.interval = std::chrono::milliseconds(Number(words[1], 0));
     }},
    {"print", 2, [](Script& script, const Words& words) { script.print = words[1]; }},
    {"forgetful", 1, [](Script& script, const Words&) { script.forgetful = true; }},
    {"until-stopped", 1, [](Script& script, const Words&) { script.untilStopped = true; }},
    {"after-stop", 2,
     [](Script& script, const Words& words) { script.afterStop = Number(words[1], 0); }},
};

void Apply(const Words& words, Script& script) {
    for (const Directive& directive : kDirectives) {
        if (directive.name == words.front()) {
            if (words.size() != directive.words) {
                Refuse(words.front() + " takes " + std::to_string(directive.words - 1) +
                       " values, not " + std::to_string(words.size() - 1));
            }
            directive.apply(script, words);
            return;
        }
    }
    Refuse("unknown directive " + Quoted(words.front()));
}

}  // namespace

int Script::ResultOf(const std::string& entryPoint) const {
    const auto result = results.find(entryPoint);
    if (result != results.end()) {
        return result->second;
    }
    return entryPoint == "GetDeviceConnectState" ? 1 : 0;
}

std::chrono::milliseconds Script::DelayOf(const std::string& entryPoint) const {
    const auto delay = delays.find(entryPoint);
    return delay == delays.end() ? std::chrono::milliseconds(0) : delay->second;
}

Misbehaviour Script::MisbehaviourOf(const std::string& entryPoint) const {
    const auto misbehaviour = misbehaviours.find(entryPoint);
    return misbehaviour == misbehaviours.end() ? Misbehaviour::None : misbehaviour->second;
}

std::vector<std::string> ApplyScript(std::istream& text, const std::string& sourceName,
                                     const std::string& moduleName, Script& script) {
    std::vector<std::string> problems;
    bool concerned = true;
    std::string line;
    for (int number = 1; std::getline(text, line); ++number) {
        try {
            const Words words = WordsOf(line);
            if (words.empty()) {
                continue;
            }
            if (words.size() == 1 && words[0].starts_with('[') && words[0].ends_with(']')) {
                concerned = words[0] == '[' + moduleName + ']';
            } else if (concerned) {
                Apply(words, script);
            }
        } catch (const std::invalid_argument& problem) {
            problems.push_back(sourceName + ':' + std::to_string(number) + ": " + problem.what());
        }
    }
    return problems;
}

}  // namespace ScriptedVendor
