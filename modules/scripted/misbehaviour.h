#pragma once

#include <optional>
#include <string_view>

namespace ScriptedVendor {

// What a vendor must not do.
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

// The one of that name.
std::optional<Misbehaviour> FindMisbehaviour(std::string_view name);

// Does it, on the calling thread. Returns only when there is nothing to do.
void Misbehave(Misbehaviour misbehaviour);

}  // namespace ScriptedVendor
