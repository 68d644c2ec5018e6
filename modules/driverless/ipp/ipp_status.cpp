// SPDX-License-Identifier: Apache-2.0

#include "modules/driverless/ipp/ipp_status.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace Driverless {

namespace {

struct Name {
    std::uint16_t status;
    const char* text;
};

// The statuses with which printers refuse our requests.
constexpr std::array kNames{
    Name{0x0000, "successful-ok"},
    Name{0x0001, "successful-ok-ignored-or-substituted-attributes"},
    Name{0x0002, "successful-ok-conflicting-attributes"},
    Name{0x0400, "client-error-bad-request"},
    Name{0x0401, "client-error-forbidden"},
    Name{0x0402, "client-error-not-authenticated"},
    Name{0x0403, "client-error-not-authorized"},
    Name{0x0404, "client-error-not-possible"},
    Name{0x0405, "client-error-timeout"},
    Name{0x0406, "client-error-not-found"},
    Name{0x0407, "client-error-gone"},
    Name{0x040B, "client-error-attributes-or-values-not-supported"},
    Name{0x040D, "client-error-charset-not-supported"},
    Name{0x040E, "client-error-conflicting-attributes"},
    Name{0x0413, "client-error-attributes-not-settable"},
    Name{0x0500, "server-error-internal-error"},
    Name{0x0501, "server-error-operation-not-supported"},
    Name{0x0502, "server-error-service-unavailable"},
    Name{0x0503, "server-error-version-not-supported"},
    Name{0x0504, "server-error-device-error"},
    Name{0x0505, "server-error-temporary-error"},
    Name{0x0506, "server-error-not-accepting-jobs"},
    Name{0x0507, "server-error-busy"},
};

}  // namespace

bool IppStatus::IsDenied(std::uint16_t status) {
    return status >= 0x0401 && status <= 0x0403;
}

std::string IppStatusName(std::uint16_t status) {
    const auto* const found = std::find_if(
        kNames.begin(), kNames.end(), [status](const Name& name) { return name.status == status; });
    std::array<char, 8> number{};
    std::snprintf(number.data(), number.size(), "0x%04X", static_cast<unsigned>(status));
    const std::string text = found == kNames.end() ? "IPP status" : found->text;
    return text + " (" + number.data() + ")";
}

}  // namespace Driverless
