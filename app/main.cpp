#include <exception>

#include "app/command_line.h"
#include "app/console.h"
#include "app/messages.h"

int main(int argc, char** argv) {
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
