// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

namespace App {

// The text while the program ends at the user's request: what it waits for.
std::string StoppingText();

// Writes that text to standard error if the program has not ended after a moment, unless a live
// table shows it in its status.
void SayThatItStops();

}  // namespace App
