#include "app/host_wifi_control.h"
#include "platform/os.h"

namespace App {

void* HostWifiFunction(const char* name) {
    const HMODULE library = GetModuleHandleW(L"PrinterDiscoverAPI.dll");
    return library == nullptr ? nullptr : reinterpret_cast<void*>(GetProcAddress(library, name));
}

}  // namespace App
