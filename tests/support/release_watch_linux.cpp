// SPDX-License-Identifier: Apache-2.0

#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

#include "tests/support/release_watch.h"
#include "tests/support/scripted_vendors.h"

namespace {

int record = -1;
int (*question)() = nullptr;

}  // namespace

namespace ReleaseWatch {

void Note(const std::string& line) {
    const std::string whole = line + '\n';
    if (write(record, whole.data(), whole.size()) < 0) {
        _exit(90);
    }
}

void Start(const std::string& recordPath, int (*ask)()) {
    question = ask;
    record = open(recordPath.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0666);
}

}  // namespace ReleaseWatch

// Stands before the system's own for every library of the process.
extern "C" __attribute__((visibility("default"))) int dlclose(void* module) {
    using Function = int(void*);
    static auto* const system = reinterpret_cast<Function*>(dlsym(RTLD_NEXT, "dlclose"));
    const std::string name = ScriptedVendors::NameOf(static_cast<HINSTANCE>(module));
    if (record >= 0 && !name.empty()) {
        ReleaseWatch::Note(name + ' ' + std::to_string(question()));
    }
    return system(module);
}
