// SPDX-License-Identifier: Apache-2.0

#pragma once

// The text field of a record, which may come from anybody: it ends at its terminator, or else with
// the field.

#include <algorithm>
#include <span>
#include <string>
#include <string_view>

#include "base/text/utf8.h"

namespace Base {

// A view into the record.
inline std::string_view FieldView(std::span<const char> field) {
    return {field.begin(), std::find(field.begin(), field.end(), '\0')};
}

inline std::string FieldText(std::span<const char> field) {
    return std::string(FieldView(field));
}

// Fills the whole field: the text, cut between two characters if it is too long, then zeros, at
// least one.
inline void PutField(std::span<char> field, std::string_view text) {
    CopyUtf8(text, field.data(), field.size());
}

}  // namespace Base
