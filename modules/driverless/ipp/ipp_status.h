// SPDX-License-Identifier: Apache-2.0

#pragma once

// The status of an IPP answer.

#include <cstdint>
#include <string>

namespace Driverless {

namespace IppStatus {

inline constexpr std::uint16_t kOk = 0x0000;
// The last successful status; statuses up to this one may carry a remark.
inline constexpr std::uint16_t kLastOk = 0x0007;
inline constexpr std::uint16_t kVersionNotSupported = 0x0503;

// Whether the printer requires a password, or forbids the request.
bool IsDenied(std::uint16_t status);

}  // namespace IppStatus

// "client-error-not-found (0x0406)"
std::string IppStatusName(std::uint16_t status);

}  // namespace Driverless
