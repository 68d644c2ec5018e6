// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

namespace Host {

// Remembers the host's connection before a program joins other networks; only the last one is
// remembered. Both functions throw WifiProblem.
void RememberPlace();

// Starts the return to the remembered connection, unless the host is connected to a network other
// than `network`. Returns whether the host is returning or has returned.
bool GoBackFrom(const std::wstring& network);

}  // namespace Host
