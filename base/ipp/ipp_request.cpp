// SPDX-License-Identifier: Apache-2.0

#include "base/ipp/ipp_request.h"

#include <stdexcept>

#include "base/ipp/ipp_message.h"
#include "base/ipp/ipp_tags.h"

namespace Base {

namespace {

// The longest name or value. The numbers of operations are smaller, too.
constexpr std::size_t kMaxShort = 0x7fff;
constexpr std::string_view kRequestNumber{"\0\0\0\1", 4};

}  // namespace

IppRequest::IppRequest(Version version, IppOperation operation) {
    PutShort(static_cast<std::uint16_t>(version));
    PutShort(static_cast<std::uint16_t>(operation));
    Put(kRequestNumber);
    PutByte(kIppOperationGroup);
    Add(IppTag::kCharset, "attributes-charset", "utf-8");
    Add(IppTag::kLanguage, "attributes-natural-language", "en");
}

void IppRequest::BeginPrinter() {
    PutByte(kIppPrinterGroup);
}

void IppRequest::AddUri(std::string_view name, std::string_view uri) {
    Add(IppTag::kUri, name, uri);
}

void IppRequest::AddKeywords(std::string_view name, const std::vector<std::string_view>& keywords) {
    for (const std::string_view keyword : keywords) {
        Add(IppTag::kKeyword, name, keyword);
        name = {};
    }
}

void IppRequest::AddName(std::string_view name, std::string_view value) {
    Add(IppTag::kName, name, value);
}

void IppRequest::AddOctets(std::string_view name, std::string_view value) {
    Add(IppTag::kOctets, name, value);
}

std::string_view IppRequest::Finish() {
    PutByte(IppTag::kEnd);
    return bytes;
}

void IppRequest::Add(std::uint8_t tag, std::string_view name, std::string_view value) {
    PutByte(tag);
    PutShort(name.size());
    Put(name);
    PutShort(value.size());
    Put(value);
}

void IppRequest::Put(std::string_view text) {
    bytes.append(text);
}

void IppRequest::PutByte(std::uint8_t byte) {
    const char one = static_cast<char>(byte);
    Put({&one, 1});
}

void IppRequest::PutShort(std::size_t number) {
    if (number > kMaxShort) {
        throw std::length_error("too long for an IPP request");
    }
    PutByte(static_cast<std::uint8_t>(number >> 8U));
    PutByte(static_cast<std::uint8_t>(number & 0xffU));
}

}  // namespace Base
