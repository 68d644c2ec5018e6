#pragma once

namespace App {

// A function of one of the application's own libraries, "PrinterDiscoverAPI" for one; null where
// the library has none of that name: another vendor's may not.
void* HostFunction(const char* library, const char* name);

}  // namespace App
