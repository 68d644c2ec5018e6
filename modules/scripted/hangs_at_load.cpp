// A vendor's module that never gets ready: its load does not return.

#include <chrono>
#include <thread>

namespace {

const bool ready = [] {
    for (;;) {
        std::this_thread::sleep_for(std::chrono::hours(1));
    }
    return true;
}();

}  // namespace
