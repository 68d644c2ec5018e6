// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <initializer_list>
#include <string>

namespace HostTest {

// Information elements as access points broadcast them.
inline std::string InformationElement(unsigned char kind, const std::string& body) {
    return std::string{static_cast<char>(kind), static_cast<char>(body.size())} + body;
}

// A description of protection: version, group cipher, pairwise ciphers, key management suites.
inline std::string Description(const std::string& owner,
                               std::initializer_list<unsigned char> keyManagement,
                               std::initializer_list<unsigned char> ciphers = {4}) {
    std::string body = std::string("\x01\x00", 2) + owner + '\x02';
    for (const auto& suites : {ciphers, keyManagement}) {
        body += static_cast<char>(suites.size());
        body += '\0';
        for (const unsigned char suite : suites) {
            body += owner + static_cast<char>(suite);
        }
    }
    return body;
}

inline std::string Rsn(std::initializer_list<unsigned char> keyManagement) {
    return InformationElement(48, Description(std::string("\x00\x0F\xAC", 3), keyManagement) +
                                      std::string("\x00\x00", 2));
}

inline std::string Wpa(std::initializer_list<unsigned char> keyManagement,
                       std::initializer_list<unsigned char> ciphers = {4}) {
    const std::string owner("\x00\x50\xF2", 3);
    return InformationElement(221, owner + '\x01' + Description(owner, keyManagement, ciphers));
}

}  // namespace HostTest
