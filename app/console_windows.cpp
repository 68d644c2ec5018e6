#include "app/console.h"

#include "platform/os.h"
// After the system's main header, on which it stands.
#include <shellapi.h>

#include "app/problem.h"

namespace App {

namespace {

std::wstring Widen(std::string_view text) {
    const int size = static_cast<int>(text.size());
    const int length = MultiByteToWideChar(CP_UTF8, 0, text.data(), size, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(length), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.data(), size, wide.data(), length);
    return wide;
}

std::string Narrow(const std::wstring& text) {
    const int size = static_cast<int>(text.size());
    const int length =
        WideCharToMultiByte(CP_UTF8, 0, text.data(), size, nullptr, 0, nullptr, nullptr);
    std::string narrow(static_cast<std::size_t>(length), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), size, narrow.data(), length, nullptr, nullptr);
    return narrow;
}

bool IsConsole(HANDLE stream) {
    DWORD mode = 0;
    return GetConsoleMode(stream, &mode) != 0;
}

// The system's error number; 0 when all was written. A console takes wide text, so that no code
// page comes between.
DWORD WriteTo(HANDLE stream, std::string_view text) {
    const bool console = IsConsole(stream);
    const std::wstring wide = console ? Widen(text) : std::wstring();
    const std::size_t total = console ? wide.size() : text.size();
    for (std::size_t done = 0; done < total;) {
        DWORD written = 0;
        const DWORD left = static_cast<DWORD>(total - done);
        const BOOL success =
            console ? WriteConsoleW(stream, wide.data() + done, left, &written, nullptr)
                    : WriteFile(stream, text.data() + done, left, &written, nullptr);
        if (success == 0) {
            return GetLastError();
        }
        done += written;
    }
    return 0;
}

}  // namespace

std::vector<std::string> Arguments(int, char**) {
    int count = 0;
    wchar_t** const words = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> arguments;
    for (int word = 1; words != nullptr && word < count; ++word) {
        arguments.push_back(Narrow(words[word]));
    }
    LocalFree(words);
    return arguments;
}

void PrepareConsole() {}

void WriteOutput(std::string_view text) {
    const DWORD error = WriteTo(GetStdHandle(STD_OUTPUT_HANDLE), text);
    if (error == ERROR_NO_DATA || error == ERROR_BROKEN_PIPE) {
        throw OutputClosed();
    }
    if (error != 0) {
        throw Problem("cannot write to standard output: system error " + std::to_string(error) +
                      "\nWrite to another place, or make room there.");
    }
}

bool OutputReaderIsGone() {
    // The system tells only who writes.
    return false;
}

void WriteError(std::string_view text) {
    WriteTo(GetStdHandle(STD_ERROR_HANDLE), text);
}

bool ErrorIsTerminal() {
    return IsConsole(GetStdHandle(STD_ERROR_HANDLE));
}

std::optional<ScreenSize> OutputScreen() {
    CONSOLE_SCREEN_BUFFER_INFO info;
    if (GetConsoleScreenBufferInfo(GetStdHandle(STD_OUTPUT_HANDLE), &info) == 0) {
        return std::nullopt;
    }
    const auto extent = [](SHORT from, SHORT to) {
        return static_cast<std::size_t>(to - from + 1);
    };
    return ScreenSize{extent(info.srWindow.Left, info.srWindow.Right),
                      extent(info.srWindow.Top, info.srWindow.Bottom)};
}

void Redraw(std::size_t rowsBefore, const std::vector<std::string>& lines) {
    const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
    CONSOLE_SCREEN_BUFFER_INFO info;
    if (GetConsoleScreenBufferInfo(output, &info) != 0) {
        const SHORT up = static_cast<SHORT>(rowsBefore > 1 ? rowsBefore - 1 : 0);
        const SHORT top = info.dwCursorPosition.Y > up
                              ? static_cast<SHORT>(info.dwCursorPosition.Y - up)
                              : SHORT{0};
        const COORD start{0, top};
        const DWORD cells = static_cast<DWORD>((info.dwCursorPosition.Y - top + 1) * info.dwSize.X);
        DWORD filled = 0;
        FillConsoleOutputCharacterW(output, L' ', cells, start, &filled);
        SetConsoleCursorPosition(output, start);
    }
    std::string picture;
    for (std::size_t line = 0; line < lines.size(); ++line) {
        picture += (line == 0 ? "" : "\r\n") + lines[line];
    }
    WriteOutput(picture);
}

}  // namespace App
