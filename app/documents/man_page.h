// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

#include "app/documents/document_words.h"

namespace App {

// The manual page of a command, for man(1). `date` is that of the page, as in 2026-11-22.
std::string ManPage(const DocumentedCommand& documented, const std::string& version,
                    const std::string& date);

}  // namespace App
