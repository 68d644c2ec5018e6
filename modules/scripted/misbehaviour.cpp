// SPDX-License-Identifier: Apache-2.0

#include "misbehaviour.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <iterator>
#include <stdexcept>
#include <thread>

#include "ways_to_end.h"

namespace ScriptedVendor {

namespace {

struct Name {
    std::string_view text;
    Misbehaviour misbehaviour;
};

constexpr Name kNames[] = {
    {"crash", Misbehaviour::Crash},
    {"overflow", Misbehaviour::Overflow},
    {"abort", Misbehaviour::Abort},
    {"throw", Misbehaviour::Throw},
    {"throw-other", Misbehaviour::ThrowOther},
    {"exit", Misbehaviour::Exit},
    {"quick-exit", Misbehaviour::QuickExit},
    {"end-thread", Misbehaviour::EndThread},
    {"hang", Misbehaviour::Hang},
};

// An unmapped address. A sanitizer would detect null before the processor does.
char* volatile nowhere = reinterpret_cast<char*>(8);
volatile int depth = 0;

// Each call needs its own part of the stack and uses it after its inner call, so that no call is
// optimised away.
int UseUpTheStack(const volatile char* caller) {
    volatile char piece[4096];
    piece[0] = *caller;
    depth = depth + 1;
    const int further = depth > 0 ? UseUpTheStack(piece) : 0;
    return further + piece[0];
}

}  // namespace

std::optional<Misbehaviour> FindMisbehaviour(std::string_view name) {
    const auto* const found = std::find_if(std::begin(kNames), std::end(kNames),
                                           [&](const Name& known) { return known.text == name; });
    return found == std::end(kNames) ? std::nullopt : std::optional(found->misbehaviour);
}

void Misbehave(Misbehaviour misbehaviour) {
    switch (misbehaviour) {
        case Misbehaviour::None:
            return;
        case Misbehaviour::Crash:
            *nowhere = 1;
            return;
        case Misbehaviour::Overflow:
            depth = UseUpTheStack("");
            return;
        case Misbehaviour::Abort:
            std::abort();
        case Misbehaviour::Throw:
            throw std::runtime_error("the vendor's own mistake");
        case Misbehaviour::ThrowOther:
            throw 42;
        case Misbehaviour::Exit:
            std::exit(0);
        case Misbehaviour::QuickExit:
            QuickExit();
        case Misbehaviour::EndThread:
            EndThread();
        case Misbehaviour::Hang:
            for (;;) {
                std::this_thread::sleep_for(std::chrono::hours(1));
            }
    }
}

}  // namespace ScriptedVendor
