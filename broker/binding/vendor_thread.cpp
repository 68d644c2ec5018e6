// SPDX-License-Identifier: Apache-2.0

#include "broker/binding/vendor_thread.h"

#include "DeviceDiscover/vendor_activity.h"

namespace {

std::atomic<void (*)()> preparation = nullptr;

}  // namespace

namespace Broker {

void PrepareThread() {
    if (const auto prepare = preparation.load()) {
        prepare();
    }
}

}  // namespace Broker

namespace PrinterDeviceDiscoverSdk {

void PrepareVendorThreads(void (*prepare)()) {
    preparation = prepare;
}

}  // namespace PrinterDeviceDiscoverSdk
