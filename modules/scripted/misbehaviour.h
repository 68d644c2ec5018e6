// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <optional>
#include <string_view>

namespace ScriptedVendor {

// The ways in which a vendor may misbehave.
enum class Misbehaviour {
    None,
    Crash,
    Overflow,
    Abort,
    Throw,
    ThrowOther,
    Exit,
    QuickExit,
    EndThread,
    Hang,
};

// The misbehaviour with that name; nothing when there is none.
std::optional<Misbehaviour> FindMisbehaviour(std::string_view name);

// Misbehaves on the calling thread. Returns only for None.
void Misbehave(Misbehaviour misbehaviour);

}  // namespace ScriptedVendor
