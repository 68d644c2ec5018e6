// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/secret.h"

namespace Base {

enum class IppOperation : std::uint16_t {
    GetPrinterAttributes = 0x000b,
    SetPrinterAttributes = 0x0013,
    CupsGetPrinters = 0x4002,
};

// An IPP request as bytes. It may hold a secret: all its memory is wiped when it is destroyed.
class IppRequest {
public:
    // `version` is IPP 2.0 or 1.1. Begins the operation group, with the charset and the language.
    enum class Version : std::uint16_t { Old = 0x0101, Usual = 0x0200 };
    IppRequest(Version version, IppOperation operation);

    // Begins the printer group.
    void BeginPrinter();
    void AddUri(std::string_view name, std::string_view uri);
    void AddKeywords(std::string_view name, const std::vector<std::string_view>& keywords);
    void AddName(std::string_view name, std::string_view value);
    void AddOctets(std::string_view name, std::string_view value);

    // Ends the message and returns it. Nothing may be added afterwards.
    std::string_view Finish();

    IppRequest(const IppRequest&) = delete;
    IppRequest& operator=(const IppRequest&) = delete;

private:
    void Add(std::uint8_t tag, std::string_view name, std::string_view value);
    void Put(std::string_view text);
    void PutByte(std::uint8_t byte);
    void PutShort(std::size_t number);

    WipedBytes bytes;
};

}  // namespace Base
