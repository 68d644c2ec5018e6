// SPDX-License-Identifier: Apache-2.0

#include "modules/driverless/common/diagnostics.h"

#include <fcntl.h>
#include <pthread.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <mutex>
#include <set>
#include <system_error>

#include "base/environment.h"
#include "base/text/display_text.h"

namespace Driverless {

namespace {

// A closed pipe does not end the process, whatever its SIGPIPE handling: the signal goes to the
// writing thread, which consumes it.
void WriteLine(int file, const std::string& message) {
    const std::string line = "driverless: " + Base::CleanText(message) + "\n";
    sigset_t brokenPipe;
    sigset_t before;
    sigset_t pending;
    sigemptyset(&brokenPipe);
    sigaddset(&brokenPipe, SIGPIPE);
    sigpending(&pending);
    const bool alreadyPending = sigismember(&pending, SIGPIPE) == 1;
    pthread_sigmask(SIG_BLOCK, &brokenPipe, &before);
    if (write(file, line.data(), line.size()) < 0 && errno == EPIPE && !alreadyPending) {
        const timespec now{};
        sigtimedwait(&brokenPipe, nullptr, &now);
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

// A FIFO without a reader is refused at once, and a slow reader loses lines: the host never waits.
int OpenLogFile() {
    const auto [path, ignored] = Base::ReadEnvironment("DRIVERLESS_LOG");
    if (!ignored.empty()) {
        WriteLine(STDERR_FILENO, ignored);
    }
    if (path.empty()) {
        return -1;
    }
    const int file =
        open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_NONBLOCK | O_CLOEXEC, 0600);
    if (file < 0) {
        const std::string reason = std::generic_category().message(errno);
        WriteLine(STDERR_FILENO, "cannot write diagnostics to " + path + ": " + reason +
                                     "; they go to standard error");
    }
    return file;
}

// Opened on first use and never closed: lines may be written until the process is gone.
int LogFile() {
    static const int file = OpenLogFile();
    return file;
}

// Never destroyed: settings may be read while the process ends.
bool IsFirstWordAbout(const std::string& name) {
    static std::mutex& mutex = *new std::mutex;
    static std::set<std::string>& told = *new std::set<std::string>;
    const std::lock_guard lock(mutex);
    return told.insert(name).second;
}

}  // namespace

std::string ReadSetting(const char* name) {
    auto [text, ignored] = Base::ReadEnvironment(name);
    if (!ignored.empty() && IsFirstWordAbout(name)) {
        ReportProblem(ignored);
    }
    return text;
}

std::chrono::seconds ReadSeconds(const char* name, long normal, long longest) {
    const std::string text = ReadSetting(name);
    char* end = nullptr;
    const long seconds = std::strtol(text.c_str(), &end, 10);
    const bool valid = *end == '\0' && seconds >= 1 && seconds <= longest;
    return std::chrono::seconds(valid ? seconds : normal);
}

void ReportProblem(const std::string& message) {
    const int file = LogFile();
    WriteLine(file < 0 ? STDERR_FILENO : file, message);
}

void ReportDetail(const std::string& message) {
    const int file = LogFile();
    if (file >= 0) {
        WriteLine(file, message);
    }
}

}  // namespace Driverless
