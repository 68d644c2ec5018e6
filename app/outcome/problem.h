// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <stdexcept>
#include <string>

namespace App {

// Why a command could not run. The text names the problem and its place, and says what to do next.
class Problem : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// The user's input cannot be used.
class WrongInput : public Problem {
public:
    using Problem::Problem;
};

}  // namespace App
