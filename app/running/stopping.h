#pragma once

#include <string>

namespace App {

// What the program says while it ends at the user's request: whom it waits for.
std::string StoppingText();

// Says so on standard error when the program is still there after a moment; while a live table is
// on the terminal, its status says so.
void SayThatItStops();

}  // namespace App
