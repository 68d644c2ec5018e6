// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>

#include "platform/os.h"

namespace PrinterUtil {

struct FreeLocal {
    void operator()(void* memory) const { LocalFree(memory); }
};

// What the system gave for LocalFree.
using LocalMemory = std::unique_ptr<void, FreeLocal>;

}  // namespace PrinterUtil
