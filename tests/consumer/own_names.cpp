// SPDX-License-Identifier: Apache-2.0

// An application with functions that have the names of another system's: the headers take none of
// them.

#include <DeviceDiscover/DeviceDiscover.h>
#include <host/LogHelper/log_settings.h>
#include <host/PrinterUtil/vendor_list.h>

struct Symbol;

long Sleep(double);
Symbol* GetProcAddress(HINSTANCE, const char*);
void FreeLibrary(HINSTANCE);
using FARPROC = Symbol*;

long Sleep(double seconds) {
    return static_cast<long>(seconds);
}
Symbol* GetProcAddress(HINSTANCE, const char*) {
    return nullptr;
}
void FreeLibrary(HINSTANCE) {}

int main() {
    const FARPROC symbol = GetProcAddress(nullptr, "");
    FreeLibrary(nullptr);
    // A call that is meant for the other system's function would be ambiguous or wrong.
    return Sleep(0.5) == 0 && symbol == nullptr ? 0 : 1;
}
