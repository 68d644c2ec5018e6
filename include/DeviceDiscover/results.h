// SPDX-License-Identifier: Apache-2.0

#pragma once

// The library's own results. 0 means success. Every other value is a vendor's own result; a vendor
// may return these values, too.

namespace PrinterDeviceDiscoverSdk {

// No vendor could be called: none was found, or its module lacks the entry point.
inline constexpr int kNothingToCall = -1;

// The application named no vendor; the operation did nothing.
inline constexpr int kNotInitialised = -2;

// A scan was started without a callback.
inline constexpr int kNoCallback = -3;

// The vendor failed, where its own result is not returned. The same value as kNothingToCall.
inline constexpr int kVendorFailed = -1;

}  // namespace PrinterDeviceDiscoverSdk
