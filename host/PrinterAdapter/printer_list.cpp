#include "host/PrinterAdapter/printer_list.h"

#include <exception>
#include <iterator>
#include <string_view>

#include "host/PrinterAdapter/spooler.h"
#include "host/common/utf8.h"
#include "platform/LogHelper/KzLogger.h"
#include "platform/compiler.h"

namespace PrinterAdapter {

namespace {

// A logger that fails must not fail its caller.
void LogProblem(std::string_view problem) {
    try {
        std::wstringstream line;
        line << L"installed printers: " << Host::FromUtf8(problem)
             << L"(PrinterListProvider::GetPrinterList)";
        KzLogger::GetInstance().Log(LOG_LEVEL_WARNING, line);
    }
    PLATFORM_CATCH_ALL {
        return;
    }
}

}  // namespace

void PrinterList::GetPrinterList(std::vector<PrinterSdk::PrinterProperty>& printers) {
    try {
        SpoolerAnswer answer = AskSpoolerInTime();
        for (const std::string& problem : {answer.note, answer.problem}) {
            if (!problem.empty()) {
                LogProblem(problem);
            }
        }
        printers.insert(printers.end(), std::make_move_iterator(answer.printers.begin()),
                        std::make_move_iterator(answer.printers.end()));
    } catch (const std::exception& error) {
        LogProblem(error.what());
    }
}

}  // namespace PrinterAdapter
