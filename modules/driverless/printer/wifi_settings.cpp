// SPDX-License-Identifier: Apache-2.0

#include "modules/driverless/printer/wifi_settings.h"

#include "base/text/utf8.h"

namespace Driverless {

namespace {

constexpr std::size_t kLongestName = 32;
constexpr std::size_t kShortestPassPhrase = 8;
constexpr std::size_t kLongestPassPhrase = 63;

}  // namespace

std::string ProblemWith(const WifiSettings& settings) {
    const std::size_t length = settings.passPhrase.View().size();
    if (settings.name.empty()) {
        return "the network has no name";
    }
    if (settings.name.size() > kLongestName) {
        return "the network's name is longer than 32 bytes";
    }
    if (!Base::IsUtf8(settings.name)) {
        return "the network's name is not UTF-8";
    }
    if (length != 0 && length < kShortestPassPhrase) {
        return "the pass phrase is shorter than 8 bytes";
    }
    if (length > kLongestPassPhrase) {
        return "the pass phrase is longer than 63 bytes";
    }
    return {};
}

}  // namespace Driverless
