// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "app/outcome/ending.h"

namespace App {

// Why a command could not run. The text names the problem and its place, and says what to do next.
class Problem : public Ending {
public:
    using Ending::Ending;
};

// The user's input cannot be used.
class WrongInput : public Problem {
public:
    using Problem::Problem;
};

}  // namespace App
