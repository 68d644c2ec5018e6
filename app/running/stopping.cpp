// SPDX-License-Identifier: Apache-2.0

#include "app/running/stopping.h"

#include <chrono>
#include <thread>

#include "app/program/messages.h"
#include "app/running/vendor_calls.h"
#include "app/terminal/table_drawing.h"

namespace App {

std::string StoppingText() {
    const std::string names = NamesOf(AwaitedCalls());
    return "stopping" + (names.empty() ? "" : ", waiting for " + names) +
           "; another Ctrl-C ends the program at once.";
}

void SayThatItStops() {
    // Usually the program has ended by then, and no message is needed.
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    if (!TableDrawing::IsOnTerminal()) {
        Complain(StoppingText());
    }
}

}  // namespace App
