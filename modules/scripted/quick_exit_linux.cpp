#include "quick_exit.h"

#include <cstdlib>

namespace ScriptedVendor {

void QuickExit() {
    std::quick_exit(0);
}

}  // namespace ScriptedVendor
