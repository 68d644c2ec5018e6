#include "quick_exit.h"

#include <cstdlib>

namespace ScriptedVendor {

void QuickExit() {
    std::exit(0);
}

}  // namespace ScriptedVendor
