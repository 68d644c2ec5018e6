// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterAdapter/printer_list.h"

#include <array>
#include <exception>
#include <iterator>
#include <string_view>

#include "base/text/utf8.h"
#include "host/PrinterAdapter/spooler.h"
#include "platform/LogHelper/KzLogger.h"
#include "platform/PrinterAdapter/PrinterListProblem.h"
#include "platform/compiler.h"

namespace PrinterAdapter {

namespace {

// The problem of the thread's last list. Trivially destructible: threads may end after the
// library's objects are destroyed.
thread_local std::array<char, 512> lastProblem{};

// A failing logger must not make its caller fail.
void LogProblem(std::string_view problem) {
    try {
        std::wstringstream line;
        line << L"installed printers: " << Base::FromUtf8(problem)
             << L"(PrinterListProvider::GetPrinterList)";
        KzLogger::GetInstance().Log(LOG_LEVEL_WARNING, line);
    }
    PLATFORM_CATCH_ALL {
        return;
    }
}

void ReportProblem(std::string_view problem) {
    Base::CopyUtf8(problem, lastProblem.data(), lastProblem.size());
    LogProblem(problem);
}

}  // namespace

void PrinterList::GetPrinterList(std::vector<PrinterSdk::PrinterProperty>& printers) {
    lastProblem = {};
    try {
        SpoolerAnswer answer = AskSpoolerInTime();
        if (!answer.note.empty()) {
            LogProblem(answer.note);
        }
        if (!answer.problem.empty()) {
            ReportProblem(answer.problem);
        }
        printers.insert(printers.end(), std::make_move_iterator(answer.printers.begin()),
                        std::make_move_iterator(answer.printers.end()));
    } catch (const std::exception& error) {
        ReportProblem(error.what());
    }
}

}  // namespace PrinterAdapter

int PrinterListProblem(char* text, std::size_t size) {
    const char* const problem = PrinterAdapter::lastProblem.data();
    Base::CopyUtf8(problem, text, size);
    return *problem == '\0' ? 0 : 1;
}
