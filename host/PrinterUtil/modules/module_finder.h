// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

#include "host/PrinterUtil/vendor_list.h"

namespace PrinterUtil {

// Loads the module `name` from `folder` and from nowhere else.
ModuleReport OpenModule(const std::string& folder, const std::string& name);

}  // namespace PrinterUtil
