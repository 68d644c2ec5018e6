// SPDX-License-Identifier: Apache-2.0

#include <atomic>
#include <csignal>

#include "app/program/log_control.h"
#include "app/terminal/bounded_write_windows.h"
#include "app/terminal/crash_report.h"
#include "app/terminal/crash_system.h"
#include "platform/os.h"
#include "platform/process_end.h"

namespace App {

namespace {

std::atomic<bool> told = false;
std::atomic<void (*)()> exitHandler = nullptr;

const char* TextOf(DWORD code) {
    switch (code) {
        case EXCEPTION_ACCESS_VIOLATION:
            return "the program crashed (access violation)";
        case EXCEPTION_STACK_OVERFLOW:
            return "the program crashed (stack overflow)";
        case EXCEPTION_ILLEGAL_INSTRUCTION:
        case EXCEPTION_PRIV_INSTRUCTION:
            return "the program crashed (illegal instruction)";
        case EXCEPTION_INT_DIVIDE_BY_ZERO:
            return "the program crashed (division by zero)";
        default:
            return "the program crashed";
    }
}

LONG WINAPI OnCrash(EXCEPTION_POINTERS* exception) {
    ReportEnd(TextOf(exception->ExceptionRecord->ExceptionCode));
    return EXCEPTION_CONTINUE_SEARCH;
}

// The run-time library ends the program when this returns.
void OnAbort(int) {
    ReportEnd("the program was aborted");
}

// The system calls this at the end of each thread that has a value in this place, and first of all
// when the process ends by ExitProcess, on the thread that called it: the others are gone by then.
void NTAPI OnEndOfThread(void*) {
    const auto handler = exitHandler.load();
    if (handler != nullptr && Platform::OtherThreadsAreGone() && !told) {
        handler();
    }
}

DWORD EndOfThreads() {
    static const DWORD place = FlsAlloc(OnEndOfThread);
    return place;
}

}  // namespace

void CatchCrashes() {
    FindLogControl();
    SetUnhandledExceptionFilter(OnCrash);
    std::signal(SIGABRT, OnAbort);
}

void CatchOtherExits(void (*handler)()) {
    exitHandler = handler;
}

bool WriteEnd(std::string_view text) {
    if (told.exchange(true)) {
        return false;
    }
    const HANDLE errors = GetStdHandle(STD_ERROR_HANDLE);
    for (const std::string_view part :
         {std::string_view("devicediscover: "), text, std::string_view("\r\n")}) {
        WriteInTime(errors, part);
    }
    WriteToLogInSignalHandler(text);
    return true;
}

bool IsOwnProcess() {
    return true;
}

void ReportCrashesOfThisThread() {
    ULONG room = 64 * 1024;  // left for the handler when the stack is used up
    SetThreadStackGuarantee(&room);
    FlsSetValue(EndOfThreads(), &told);
}

}  // namespace App
