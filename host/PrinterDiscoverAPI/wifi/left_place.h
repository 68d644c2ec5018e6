#pragma once

#include <string>

namespace Host {

// The connection that the host had when a program began to take it elsewhere; there is one. Both
// throw WifiProblem.
void RememberPlace();

// Begins to connect as remembered, unless the host has a connection to another network than that
// one. Whether it is on its way, or there.
bool GoBackFrom(const std::wstring& network);

}  // namespace Host
