// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace BaseTest {

// Parts of an IPP answer, byte by byte.
std::string Short(std::size_t number);
std::string Head(std::uint16_t status = 0);
std::string Group(std::uint8_t tag);
std::string Value(std::uint8_t tag, std::string_view name, std::string_view value);
std::string Text(std::string_view name, std::string_view value);
std::string Number(std::uint8_t tag, std::string_view name, std::uint32_t number);
std::string End();

// Collections that hold each other, so many, and end if `isWhole`.
std::string Nested(std::size_t depth, bool isWhole);

}  // namespace BaseTest
