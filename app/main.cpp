// SPDX-License-Identifier: Apache-2.0

#include <exception>

#include "app/command_line.h"
#include "app/program/messages.h"
#include "app/running/cancellation.h"
#include "app/running/vendor_calls.h"
#include "app/terminal/console.h"
#include "app/terminal/crash_report.h"
#include "app/terminal/interrupt.h"

namespace {

int RunProgram(int argc, char** argv) {
    try {
        App::PrepareConsole();
        return App::RunCommandLine(App::Arguments(argc, argv));
    } catch (const App::OutputClosed&) {
        return App::kFound;
    } catch (const std::exception& error) {
        App::Complain(error.what());
        return App::kCouldNotRun;
    }
}

}  // namespace

int main(int argc, char** argv) {
    App::ReportCrashes();
    const int status = RunProgram(argc, argv);
    if (App::Cancellation::GetInstance().LeavesWorkBehind() || App::AnyVendorIsCalled()) {
        App::EndProcess(status);  // a vendor is still running
    }
    App::EndIsOwn();
    App::EndProcessSoon(status);
    return status;
}
