#pragma once

// The status of an IPP answer.

#include <cstdint>
#include <string>

namespace Driverless {

namespace IppStatus {

inline constexpr std::uint16_t kOk = 0x0000;
// Up to this one a request was granted, if with a remark.
inline constexpr std::uint16_t kLastOk = 0x0007;
inline constexpr std::uint16_t kVersionNotSupported = 0x0503;

// The printer wants to know who asks, or does not allow it.
bool IsDenied(std::uint16_t status);

}  // namespace IppStatus

// "client-error-not-found (0x0406)"
std::string IppStatusName(std::uint16_t status);

}  // namespace Driverless
