// SPDX-License-Identifier: Apache-2.0

#include <poll.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <iterator>

#include "app/program/log_control.h"
#include "app/terminal/crash_report.h"
#include "app/terminal/crash_system.h"

namespace App {

namespace {

struct Crash {
    int signal;
    const char* text;
};

constexpr Crash kCrashes[] = {{SIGSEGV, "the program crashed (SIGSEGV)"},
                              {SIGBUS, "the program crashed (SIGBUS)"},
                              {SIGILL, "the program crashed (SIGILL)"},
                              {SIGFPE, "the program crashed (SIGFPE)"},
                              {SIGABRT, "the program was aborted (SIGABRT)"}};

struct sigaction before[std::size(kCrashes)];
pid_t process = 0;
std::atomic<bool> told = false;
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler uses it");

// A stalled reader of standard error must not block the process.
void WriteToStandardError(const char* text, std::size_t length) {
    constexpr int milliseconds = 1000;
    pollfd errors{STDERR_FILENO, POLLOUT, 0};
    if (poll(&errors, 1, milliseconds) > 0) {
        [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, text, length);
    }
}

void OnCrash(int signal, siginfo_t* info, void*) {
    const int error = errno;
    const auto* const crash =
        std::find_if(std::begin(kCrashes), std::end(kCrashes),
                     [signal](const Crash& known) { return known.signal == signal; });
    if (told) {
        sleep(1);  // another thread, or this one, is writing the report
    }
    ReportEnd(crash->text);
    // The former handler does the rest: the fault occurs again when this returns.
    sigaction(signal, &before[crash - std::begin(kCrashes)], nullptr);
    if (info->si_code <= 0) {
        raise(signal);  // it was sent, for example by abort(), and would not occur again
    }
    errno = error;
}

// A separate stack for the handler, because the thread's own may be used up. A stack from a
// sanitizer is used if present.
class HandlersStack {
public:
    HandlersStack() {
        stack_t present{};
        if (sigaltstack(nullptr, &present) != 0 || (present.ss_flags & SS_DISABLE) == 0) {
            return;
        }
        void* const room = mmap(nullptr, kSize, PROT_READ | PROT_WRITE,
                                MAP_PRIVATE | MAP_ANONYMOUS | MAP_STACK, -1, 0);
        if (room == MAP_FAILED) {
            return;
        }
        stack_t own{};
        own.ss_sp = room;
        own.ss_size = kSize;
        if (sigaltstack(&own, nullptr) == 0) {
            memory = room;
        } else {
            munmap(room, kSize);
        }
    }
    ~HandlersStack() {
        if (memory != nullptr) {
            stack_t none{};
            none.ss_flags = SS_DISABLE;
            sigaltstack(&none, nullptr);
            munmap(memory, kSize);
        }
    }
    HandlersStack(const HandlersStack&) = delete;
    HandlersStack& operator=(const HandlersStack&) = delete;

private:
    static constexpr std::size_t kSize = std::size_t{128} * 1024;

    void* memory = nullptr;
};

}  // namespace

void CatchCrashes() {
    FindLogControl();
    process = getpid();
    for (std::size_t at = 0; at < std::size(kCrashes); ++at) {
        struct sigaction action {};
        action.sa_sigaction = OnCrash;
        action.sa_flags = SA_SIGINFO | SA_ONSTACK;
        sigaction(kCrashes[at].signal, &action, &before[at]);
    }
}

void CatchOtherExits(void (*handler)()) {
    static_cast<void>(std::at_quick_exit(handler));
}

bool WriteEnd(std::string_view text) {
    if (told.exchange(true)) {
        return false;
    }
    constexpr std::string_view name = "devicediscover: ";
    char line[2048];
    const std::size_t length = std::min(text.size(), sizeof line - name.size() - 1);
    name.copy(line, name.size());
    text.copy(line + name.size(), length);
    line[name.size() + length] = '\n';
    WriteToStandardError(line, name.size() + length + 1);
    WriteToLogInSignalHandler(text);
    return true;
}

bool IsOwnProcess() {
    return getpid() == process;
}

void ReportCrashesOfThisThread() {
    thread_local const HandlersStack stack;
}

}  // namespace App
