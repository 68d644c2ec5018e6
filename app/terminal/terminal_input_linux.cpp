// SPDX-License-Identifier: Apache-2.0

#include <termios.h>
#include <unistd.h>

#include <cerrno>

#include "app/terminal/terminal_input.h"

namespace App {

bool InputIsTerminal() {
    return isatty(STDIN_FILENO) == 1;
}

bool ReadInputLine(Base::Secret& line) {
    bool any = false;
    char character = '\0';
    // Read byte by byte: this leaves the text after the line, and no buffer keeps a copy.
    for (;;) {
        const ssize_t count = read(STDIN_FILENO, &character, 1);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            return any;
        }
        any = true;
        if (character == '\n') {
            break;
        }
        line.Append(character);
    }
    if (!line.View().empty() && line.View().back() == '\r') {
        line.RemoveLast();
    }
    return true;
}

struct HiddenTyping::Mode {
    termios settings;
};

HiddenTyping::HiddenTyping() : before(nullptr) {
    termios settings{};
    if (tcgetattr(STDIN_FILENO, &settings) != 0) {
        return;
    }
    before = new Mode{settings};
    settings.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    // After these signals no code would restore the echo.
    settings.c_cc[VSUSP] = _POSIX_VDISABLE;
    settings.c_cc[VQUIT] = _POSIX_VDISABLE;
    tcsetattr(STDIN_FILENO, TCSAFLUSH, &settings);
}

HiddenTyping::~HiddenTyping() {
    if (before != nullptr) {
        tcsetattr(STDIN_FILENO, TCSADRAIN, &before->settings);
        delete before;
    }
}

}  // namespace App
