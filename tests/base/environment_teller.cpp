// SPDX-License-Identifier: Apache-2.0

#include <filesystem>
#include <fstream>

#include "base/environment.h"
#include "platform/compiler.h"

// The address sanitizer looks for leaks from outside the process, which the system denies it where
// the program has more rights than its user.
extern "C" PLATFORM_EXPORT int __lsan_is_turned_off();
int __lsan_is_turned_off() {
    return 1;
}

// environment_teller OUTPUT NAME: writes the variable's text, and the line about it when it is
// ignored, to the file.
int main(int count, char** arguments) {
    if (count != 3) {
        return 2;
    }
    const Base::EnvironmentText said = Base::ReadEnvironment(arguments[2]);
    std::ofstream output(arguments[1]);
    output << std::filesystem::path(said.text).string() << "\n" << said.ignored << "\n";
    return output.flush() ? 0 : 1;
}
