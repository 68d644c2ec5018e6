// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <string_view>

namespace PrinterAdapter {

// Neither USB nor network (for example a file), or unknown.
inline constexpr std::int32_t kConnectTypeOther = 0;

// The value of PrinterProperty::connectType for a device URI with this scheme.
std::int32_t ConnectTypeOfScheme(std::string_view scheme);

// The same for a Windows port, from its name and its port monitor's description, which may be in
// any language as long as it names the protocol.
std::int32_t ConnectTypeOfPort(std::wstring_view name, std::wstring_view description);

}  // namespace PrinterAdapter
