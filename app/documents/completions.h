// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <vector>

#include "app/documents/document_words.h"

namespace App {

// What each shell needs to complete the commands, their options and the values of these.
std::string BashCompletion(const std::vector<DocumentedCommand>& commands);
std::string ZshCompletion(const std::vector<DocumentedCommand>& commands);
std::string FishCompletion(const std::vector<DocumentedCommand>& commands);

}  // namespace App
