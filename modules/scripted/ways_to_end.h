#pragma once

namespace ScriptedVendor {

// std::quick_exit(0), or std::exit(0) where the system has no such thing.
[[noreturn]] void QuickExit();

// Ends the calling thread.
[[noreturn]] void EndThread();

}  // namespace ScriptedVendor
