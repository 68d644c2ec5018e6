// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <optional>
#include <string>

namespace App {

// What vendors' results and numbers mean, in the words of the vendor list, which is read at the
// first question. `entryPoint` returned the result; empty: any entry point. `vendor` returned it;
// empty: any vendor.

// "the vendor's result N", with its meaning if known.
std::string VendorsResult(int result, const std::string& vendor, const std::string& entryPoint);

// Whether the result answers the question. False when the vendor could not find out.
bool IsAnswer(int result, const std::string& vendor, const std::string& entryPoint);

// Whether the result means that the printer accepted the network but may not have joined.
bool IsUnconfirmed(int result, const std::string& vendor, const std::string& entryPoint);

// What the vendor says about this result of this very entry point; empty when it says nothing.
std::string MeaningOf(int result, const std::string& vendor, const std::string& entryPoint);

// A line for each failure of this very entry point that the vendor explains, in the order of the
// results. Empty when it explains none.
std::string MeaningsOf(const std::string& vendor, const std::string& entryPoint);

// The name of a vendor's kind of service, if the vendor gives it one.
std::optional<std::string> ServiceName(int service, const std::string& vendor);

}  // namespace App
