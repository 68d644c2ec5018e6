// SPDX-License-Identifier: Apache-2.0

#include "tests/support/host_script.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <mutex>
#include <sstream>
#include <thread>

namespace ScriptedHost {

namespace {

std::string Environment(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? std::string() : std::string(value);
}

bool IsPlain(wchar_t character) {
    return character >= L' ' && character <= L'~' && character != L'"' && character != L'\\';
}

// Reads a quoted text, with \uXXXX for one wide character's value.
std::istream& operator>>(std::istream& stream, std::wstring& text) {
    text.clear();
    char next = '\0';
    if (!(stream >> next) || next != '"') {
        stream.setstate(std::ios::failbit);
        return stream;
    }
    while (stream.get(next) && next != '"') {
        if (next != '\\') {
            text += static_cast<wchar_t>(static_cast<unsigned char>(next));
            continue;
        }
        char digits[6]{};
        stream.get(next).read(digits, 4);
        text += static_cast<wchar_t>(std::strtoul(digits, nullptr, 16));
    }
    return stream;
}

}  // namespace

std::string Quoted(const std::wstring& text) {
    std::string quoted = "\"";
    for (const wchar_t character : text) {
        if (IsPlain(character)) {
            quoted += static_cast<char>(character);
            continue;
        }
        char escaped[12];
        std::snprintf(escaped, sizeof escaped, "\\u%04x", static_cast<unsigned>(character));
        quoted += escaped;
    }
    return quoted + '"';
}

HostScript HostScript::FromEnvironment() {
    HostScript script;
    const std::string path = Environment("SCRIPTED_HOST_SCRIPT");
    if (path.empty()) {
        return script;
    }
    std::ifstream file(path);
    if (!file) {
        std::fputs((path + ": the script cannot be read\n").c_str(), stderr);
    }
    for (std::string line; std::getline(file, line);) {
        if (!line.empty() && line.back() == '\r') {
            line.pop_back();
        }
        if (!line.empty() && !script.Apply(line)) {
            std::fputs((path + ": no sense: " + line + '\n').c_str(), stderr);
        }
    }
    return script;
}

bool HostScript::Apply(const std::string& line) {
    std::istringstream words(line);
    std::string directive;
    words >> directive;
    if (directive == "ping") {
        words >> pingResults.emplace_back();
    } else if (directive == "ping-problem") {
        words >> pingProblem;
    } else if (directive == "network") {
        auto& network = inRange.emplace_back();
        words >> network.ssid >> network.attributes.signalQuality >> network.attributes.security >>
            network.excludeFlag;
    } else if (directive == "joined") {
        words >> joinedTo[0] >> joinedTo[1] >> joinedTo[2];
    } else if (directive == "join") {
        bool joined = false;
        words >> joined;
        joinResults.push_back(joined);
    } else if (directive == "wifi-problem") {
        words >> wifiProblem >> wifiReason;
    } else if (directive == "delay") {
        std::string operation;
        std::int64_t milliseconds = 0;
        words >> operation >> milliseconds;
        delays[operation] = std::chrono::milliseconds(milliseconds);
    } else if (directive == "port") {
        std::wstring deviceId;
        std::pair<int, int> port;
        words >> deviceId >> port.first >> port.second;
        ports[deviceId] = port;
    } else if (directive == "change") {
        std::int64_t milliseconds = 0;
        Change& change = changes.emplace_back();
        words >> milliseconds >> change.state >> change.deviceId;
        change.delay = std::chrono::milliseconds(milliseconds);
    } else if (directive == "appear") {
        std::int64_t milliseconds = 0;
        Change& change = changes.emplace_back();
        change.port.emplace();
        words >> milliseconds >> change.deviceId >> change.port->first >> change.port->second;
        change.delay = std::chrono::milliseconds(milliseconds);
    } else if (directive == "usb-problem") {
        words >> usbProblem;
    } else if (directive == "usb-monitor-problem") {
        words >> usbMonitorProblem;
    } else if (directive == "list-problem") {
        words >> listProblem;
    } else if (directive == "printer") {
        PrinterSdk::PrinterProperty& printer = printers.emplace_back();
        words >> printer.serialNumber >> printer.modelID >> printer.connectType;
    } else {
        return false;
    }
    return !words.fail();
}

void HostScript::Play(const std::string& call) const {
    // Never destroyed: a thread that the program left behind may still be here at its end.
    static const std::string& path = *new std::string(Environment("SCRIPTED_HOST_RECORD"));
    static std::mutex& mutex = *new std::mutex;
    if (!path.empty()) {
        const std::lock_guard lock(mutex);
        std::ofstream(path, std::ios::app) << call << '\n';
    }
    const auto delay = delays.find(call.substr(0, call.find(' ')));
    if (delay != delays.end()) {
        std::this_thread::sleep_for(delay->second);
    }
}

}  // namespace ScriptedHost
