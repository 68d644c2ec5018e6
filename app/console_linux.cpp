#include <langinfo.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <clocale>
#include <csignal>
#include <cstdlib>
#include <cstring>

#include "app/console.h"
#include "app/problem.h"

namespace App {

std::vector<std::string> Arguments(int argc, char** argv) {
    return {argv + (argc > 0 ? 1 : 0), argv + argc};
}

void PrepareConsole() {
    // A reader that goes away is seen where the writing fails.
    std::signal(SIGPIPE, SIG_IGN);
    // The width of characters is known in a UTF-8 locale only, and UTF-8 is what is written.
    if (std::setlocale(LC_CTYPE, "") == nullptr ||
        std::strcmp(nl_langinfo(CODESET), "UTF-8") != 0) {
        std::setlocale(LC_CTYPE, "C.UTF-8");
    }
}

void WriteOutput(std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = write(STDOUT_FILENO, text.data(), text.size());
        if (written >= 0) {
            text.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno == EPIPE) {
            throw OutputClosed();
        } else if (errno == EAGAIN) {
            pollfd output{STDOUT_FILENO, POLLOUT, 0};
            poll(&output, 1, -1);
        } else if (errno != EINTR) {
            throw Problem(std::string("cannot write to standard output: ") + std::strerror(errno) +
                          "\nWrite to another place, or make room there.");
        }
    }
}

bool OutputReaderIsGone() {
    pollfd output{STDOUT_FILENO, 0, 0};
    return poll(&output, 1, 0) > 0 && (output.revents & POLLERR) != 0;
}

void WriteError(std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = write(STDERR_FILENO, text.data(), text.size());
        if (written > 0) {
            text.remove_prefix(static_cast<std::size_t>(written));
        } else if (written == 0 || errno != EINTR) {
            return;
        }
    }
}

bool ErrorIsTerminal() {
    return isatty(STDERR_FILENO) == 1;
}

std::optional<ScreenSize> OutputScreen() {
    const char* const kind = std::getenv("TERM");
    if (isatty(STDOUT_FILENO) != 1 || kind == nullptr || *kind == '\0' ||
        std::strcmp(kind, "dumb") == 0) {
        return std::nullopt;
    }
    winsize size{};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0 || size.ws_row == 0) {
        return ScreenSize{80, 24};
    }
    return ScreenSize{size.ws_col, size.ws_row};
}

void Redraw(std::size_t rowsBefore, const std::vector<std::string>& lines) {
    // The whole picture in one write, each line cleared behind its text: nothing flickers.
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
