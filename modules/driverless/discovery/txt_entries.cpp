// SPDX-License-Identifier: Apache-2.0

#include "modules/driverless/discovery/txt_entries.h"

#include <algorithm>
#include <array>

#include "base/text/ascii_case.h"

namespace Driverless {

namespace {

constexpr std::array kKnownKeys{"uuid", "ty", "usb_mfg", "usb_mdl", "product", "rp"};

}  // namespace

void AddTxtEntry(std::map<std::string, std::string>& entries, std::string_view text) {
    const std::size_t end = text.find('=');
    const std::string key = Base::LowerCase(text.substr(0, end));
    if (std::find(kKnownKeys.begin(), kKnownKeys.end(), key) != kKnownKeys.end()) {
        entries.emplace(key,
                        end == std::string_view::npos ? std::string_view() : text.substr(end + 1));
    }
}

}  // namespace Driverless
