// SPDX-License-Identifier: Apache-2.0

#include "app/terminal/console.h"

#include "platform/os.h"
// Needs windows.h before it.
#include <io.h>
#include <shellapi.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <string>
#include <thread>

#include "app/outcome/problem.h"
#include "app/terminal/bounded_write_windows.h"
#include "app/terminal/interrupt.h"
#include "base/text/utf8.h"

namespace App {

namespace {

using Clock = std::chrono::steady_clock;

// The program's own handle of standard output, after vendors' output was redirected.
HANDLE output = nullptr;

std::atomic<bool> isWriteBrokenOff = false;  // or under way

constexpr DWORD kStalled = WAIT_TIMEOUT;
constexpr auto kStallLimit = std::chrono::seconds(1);
constexpr auto kTick = std::chrono::milliseconds(100);
constexpr std::size_t kPartSize = 4096;

bool IsConsole(HANDLE stream) {
    DWORD mode = 0;
    return GetConsoleMode(stream, &mode) != 0;
}

// Writes to a stream on a separate thread, so that Ctrl-C works while a reader stalls. The thread
// runs until the process ends, and has begun when the constructor returns: while the load of a
// module hangs, no thread can begin.
class Writer {
public:
    explicit Writer(HANDLE place) : stream(place) {
        std::unique_lock lock(mutex);
        std::thread([this] { Run(); }).detach();
        changed.wait(lock, [this] { return hasBegun; });
    }

    // Returns 0 when all was written, kStalled when the program is to end and the reader takes
    // nothing, else the system's error number.
    DWORD Write(std::string_view text) {
        std::unique_lock lock(mutex);
        pending.append(text);
        error = 0;
        changed.notify_all();
        std::size_t leftBefore = pending.size();
        Clock::time_point stallEnds = Clock::now() + kStallLimit;
        while (!pending.empty()) {
            changed.wait_for(lock, kTick);
            if (pending.size() != leftBefore || !IsInterrupted()) {
                leftBefore = pending.size();
                stallEnds = Clock::now() + kStallLimit;
            } else if (Clock::now() >= stallEnds) {
                return kStalled;
            }
        }
        return error;
    }

private:
    [[noreturn]] void Run() {
        std::unique_lock lock(mutex);
        hasBegun = true;
        changed.notify_all();
        for (;;) {
            changed.wait(lock, [this] { return !pending.empty(); });
            const bool console = IsConsole(stream);
            const std::string part = console ? pending : pending.substr(0, kPartSize);
            lock.unlock();
            DWORD written = static_cast<DWORD>(part.size());
            const DWORD result = console ? ToConsole(part) : ToStream(part, written);
            lock.lock();
            error = result;
            pending.erase(0, result == 0 ? written : pending.size());
            changed.notify_all();
        }
    }

    DWORD ToStream(const std::string& part, DWORD& written) const {
        const auto size = static_cast<DWORD>(part.size());
        return WriteFile(stream, part.data(), size, &written, nullptr) == 0 ? GetLastError() : 0;
    }

    // Writes wide text to a console, to avoid code pages.
    DWORD ToConsole(const std::string& text) const {
        const std::wstring wide = Base::FromUtf8(text);
        for (std::size_t done = 0; done < wide.size();) {
            DWORD written = 0;
            const auto left = static_cast<DWORD>(wide.size() - done);
            if (WriteConsoleW(stream, wide.data() + done, left, &written, nullptr) == 0) {
                return GetLastError();
            }
            done += written;
        }
        return 0;
    }

    const HANDLE stream;
    std::mutex mutex;  // guards the members below
    std::condition_variable changed;
    std::string pending;
    DWORD error = 0;
    bool hasBegun = false;
};

Writer& OutputWriter() {
    static Writer& writer = *new Writer(output);
    return writer;
}

Writer& ErrorWriter() {
    static Writer& writer = *new Writer(GetStdHandle(STD_ERROR_HANDLE));
    return writer;
}

}  // namespace

std::vector<std::string> Arguments(int, char**) {
    int count = 0;
    wchar_t** const words = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> arguments;
    for (int word = 1; words != nullptr && word < count; ++word) {
        arguments.push_back(Base::ToUtf8(words[word]));
    }
    LocalFree(words);
    return arguments;
}

void PrepareConsole() {
    ErrorWriter();
    const HANDLE process = GetCurrentProcess();
    const HANDLE stream = GetStdHandle(STD_OUTPUT_HANDLE);
    if (DuplicateHandle(process, stream, process, &output, 0, FALSE, DUPLICATE_SAME_ACCESS) == 0) {
        output = nullptr;  // standard output is closed
        return;
    }
    OutputWriter();
    // Vendors' prints would corrupt output that a program reads. A module gets the handle from the
    // run-time library or from the system.
    _dup2(_fileno(stderr), _fileno(stdout));
    SetStdHandle(STD_OUTPUT_HANDLE, GetStdHandle(STD_ERROR_HANDLE));
}

void WriteOutput(std::string_view text) {
    isWriteBrokenOff = true;
    const DWORD error = OutputWriter().Write(text);
    isWriteBrokenOff = error != 0;
    if (error == ERROR_NO_DATA || error == ERROR_BROKEN_PIPE || error == ERROR_PIPE_NOT_CONNECTED ||
        error == kStalled) {
        throw OutputClosed();
    }
    if (error != 0) {
        throw Problem("cannot write to standard output: system error " + std::to_string(error) +
                      "\nWrite to another place, or free some space.");
    }
}

void WriteLastLine(std::string_view line) {
    if (output != nullptr && !isWriteBrokenOff.exchange(true)) {
        WriteInTime(output, line);
    }
}

bool OutputReaderIsGone() {
    // The system reports a closed reader only to a writer.
    return false;
}

void WriteError(std::string_view text) {
    ErrorWriter().Write(text);
}

bool ErrorIsTerminal() {
    return IsConsole(GetStdHandle(STD_ERROR_HANDLE));
}

std::optional<ScreenSize> OutputScreen() {
    CONSOLE_SCREEN_BUFFER_INFO info;
    if (GetConsoleScreenBufferInfo(output, &info) == 0) {
        return std::nullopt;
    }
    const auto extent = [](SHORT from, SHORT to) {
        return static_cast<std::size_t>(to) - static_cast<std::size_t>(from) + 1;
    };
    return ScreenSize{extent(info.srWindow.Left, info.srWindow.Right),
                      extent(info.srWindow.Top, info.srWindow.Bottom)};
}

void Redraw(std::size_t rowsBefore, const std::vector<std::string>& lines) {
    CONSOLE_SCREEN_BUFFER_INFO info;
    if (GetConsoleScreenBufferInfo(output, &info) != 0) {
        const SHORT up = static_cast<SHORT>(rowsBefore > 1 ? rowsBefore - 1 : 0);
        const SHORT top = info.dwCursorPosition.Y > up
                              ? static_cast<SHORT>(info.dwCursorPosition.Y - up)
                              : SHORT{0};
        const COORD start{0, top};
        const int rows = info.dwCursorPosition.Y - top + 1;
        const DWORD cells = static_cast<DWORD>(rows) * static_cast<DWORD>(info.dwSize.X);
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
