// A vendor's module that hangs while it is loaded.

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
