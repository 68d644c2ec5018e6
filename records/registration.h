#pragma once

#include <atomic>

namespace Broker {

// A registration is a plain record {callback, param} that vendor threads read while the application
// sets or clears it. Each field is one atomic access: a caller of Callback() tests and calls the
// same value.

template <class Info>
auto Callback(Info& registration) {
    return std::atomic_ref(registration.callback).load(std::memory_order_acquire);
}

// Replaces `registration`. Fields that already hold their value are left alone, so that a vendor
// may read its registration without precautions while the application starts the same scan again.
template <class Info>
void Register(Info& registration, const Info& info) {
    const auto replace = [](auto& field, auto value) {
        const std::atomic_ref shared(field);
        if (shared.load(std::memory_order_relaxed) != value) {
            shared.store(value, std::memory_order_release);
        }
    };
    replace(registration.param, info.param);
    replace(registration.callback, info.callback);
}

}  // namespace Broker
