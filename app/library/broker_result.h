// SPDX-License-Identifier: Apache-2.0

#pragma once

namespace App {

// The library's own results when it could not call a vendor. A vendor may return the same values.
inline constexpr int kNothingToCall = -1;
inline constexpr int kNotInitialised = -2;

}  // namespace App
