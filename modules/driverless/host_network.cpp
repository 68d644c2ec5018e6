#include "host_network.h"

#include <ifaddrs.h>
#include <net/if.h>
#include <sys/socket.h>

namespace Driverless {

bool IsOnNetwork() {
    ifaddrs* interfaces = nullptr;
    if (getifaddrs(&interfaces) != 0) {
        return true;  // not known to be off it
    }
    bool found = false;
    for (const ifaddrs* one = interfaces; one != nullptr && !found; one = one->ifa_next) {
        const bool up = (one->ifa_flags & IFF_UP) != 0 && (one->ifa_flags & IFF_RUNNING) != 0;
        const bool loopback = (one->ifa_flags & IFF_LOOPBACK) != 0;
        found = up && !loopback && one->ifa_addr != nullptr && one->ifa_addr->sa_family == AF_INET;
    }
    freeifaddrs(interfaces);
    return found;
}

bool IsLoopback(int interface) {
    return interface > 0 && static_cast<unsigned>(interface) == if_nametoindex("lo");
}

}  // namespace Driverless
