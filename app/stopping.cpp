#include "app/stopping.h"

#include <chrono>
#include <thread>

#include "app/messages.h"
#include "app/table_drawing.h"
#include "app/vendor_calls.h"

namespace App {

std::string StoppingText() {
    const std::string names = NamesOf(AwaitedCalls());
    return "stopping" + (names.empty() ? "" : ", waiting for " + names) +
           "; another Ctrl-C ends the program at once.";
}

void SayThatItStops() {
    // Mostly the program has ended by then, which says it better.
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    if (!TableDrawing::IsOnTerminal()) {
        Complain(StoppingText());
    }
}

}  // namespace App
