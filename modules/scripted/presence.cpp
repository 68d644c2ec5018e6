// SPDX-License-Identifier: Apache-2.0

#include <atomic>
#include <new>

#include "vendor.h"

namespace ScriptedVendor {

namespace {

// None of these has a destructor: it could run while a scan still runs.
alignas(Vendor) unsigned char storage[sizeof(Vendor)];
std::atomic<Vendor*> made{nullptr};
std::atomic<int> present{0};
std::atomic<bool> gone{false};

Vendor* TheVendor() {
    static Vendor* const vendor = [] {
        auto* const fresh = new (storage) Vendor(kModuleName);
        made = fresh;
        return fresh;
    }();
    return vendor;
}

// Destroys the vendor when the module is unloaded and no call is inside.
struct Departure {
    ~Departure() {
        gone = true;
        if (present == 0 && made != nullptr) {
            made.load()->~Vendor();
        }
    }
};
Departure departure;

}  // namespace

Presence::Presence() {
    ++present;
    if (!gone) {
        vendor = TheVendor();
    }
}

Presence::~Presence() {
    --present;
}

}  // namespace ScriptedVendor
