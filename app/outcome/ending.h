// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <stdexcept>

namespace App {

// The base of all that ends a command before its work is done. The text says why.
class Ending : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace App
