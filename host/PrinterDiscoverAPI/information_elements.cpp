#include "host/PrinterDiscoverAPI/information_elements.h"

#include <cstddef>
#include <cstdint>

#include "host/PrinterDiscoverAPI/access_point.h"

namespace Host {

namespace {

// Kinds of element.
constexpr unsigned kRsn = 48;
constexpr unsigned kVendor = 221;

constexpr std::size_t kHeaderSize = 2;
constexpr std::size_t kVersionSize = 2;
constexpr std::size_t kSuiteSize = 4;

constexpr std::string_view kWpaType("\x00\x50\xF2\x01", 4);
constexpr std::string_view kWpaSuites("\x00\x50\xF2", 3);
constexpr std::string_view kRsnSuites("\x00\x0F\xAC", 3);

unsigned ByteAt(std::string_view bytes, std::size_t at) {
    return static_cast<unsigned char>(bytes[at]);
}

// Takes a list of suites, which starts with their number, from the front of `rest`; empty when it
// is cut off.
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

// The key management suites of a description of protection, which starts behind its version.
std::string_view KeyManagement(std::string_view description) {
    if (description.size() < kVersionSize + kSuiteSize) {
        return {};
    }
    std::string_view rest = description.substr(kVersionSize + kSuiteSize);
    TakeSuites(rest);  // the pairwise ciphers
    return TakeSuites(rest);
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
        return SuitesProtection(KeyManagement(body), kRsnSuites, RsnProtection);
    }
    if (kind == kVendor && body.starts_with(kWpaType)) {
        return SuitesProtection(KeyManagement(body.substr(kWpaType.size())), kWpaSuites,
                                WpaProtection);
    }
    return 0;
}

}  // namespace

unsigned ProtectionOf(std::string_view elements, bool isPrivate) {
    unsigned protection = 0;
    while (elements.size() >= kHeaderSize) {
        const unsigned kind = ByteAt(elements, 0);
        const std::size_t size = ByteAt(elements, 1);
        elements.remove_prefix(kHeaderSize);
        if (size > elements.size()) {
            break;
        }
        protection |= ElementProtection(kind, elements.substr(0, size));
        elements.remove_prefix(size);
    }
    return protection == 0 && isPrivate ? static_cast<unsigned>(kWep) : protection;
}

}  // namespace Host
