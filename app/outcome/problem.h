#pragma once

#include <stdexcept>
#include <string>

namespace App {

// Why a command could not run. The text names what and where, and says what to do next.
class Problem : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// What the user gave cannot be used.
class WrongInput : public Problem {
public:
    using Problem::Problem;
};

}  // namespace App
