// SPDX-License-Identifier: Apache-2.0

#include "base/ipp/ipp_request.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "tests/base/ipp/ipp_bytes.h"

namespace BaseTest {

namespace {

using Base::IppOperation;
using Base::IppRequest;

std::string Beginning(const char* version, std::size_t operation) {
    return std::string(version, 2) + Short(operation) + Short(0) + Short(1) + Group(1) +
           Value(0x47, "attributes-charset", "utf-8") +
           Value(0x48, "attributes-natural-language", "en");
}

TEST(IppRequest, IsWhatTheStandardSays) {
    IppRequest request(IppRequest::Version::Usual, IppOperation::SetPrinterAttributes);
    request.AddUri("printer-uri", "ipp://a/");
    request.AddKeywords("requested-attributes", {"one", "two"});
    request.BeginPrinter();
    request.AddName("printer-wifi-ssid", "Office");
    request.AddOctets("printer-wifi-password", "secret");
    EXPECT_EQ(request.Finish(), Beginning("\2\0", 0x0013) + Value(0x45, "printer-uri", "ipp://a/") +
                                    Value(0x44, "requested-attributes", "one") +
                                    Value(0x44, "", "two") + Group(4) +
                                    Value(0x42, "printer-wifi-ssid", "Office") +
                                    Value(0x30, "printer-wifi-password", "secret") + End());
}

TEST(IppRequest, HasAnOldVersionForOldPrinters) {
    IppRequest request(IppRequest::Version::Old, IppOperation::GetPrinterAttributes);
    EXPECT_EQ(request.Finish(), Beginning("\1\1", 0x000b) + End());
}

TEST(IppRequest, HasNoRoomForATextThatNoPrinterTakes) {
    IppRequest request(IppRequest::Version::Usual, IppOperation::CupsGetPrinters);
    request.AddName("a", std::string(0x7fff, 'x'));
    EXPECT_THROW(request.AddName("a", std::string(0x8000, 'x')), std::length_error);
}

}  // namespace

}  // namespace BaseTest
