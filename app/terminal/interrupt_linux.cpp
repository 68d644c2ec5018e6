// SPDX-License-Identifier: Apache-2.0

#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <system_error>
#include <thread>

#include "app/outcome/problem.h"
#include "app/program/log_control.h"
#include "app/terminal/crash_system.h"
#include "app/terminal/interrupt.h"

namespace App {

namespace {

// A sanitizer may need some time at process exit.
constexpr std::chrono::seconds kExitLimit{10};

constexpr int kRequests[]{SIGINT, SIGTERM, SIGHUP};

int wakeUp[2];
std::atomic<bool> requested = false;
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler uses it");

void OnSignal(int signal) {
    if (requested.exchange(true)) {
        std::signal(signal, SIG_DFL);
        raise(signal);
        return;
    }
    const int error = errno;
    [[maybe_unused]] const ssize_t written = write(wakeUp[1], "", 1);
    errno = error;
}

void Catch(int signal) {
    struct sigaction action {};
    sigaction(signal, nullptr, &action);
    if (action.sa_handler != SIG_IGN) {
        action = {};
        action.sa_handler = OnSignal;
        action.sa_flags = SA_RESTART;
        sigaction(signal, &action, nullptr);
    }
}

}  // namespace

void NotifyOnInterrupt(void (*notify)()) {
    if (pipe2(wakeUp, O_CLOEXEC) != 0) {
        throw Problem(std::string("cannot watch for Ctrl-C: ") + std::strerror(errno));
    }
    // A signal handler may do very little, so it wakes a thread.
    std::thread([notify] {
        LeaveInterruptsToOthers();
        char byte;
        while (read(wakeUp[0], &byte, 1) < 0 && errno == EINTR) {
        }
        notify();
    }).detach();
    for (const int signal : kRequests) {
        Catch(signal);
    }
}

void LeaveInterruptsToOthers() {
    sigset_t requests;
    sigemptyset(&requests);
    for (const int signal : kRequests) {
        sigaddset(&requests, signal);
    }
    pthread_sigmask(SIG_BLOCK, &requests, nullptr);
}

bool IsInterrupted() {
    return requested;
}

void EndProcessSoon(int status) {
    try {
        std::thread([status] {
            LeaveInterruptsToOthers();
            std::this_thread::sleep_for(kExitLimit);
            WriteEnd("a module keeps the program from ending; the program no longer waits for it");
            EndProcess(status);
        }).detach();
    } catch (const std::system_error&) {
        return;  // then it ends when the libraries let it
    }
}

void EndProcess(int status) {
    std::fflush(stdout);
    std::fflush(stderr);
    FlushLog();
    std::_Exit(status);
}

}  // namespace App
