#include <exception>

#include "app/cancellation.h"
#include "app/command_line.h"
#include "app/console.h"
#include "app/crash_report.h"
#include "app/interrupt.h"
#include "app/messages.h"
#include "app/vendor_calls.h"

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
        App::EndProcess(status);  // a vendor is at work still
    }
    App::EndIsOwn();
    App::EndProcessSoon(status);
    return status;
}
