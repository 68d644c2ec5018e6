// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterDiscoverAPI/wifi/join_request.h"

#include <algorithm>

#include "base/text/utf8.h"
#include "host/PrinterDiscoverAPI/wifi/network_name.h"
#include "host/PrinterDiscoverAPI/wifi/wifi_service.h"

namespace Host {

namespace {

constexpr std::size_t kShortestPassPhrase = 8;
constexpr std::size_t kLongestPassPhrase = 63;
constexpr std::size_t kKeyDigits = 64;

bool IsControl(char character) {
    return (character >= 0 && character < 0x20) || character == 0x7F;
}

bool IsHexadecimal(char character) {
    return std::string_view("0123456789abcdefABCDEF").find(character) != std::string_view::npos;
}

bool IsPassPhrase(std::string_view text) {
    if (text.size() == kKeyDigits) {
        return std::all_of(text.begin(), text.end(), IsHexadecimal);
    }
    return text.size() >= kShortestPassPhrase && text.size() <= kLongestPassPhrase &&
           std::none_of(text.begin(), text.end(), IsControl);
}

std::string CheckedName(std::wstring_view ssid) {
    const auto name = StrictUtf8(ssid);
    if (ssid.empty()) {
        throw WifiProblem("no network name");
    }
    if (!name || ssid.size() > kLongestNetworkName) {
        throw WifiProblem("no network can have that name");
    }
    return *name;
}

[[noreturn]] void ThrowNoPassPhrase() {
    throw WifiProblem("a pass phrase has 8 to 63 characters, or is 64 hexadecimal digits");
}

// Converts one character at a time: converting the whole text would leave copies in memory.
Base::Secret CheckedPassPhrase(std::wstring_view passPhrase) {
    Base::Secret text;
    for (std::size_t at = 0; at < passPhrase.size();) {
        const bool isReplacement = passPhrase[at] == static_cast<wchar_t>(Base::kReplacement);
        const char32_t codePoint = Base::NextCodePoint(passPhrase, at);
        if (codePoint == Base::kReplacement && !isReplacement) {
            ThrowNoPassPhrase();
        }
        Base::Utf8Character character = Base::EncodeUtf8(codePoint);
        const Base::WipeAtEnd wiped(character);
        for (const char byte : character.View()) {
            text.Append(byte);
        }
    }
    if (!text.View().empty() && !IsPassPhrase(text.View())) {
        ThrowNoPassPhrase();
    }
    return text;
}

// Why an access point does not fit a pass phrase, or none; empty when it fits. Without a pass
// phrase the system may have saved a protected network's secret.
std::string Obstacle(const AccessPoint& accessPoint, bool hasPassPhrase) {
    if (!accessPoint.infrastructure) {
        return "it is not an access point";
    }
    if (!hasPassPhrase || (accessPoint.protection & kAnyPersonal) != 0) {
        return {};
    }
    if ((accessPoint.protection & kEnterprise) != 0) {
        return "it wants an account, not a pass phrase";
    }
    if ((accessPoint.protection & kWep) != 0) {
        return "it is protected by WEP only, which is not supported";
    }
    return "it is open, and a pass phrase was given";
}

// Whether `one` is better than `other`, if both fit the request. Without a pass phrase, an open
// access point is better.
bool IsBetter(const AccessPoint& one, const AccessPoint& other, bool hasPassPhrase) {
    const bool oneIsOpen = (one.protection & ~kOpportunistic) == 0;
    const bool otherIsOpen = (other.protection & ~kOpportunistic) == 0;
    if (!hasPassPhrase && oneIsOpen != otherIsOpen) {
        return oneIsOpen;
    }
    return one.quality > other.quality;
}

}  // namespace

JoinRequest::JoinRequest(std::wstring_view wantedSsid, std::wstring_view givenPassPhrase)
    : ssid(wantedSsid), name(CheckedName(ssid)), passPhrase(CheckedPassPhrase(givenPassPhrase)) {}

bool JoinRequest::HasName(const AccessPoint& accessPoint) const {
    return accessPoint.name == name;
}

bool JoinRequest::IsShownAlike(const AccessPoint& accessPoint) const {
    return !IsText(accessPoint.name) && NetworkNameText(accessPoint.name) == ssid;
}

const AccessPoint* JoinRequest::Choose(const std::vector<AccessPoint>& accessPoints) const {
    const bool hasPassPhrase = !passPhrase.View().empty();
    const bool isThere = std::any_of(accessPoints.begin(), accessPoints.end(),
                                     [this](const AccessPoint& one) { return HasName(one); });
    const AccessPoint* best = nullptr;
    std::string obstacle;
    for (const AccessPoint& accessPoint : accessPoints) {
        if (isThere ? !HasName(accessPoint) : !IsShownAlike(accessPoint)) {
            continue;
        }
        const std::string its = Obstacle(accessPoint, hasPassPhrase);
        if (!its.empty()) {
            obstacle = its;
        } else if (best == nullptr || IsBetter(accessPoint, *best, hasPassPhrase)) {
            best = &accessPoint;
        }
    }
    if (best == nullptr && !obstacle.empty()) {
        throw WifiProblem(obstacle);
    }
    return best;
}

std::string JoinRequest::WithoutSecret(std::string_view text) const {
    return passPhrase.MaskedIn(text);
}

}  // namespace Host
