#pragma once

namespace Driverless {

// Whether an interface of this host, other than the loopback, is up and has an IPv4 address.
bool IsOnNetwork();

// Whether this is the number of the interface through which the host reaches itself.
bool IsLoopback(int interface);

}  // namespace Driverless
