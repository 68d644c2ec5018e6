// SPDX-License-Identifier: Apache-2.0

// Comes before Avahi's client library in a program that it is preloaded into, and takes its time.
//
//   SLOW_AVAHI_RECONNECT=MS   how long it takes to connect again, after the first time

#include <avahi-client/client.h>
#include <dlfcn.h>

#include <chrono>
#include <cstdlib>
#include <thread>

namespace {

void TakeTime(const char* variable) {
    const char* const milliseconds = std::getenv(variable);
    std::this_thread::sleep_for(
        std::chrono::milliseconds(milliseconds == nullptr ? 0 : std::atoi(milliseconds)));
}

template <typename Function>
Function* Real(Function*, const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

extern "C" AvahiClient* avahi_client_new(const AvahiPoll* poll, AvahiClientFlags flags,
                                         AvahiClientCallback callback, void* user, int* error) {
    if ((flags & AVAHI_CLIENT_NO_FAIL) != 0) {
        TakeTime("SLOW_AVAHI_RECONNECT");
    }
    return Real(avahi_client_new, "avahi_client_new")(poll, flags, callback, user, error);
}
