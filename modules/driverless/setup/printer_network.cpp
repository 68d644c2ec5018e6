// SPDX-License-Identifier: Apache-2.0

#include "modules/driverless/setup/printer_network.h"

#include <algorithm>
#include <array>
#include <string>

#include "base/text/ascii_case.h"
#include "modules/driverless/common/diagnostics.h"

namespace Driverless {

namespace {

constexpr std::array<std::string_view, 2> kWords{"print", "setup"};

// Whether the name matches the pattern, in which "*" matches any text.
bool Matches(std::string_view name, std::string_view pattern) {
    std::size_t at = 0;
    std::size_t tried = 0;
    std::size_t next = 0;
    std::size_t star = std::string_view::npos;
    while (at < name.size()) {
        if (next < pattern.size() && pattern[next] == '*') {
            star = next++;
            tried = at;
        } else if (next < pattern.size() && pattern[next] == name[at]) {
            ++next;
            ++at;
        } else if (star != std::string_view::npos) {
            next = star + 1;
            at = ++tried;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', next) == std::string_view::npos;
}

bool MatchesOneOf(std::string_view name, std::string_view patterns) {
    while (!patterns.empty()) {
        const std::string_view pattern = patterns.substr(0, patterns.find(';'));
        if (!pattern.empty() && Matches(name, pattern)) {
            return true;
        }
        patterns.remove_prefix(std::min(pattern.size() + 1, patterns.size()));
    }
    return false;
}

}  // namespace

bool IsWifiDirect(std::string_view name) {
    return name.starts_with("DIRECT-");
}

bool MayBePrintersOwn(std::string_view name, std::string_view patterns) {
    const std::string lower = Base::LowerCase(name);
    const bool says = std::any_of(kWords.begin(), kWords.end(), [&](std::string_view word) {
        return lower.find(word) != std::string::npos;
    });
    return !name.empty() && (IsWifiDirect(name) || says || MatchesOneOf(name, patterns));
}

bool MayBePrintersOwn(std::string_view name) {
    return MayBePrintersOwn(name, ReadSetting("DEVICEDISCOVER_PRINTER_NETWORKS"));
}

}  // namespace Driverless
