// SPDX-License-Identifier: Apache-2.0

#pragma once

namespace ScriptedVendor {

// Ends the process with status 0, unseen by std::atexit: std::quick_exit, or ExitProcess on
// Windows, with which the exit() of a C run-time library of the vendor's own would end.
[[noreturn]] void QuickExit();

// Ends the calling thread.
[[noreturn]] void EndThread();

}  // namespace ScriptedVendor
