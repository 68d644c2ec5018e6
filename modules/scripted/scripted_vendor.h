// SPDX-License-Identifier: Apache-2.0

#pragma once

// Controls a scripted vendor from within its process, and reads back the calls that it received.
// The module exports one symbol, ScriptedVendorControl, which returns all functions. They may be
// called from any thread.

#include <cstddef>
#include <cstdint>

#include "VendorSdk/entry_points.h"

namespace ScriptedVendor {

// The arguments of the USB entry points, combined in records.
struct UsbEnumeration {
    std::uint16_t productId;
    std::uint16_t vendorId;
    std::int32_t count;  // as it was when the call came
};
struct UsbWifiScan {
    VendorSdk::DeviceInfo device;
    std::int32_t option;
    std::int32_t count;  // as it was when the call came
};
struct UsbNetConfig {
    VendorSdk::DeviceInfo device;
    VendorSdk::WifiConfigInfo network;
};

// One call that the module received.
struct Call {
    const char* entryPoint;
    // The address of the argument record, or of the room for records in an enumeration; null when
    // there is none.
    const void* argument;
    // The address of the network in a configuration on USB; null otherwise.
    const void* second;
    std::size_t size;  // the record's bytes, as they were when the call came
    unsigned char bytes[sizeof(UsbNetConfig)];
};

struct Control {
    const char* moduleName;

    // Applies further script lines (see README.md). Returns the number of refused lines; each is
    // reported on standard error.
    int (*Script)(const char* lines);

    // Adds a device to those that StartDeviceScan reports, byte for byte. GetDeviceInfoByNet fills
    // in the first, whatever its result.
    void (*AddDevice)(const VendorSdk::DeviceInfo* device);

    // Adds a network to those that StartAPWifiScan reports, byte for byte.
    void (*AddNetwork)(const VendorSdk::WifiConfigInfo* network);

    // Makes calls of the entry point wait, after they are recorded, until it is unblocked.
    void (*Block)(const char* entryPoint);
    void (*Unblock)(const char* entryPoint);

    // Report the record, which may be null, on the calling thread and return the callback's result.
    // Need no running scan, only that there has been one; -1 otherwise.
    int (*ReportNow)(const VendorSdk::DeviceInfo* device);
    int (*ReportNetworkNow)(const VendorSdk::WifiConfigInfo* network);

    std::size_t (*CallCount)();
    bool (*ReadCall)(std::size_t index, Call* call);

    // The results of the callback, one for each report; the first 10000 are kept.
    std::size_t (*CallbackCount)();
    bool (*ReadCallbackResult)(std::size_t index, int* result);

    // The registration of the last StartDeviceScan, of the last StartAPWifiScan; null before the
    // first.
    VendorSdk::DeviceCallbackInfo* (*Registration)();
    VendorSdk::WifiCallbackInfo* (*WifiRegistration)();

    // The number of running scans of both kinds.
    int (*RunningScans)();

    // Wait until the entry point has been called `count` times, until `count` reports have come
    // back, until exactly `count` scans run; false when that takes longer than `milliseconds`.
    bool (*WaitForCalls)(const char* entryPoint, std::size_t count, unsigned milliseconds);
    bool (*WaitForCallbacks)(std::size_t count, unsigned milliseconds);
    bool (*WaitForRunningScans)(int count, unsigned milliseconds);
};

}  // namespace ScriptedVendor

namespace VendorSdk {

// Not an entry point of vendors; here so that VENDORSDK_EXPORT can declare it.
using ScriptedVendorControlFunction = const ScriptedVendor::Control*();

}  // namespace VendorSdk
