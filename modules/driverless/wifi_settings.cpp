#include "wifi_settings.h"

#include <string.h>

#include "text.h"

namespace Driverless {

namespace {

constexpr std::size_t kLongestName = 32;
constexpr std::size_t kShortestPassPhrase = 8;
constexpr std::size_t kLongestPassPhrase = 63;

constexpr std::string_view kMask = "***";

}  // namespace

PassPhrase::~PassPhrase() {
    explicit_bzero(text.data(), text.size());
}

std::string PassPhrase::MaskedIn(std::string words) const {
    if (text.empty()) {
        return words;
    }
    for (std::size_t at = words.find(text); at != std::string::npos;
         at = words.find(text, at + kMask.size())) {
        words.replace(at, text.size(), kMask);
    }
    return words;
}

std::string ProblemWith(const WifiSettings& settings) {
    const std::size_t length = settings.passPhrase.Text().size();
    if (settings.name.empty()) {
        return "the network has no name";
    }
    if (settings.name.size() > kLongestName) {
        return "the network's name is longer than 32 bytes";
    }
    if (!IsUtf8(settings.name)) {
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
