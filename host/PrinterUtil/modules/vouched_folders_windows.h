// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

namespace PrinterUtil {

// Whether the administrator answers for a folder, and so for those that it is in: such a one is not
// judged. `folder` is a full path; capitals and small letters are the same.
bool IsVouchedFor(const std::wstring& folder);

}  // namespace PrinterUtil
