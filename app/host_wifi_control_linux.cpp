#include <dlfcn.h>

#include "app/host_wifi_control.h"

namespace App {

void* HostWifiFunction(const char* name) {
    return dlsym(RTLD_DEFAULT, name);
}

}  // namespace App
