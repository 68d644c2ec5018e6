#include <windows.h>

#include <cstdlib>

#include "ways_to_end.h"

namespace ScriptedVendor {

void QuickExit() {
    std::exit(0);
}

void EndThread() {
    ExitThread(0);
}

}  // namespace ScriptedVendor
