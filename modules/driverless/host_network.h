#pragma once

namespace Driverless {

// Whether an interface of this host, other than the loopback, is up and has an IPv4 address.
bool IsOnNetwork();

}  // namespace Driverless
