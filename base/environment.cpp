// SPDX-License-Identifier: Apache-2.0

#include "base/environment.h"

#include "base/privileges.h"

namespace Base {

EnvironmentText ReadEnvironment(const char* name) {
    const NativeText text = RawEnvironment(name);
    if (text.empty() || !HasMoreRightsThanItsUser()) {
        return {text, {}};
    }
    return {{},
            std::string("the environment variable ") + name +
                " is ignored: this program has more rights than the user who started it"};
}

}  // namespace Base
