// SPDX-License-Identifier: Apache-2.0

#include "app/terminal/terminal_input.h"

#include <array>
#include <string_view>

#include "base/text/utf8.h"
#include "platform/os.h"

namespace App {

namespace {

HANDLE Input() {
    return GetStdHandle(STD_INPUT_HANDLE);
}

bool ReadUnit(wchar_t& unit) {
    DWORD count = 0;
    return ReadConsoleW(Input(), &unit, 1, &count, nullptr) != 0 && count == 1;
}

bool ReadByte(char& byte) {
    DWORD count = 0;
    return ReadFile(Input(), &byte, 1, &count, nullptr) != 0 && count == 1;
}

void AppendUtf8(Base::Secret& line, std::wstring_view units) {
    for (std::size_t at = 0; at < units.size();) {
        Base::Utf8Character character = Base::EncodeUtf8(Base::NextCodePoint(units, at));
        const Base::WipeAtEnd wiped(character);
        for (const char byte : character.View()) {
            line.Append(byte);
        }
    }
}

bool IsLeading(wchar_t unit) {
    return unit >= 0xD800 && unit < 0xDC00;
}

// Reads wide text from a console, to avoid code pages.
bool ReadConsoleLine(Base::Secret& line) {
    bool any = false;
    std::array<wchar_t, 2> units{};
    int count = 0;
    while (ReadUnit(units[static_cast<std::size_t>(count)])) {
        any = true;
        const wchar_t last = units[static_cast<std::size_t>(count)];
        if (last == L'\n') {
            break;
        }
        ++count;
        if (count == 1 && IsLeading(last)) {
            continue;
        }
        if (last != L'\r') {
            AppendUtf8(line, {units.data(), static_cast<std::size_t>(count)});
        }
        count = 0;
    }
    Base::Wipe(units.data(), sizeof units);
    return any;
}

bool ReadPlainLine(Base::Secret& line) {
    bool any = false;
    char byte = '\0';
    while (ReadByte(byte)) {
        any = true;
        if (byte == '\n') {
            break;
        }
        line.Append(byte);
    }
    if (any && !line.View().empty() && line.View().back() == '\r') {
        line.RemoveLast();
    }
    return any;
}

}  // namespace

bool InputIsTerminal() {
    DWORD mode = 0;
    return GetConsoleMode(Input(), &mode) != 0;
}

bool ReadInputLine(Base::Secret& line) {
    return InputIsTerminal() ? ReadConsoleLine(line) : ReadPlainLine(line);
}

struct HiddenTyping::Mode {
    DWORD flags;
};

HiddenTyping::HiddenTyping() : before(nullptr) {
    DWORD flags = 0;
    if (GetConsoleMode(Input(), &flags) != 0) {
        before = new Mode{flags};
        FlushConsoleInputBuffer(Input());
        SetConsoleMode(Input(), (flags | ENABLE_LINE_INPUT | ENABLE_PROCESSED_INPUT) &
                                    ~static_cast<DWORD>(ENABLE_ECHO_INPUT));
    }
}

HiddenTyping::~HiddenTyping() {
    if (before != nullptr) {
        SetConsoleMode(Input(), before->flags);
        delete before;
    }
}

}  // namespace App
