// SPDX-License-Identifier: Apache-2.0

#include "app/running/awaiting.h"

#include "app/running/vendor_calls.h"
#include "host/PrinterUtil/vendor_list.h"

namespace App {

std::string AwaitedVendors(std::uint64_t began) {
    const std::string names = NamesOf(AwaitedCalls(began));
    // The work may wait for an earlier call that holds a lock.
    const std::string any = names.empty() ? NamesOf(AwaitedCalls()) : names;
    const std::string module = any.empty() ? PrinterUtil::ModuleBeingLoaded() : "";
    return module.empty() ? any : "module " + module + ", which is being loaded,";
}

}  // namespace App
