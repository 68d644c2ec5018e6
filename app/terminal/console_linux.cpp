// SPDX-License-Identifier: Apache-2.0

#include <fcntl.h>
#include <langinfo.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <climits>
#include <clocale>
#include <csignal>
#include <cstdlib>
#include <cstring>

#include "app/outcome/problem.h"
#include "app/terminal/console.h"
#include "app/terminal/interrupt.h"

namespace App {

namespace {

using Clock = std::chrono::steady_clock;

// The program's own descriptor of standard output, after vendors' output was redirected; -1: it was
// closed.
int output = STDOUT_FILENO;

std::atomic<bool> isWriteBrokenOff = false;  // or under way
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler uses it");

constexpr int kStalled = ETIMEDOUT;
constexpr auto kStallLimit = std::chrono::seconds(1);
constexpr int kPollMilliseconds = 100;

// Opens the stream again for non-blocking writes, so that Ctrl-C works while a reader stalls. The
// stream itself is shared with other programs and stays unchanged; it is used if it cannot be
// opened again, like a socket. Files never stall.
int WithoutWaiting(int stream) {
    struct stat status {};
    if (fstat(stream, &status) != 0 || !(S_ISFIFO(status.st_mode) || isatty(stream) == 1)) {
        return stream;
    }
    const std::string name = "/proc/self/fd/" + std::to_string(stream);
    const int own = open(name.c_str(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    return own < 0 ? stream : own;
}

bool IsReady(int stream) {
    pollfd place{stream, POLLOUT, 0};
    return poll(&place, 1, kPollMilliseconds) > 0;
}

// Returns 0 when all was written, kStalled when the program is to end and the reader takes nothing,
// else the system's error number.
int WriteTo(int stream, std::string_view text) {
    Clock::time_point stallEnds = Clock::now() + kStallLimit;
    while (!text.empty()) {
        const ssize_t written =
            IsReady(stream)
                ? write(stream, text.data(), std::min<std::size_t>(text.size(), PIPE_BUF))
                : 0;
        if (written < 0 && errno != EAGAIN && errno != EINTR) {
            return errno;
        }
        if (written > 0) {
            text.remove_prefix(static_cast<std::size_t>(written));
        }
        const auto now = Clock::now();
        if (written > 0 || !IsInterrupted()) {
            stallEnds = now + kStallLimit;
        } else if (now >= stallEnds) {
            return kStalled;
        }
    }
    return 0;
}

// Whether the stream is open. A closed stream's number is occupied with an empty file: otherwise
// the next opened file would get the number and be used as the stream.
bool Hold(int stream) {
    if (fcntl(stream, F_GETFD) >= 0) {
        return true;
    }
    const int nothing = open("/dev/null", O_RDWR | O_NOCTTY);
    if (nothing >= 0 && nothing != stream) {
        dup2(nothing, stream);
        close(nothing);
    }
    return false;
}

// Vendors' prints would corrupt output that a program reads.
void KeepOutputToOurselves() {
    output = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    if (output >= 0) {
        dup2(STDERR_FILENO, STDOUT_FILENO);
    }
}

}  // namespace

std::vector<std::string> Arguments(int argc, char** argv) {
    return {argv + (argc > 0 ? 1 : 0), argv + argc};
}

void PrepareConsole() {
    Hold(STDIN_FILENO);
    const bool hasOutput = Hold(STDOUT_FILENO);
    Hold(STDERR_FILENO);
    if (hasOutput) {
        KeepOutputToOurselves();
    } else {
        output = -1;
    }
    // A closed reader is detected when a write fails.
    std::signal(SIGPIPE, SIG_IGN);
    // Only a UTF-8 locale knows the width of characters, and the output is UTF-8.
    if (std::setlocale(LC_CTYPE, "") == nullptr ||
        std::strcmp(nl_langinfo(CODESET), "UTF-8") != 0) {
        std::setlocale(LC_CTYPE, "C.UTF-8");
    }
}

void WriteOutput(std::string_view text) {
    static const int stream = output < 0 ? output : WithoutWaiting(output);
    isWriteBrokenOff = true;
    const int error = stream < 0 ? EBADF : WriteTo(stream, text);
    isWriteBrokenOff = error != 0;
    if (error == EPIPE || error == kStalled) {
        throw OutputClosed();
    }
    if (error != 0) {
        throw Problem(std::string("cannot write to standard output: ") + std::strerror(error) +
                      "\nWrite to another place, or free some space.");
    }
}

void WriteLastLine(std::string_view line) {
    constexpr int milliseconds = 1000;
    pollfd place{output, POLLOUT, 0};
    if (output >= 0 && !isWriteBrokenOff.exchange(true) && line.size() <= PIPE_BUF &&
        poll(&place, 1, milliseconds) > 0) {
        [[maybe_unused]] const ssize_t written = write(output, line.data(), line.size());
    }
}

bool OutputReaderIsGone() {
    pollfd stream{output, 0, 0};  // poll ignores -1
    return poll(&stream, 1, 0) > 0 && (stream.revents & POLLERR) != 0;
}

void WriteError(std::string_view text) {
    static const int errors = WithoutWaiting(STDERR_FILENO);
    static std::atomic<bool> isStalled = false;
    // A program that is to end does not wait again for each line.
    if (!isStalled) {
        isStalled = WriteTo(errors, text) == kStalled;
    }
}

bool ErrorIsTerminal() {
    return isatty(STDERR_FILENO) == 1;
}

std::optional<ScreenSize> OutputScreen() {
    const char* const kind = std::getenv("TERM");
    if (isatty(output) != 1 || kind == nullptr || *kind == '\0' || std::strcmp(kind, "dumb") == 0) {
        return std::nullopt;
    }
    winsize size{};
    if (ioctl(output, TIOCGWINSZ, &size) != 0 || size.ws_col == 0 || size.ws_row == 0) {
        return ScreenSize{80, 24};
    }
    return ScreenSize{size.ws_col, size.ws_row};
}

void Redraw(std::size_t rowsBefore, const std::vector<std::string>& lines) {
    // Draw everything in one write and clear each line after its text, to avoid flicker.
    std::string picture = "\r";
    if (rowsBefore > 1) {
        picture += "\x1b[" + std::to_string(rowsBefore - 1) + "A";
    }
    for (std::size_t line = 0; line < lines.size(); ++line) {
        picture += (line == 0 ? "" : "\n") + lines[line] + "\x1b[K";
    }
    WriteOutput(picture + "\x1b[J");
}

}  // namespace App
