// SPDX-License-Identifier: Apache-2.0

#include "app/program/run_guarded.h"

#include <exception>
#include <string>

#include "app/output/json_output.h"
#include "app/program/messages.h"
#include "app/program/settings.h"
#include "app/running/cancellation.h"
#include "app/terminal/console.h"

namespace App {

namespace {

ExitStatus CouldNotRun(const std::string& problem) {
    Complain(problem);
    if (WritesJson()) {
        try {
            WriteOutput(ProblemJson(problem) + "\n");
        } catch (const Ending&) {
            return kCouldNotRun;  // the problem may be that the output cannot be written
        }
    }
    return kCouldNotRun;
}

}  // namespace

ExitStatus RunGuarded(const std::function<ExitStatus()>& run) {
    try {
        return run();
    } catch (const OutputClosed&) {
        return kFound;
    } catch (const Interrupted& interrupted) {
        Complain(interrupted.what());
        return kNoneFound;
    } catch (const Ending& problem) {
        return CouldNotRun(problem.what());
    } catch (const std::exception& error) {  // no thread, or no memory
        return CouldNotRun(std::string("the program cannot go on: ") + error.what());
    } catch (...) {
        return CouldNotRun("the program cannot go on: an exception of an unknown type");
    }
}

}  // namespace App
