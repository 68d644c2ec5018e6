#pragma once

namespace App {

// What the library itself answers when it could not ask a vendor. A vendor may answer so too.
inline constexpr int kNothingToCall = -1;
inline constexpr int kNotInitialised = -2;

}  // namespace App
