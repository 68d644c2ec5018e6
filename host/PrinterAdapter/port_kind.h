#pragma once

#include <cstdint>
#include <string_view>

namespace PrinterAdapter {

// Neither on USB nor on the network, as a file, or not known.
inline constexpr std::int32_t kConnectTypeOther = 0;

// How a printer with a device URI of that scheme is attached, as PrinterProperty::connectType says.
std::int32_t ConnectTypeOfScheme(std::string_view scheme);

// The same for a printer on a Windows port, from the port's name and from what its port monitor
// says of it, the latter in any language as long as it names the protocol.
std::int32_t ConnectTypeOfPort(std::wstring_view name, std::wstring_view description);

}  // namespace PrinterAdapter
