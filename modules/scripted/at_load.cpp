// SPDX-License-Identifier: Apache-2.0

// A vendor's module that never gets ready: what it must not do, it does while it is loaded.

#include "misbehaviour.h"

namespace {

const bool ready = [] {
    ScriptedVendor::Misbehave(*ScriptedVendor::FindMisbehaviour(SCRIPTED_AT_LOAD));
    return true;
}();

}  // namespace
