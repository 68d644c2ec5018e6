// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterDiscoverAPI/wifi/windows/information_elements.h"

#include <cstddef>
#include <cstdint>

#include "host/PrinterDiscoverAPI/wifi/access_point.h"

namespace Host {

namespace {

// Element ids.
constexpr unsigned kRsn = 48;
constexpr unsigned kVendor = 221;

constexpr std::size_t kHeaderSize = 2;
constexpr std::size_t kVersionSize = 2;
constexpr std::size_t kSuiteSize = 4;

constexpr std::string_view kWpaType("\x00\x50\xF2\x01", 4);
constexpr std::string_view kWpaSuites("\x00\x50\xF2", 3);
constexpr std::string_view kWpaAes("\x00\x50\xF2\x04", 4);
constexpr std::string_view kRsnSuites("\x00\x0F\xAC", 3);

unsigned ByteAt(std::string_view bytes, std::size_t at) {
    return static_cast<unsigned char>(bytes[at]);
}

// Takes a list of suites, which starts with their number, from the front of `rest`; empty when
// truncated.
std::string_view TakeSuites(std::string_view& rest) {
    if (rest.size() < 2) {
        return {};
    }
    const std::size_t size = (ByteAt(rest, 0) + 256U * ByteAt(rest, 1)) * kSuiteSize;
    rest.remove_prefix(2);
    if (size > rest.size()) {
        rest = {};
        return {};
    }
    const std::string_view suites = rest.substr(0, size);
    rest.remove_prefix(size);
    return suites;
}

// The protection offered by an element, which starts with its version and the group cipher.
struct Offer {
    std::string_view pairwiseCiphers;
    std::string_view keyManagement;
};

Offer OfferIn(std::string_view description) {
    if (description.size() < kVersionSize + kSuiteSize) {
        return {};
    }
    std::string_view rest = description.substr(kVersionSize + kSuiteSize);
    const std::string_view ciphers = TakeSuites(rest);
    return {ciphers, TakeSuites(rest)};
}

unsigned RsnProtection(unsigned suite) {
    switch (suite) {
        case 2:  // pass phrase; with fast transition; with SHA-256
        case 4:
        case 6:
            return kWpa2Personal;
        case 8:  // simultaneous authentication of equals, also with fast transition or longer keys
        case 9:
        case 24:
        case 25:
            return kWpa3Personal;
        case 18:
            return kOpportunistic;
        default:
            return kEnterprise;
    }
}

unsigned WpaProtection(unsigned suite) {
    return suite == 2 ? kWpaPersonal : kEnterprise;
}

unsigned SuitesProtection(std::string_view suites, std::string_view known,
                          unsigned (*protectionOf)(unsigned)) {
    unsigned protection = 0;
    for (; suites.size() >= kSuiteSize; suites.remove_prefix(kSuiteSize)) {
        if (suites.starts_with(known)) {
            protection |= protectionOf(ByteAt(suites, kSuiteSize - 1));
        }
    }
    return protection;
}

unsigned ElementProtection(unsigned kind, std::string_view body) {
    if (kind == kRsn) {
        return SuitesProtection(OfferIn(body).keyManagement, kRsnSuites, RsnProtection);
    }
    if (kind == kVendor && body.starts_with(kWpaType)) {
        return SuitesProtection(OfferIn(body.substr(kWpaType.size())).keyManagement, kWpaSuites,
                                WpaProtection);
    }
    return 0;
}

bool HasAesForWpa(unsigned kind, std::string_view body) {
    if (kind != kVendor || !body.starts_with(kWpaType)) {
        return false;
    }
    std::string_view ciphers = OfferIn(body.substr(kWpaType.size())).pairwiseCiphers;
    for (; ciphers.size() >= kSuiteSize; ciphers.remove_prefix(kSuiteSize)) {
        if (ciphers.starts_with(kWpaAes)) {
            return true;
        }
    }
    return false;
}

// Calls `take` with the id and the body of each complete element.
template <class Take>
void ForEachElement(std::string_view elements, Take take) {
    while (elements.size() >= kHeaderSize) {
        const unsigned kind = ByteAt(elements, 0);
        const std::size_t size = ByteAt(elements, 1);
        elements.remove_prefix(kHeaderSize);
        if (size > elements.size()) {
            return;
        }
        take(kind, elements.substr(0, size));
        elements.remove_prefix(size);
    }
}

}  // namespace

bool TakesAesWithWpa(std::string_view elements) {
    bool takes = false;
    ForEachElement(elements, [&](unsigned kind, std::string_view body) {
        takes = takes || HasAesForWpa(kind, body);
    });
    return takes;
}

unsigned ProtectionOf(std::string_view elements, bool isPrivate) {
    unsigned protection = 0;
    ForEachElement(elements, [&](unsigned kind, std::string_view body) {
        protection |= ElementProtection(kind, body);
    });
    return protection == 0 && isPrivate ? static_cast<unsigned>(kWep) : protection;
}

}  // namespace Host
