// SPDX-License-Identifier: Apache-2.0

#include "app/terminal/interrupt.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>

#include "app/program/log_control.h"
#include "platform/os.h"
#include "platform/process_end.h"

namespace App {

namespace {

constexpr UINT kEndedByControlC = 0xC000013A;  // the system's own status

std::atomic<void (*)()> notifier = nullptr;
std::atomic<bool> interrupted = false;

// The system calls this on a separate thread.
BOOL WINAPI OnConsoleEvent(DWORD event) {
    const auto notify = notifier.exchange(nullptr);
    if (notify == nullptr) {
        // Not the default orderly exit, which may hang.
        TerminateProcess(GetCurrentProcess(), kEndedByControlC);
        return TRUE;
    }
    interrupted = true;
    notify();
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) {
        // The process ends when this returns: give it the time to stop.
        Sleep(INFINITE);
    }
    return TRUE;
}

}  // namespace

void NotifyOnInterrupt(void (*notify)()) {
    notifier = notify;
    SetConsoleCtrlHandler(OnConsoleEvent, TRUE);
}

// The system reports requests on a separate thread.
void LeaveInterruptsToOthers() {}

bool IsInterrupted() {
    return interrupted;
}

void EndProcessSoon(int) {}

void EndProcess(int status) {
    // One of those that are gone may have held a lock.
    if (!Platform::OtherThreadsAreGone()) {
        std::fflush(stdout);
        std::fflush(stderr);
        FlushLog();
    }
    // An exit ends the other threads wherever they are, and then lets every library take itself
    // down, which waits for ever when one of them held a lock.
    TerminateProcess(GetCurrentProcess(), static_cast<UINT>(status));
    std::abort();
}

}  // namespace App
