// SPDX-License-Identifier: Apache-2.0

#include "app/command_line.h"
#include "app/program/run_guarded.h"
#include "app/running/cancellation.h"
#include "app/running/vendor_calls.h"
#include "app/terminal/console.h"
#include "app/terminal/crash_report.h"
#include "app/terminal/interrupt.h"

int main(int argc, char** argv) {
    App::ReportCrashes();
    const int status = App::RunGuarded([&] {
        App::PrepareConsole();
        return App::RunCommandLine(App::Arguments(argc, argv));
    });
    if (App::Cancellation::GetInstance().LeavesWorkBehind() || App::AnyVendorIsCalled()) {
        App::EndProcess(status);  // a vendor is still running
    }
    App::EndIsOwn();
    App::EndProcessSoon(status);
    return status;
}
