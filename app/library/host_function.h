// SPDX-License-Identifier: Apache-2.0

#pragma once

namespace App {

// Looks up a function of one of the application's own libraries, for example "PrinterDiscoverAPI".
// Null when the library has no such function: a replacement may lack it.
void* HostFunction(const char* library, const char* name);

}  // namespace App
