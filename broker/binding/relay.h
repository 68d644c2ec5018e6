// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <atomic>

#include "broker/log/log_line.h"

namespace Broker {

// Shared code of the listeners: the application's registration, the vendors' registration whose
// callback is the listener's relay, and the forwarding of reports. A registration is a plain record
// {callback, param}. Vendor threads read it while the application sets or clears it, so each field
// is accessed atomically. Lines are logged under `where`, the listener's own function.

template <class Info>
auto Callback(Info& registration) {
    return std::atomic_ref(registration.callback).load(std::memory_order_acquire);
}

// Replaces one field. A field that already holds the value is not written, so that a vendor may
// read the registration without synchronisation while the application starts the same scan again.
template <class Field>
void ReplaceField(Field& field, Field value) {
    const std::atomic_ref shared(field);
    if (shared.load(std::memory_order_relaxed) != value) {
        shared.store(value, std::memory_order_release);
    }
}

// Replaces `registration`, field by field.
template <class Info>
void Register(Info& registration, const Info& info) {
    ReplaceField(registration.param, info.param);
    ReplaceField(registration.callback, info.callback);
}

template <class OwnInfo, class VendorSideInfo>
VendorSideInfo* SetRegistration(OwnInfo& own, VendorSideInfo& vendor, const OwnInfo& info,
                                decltype(VendorSideInfo::callback) relay, const Location& where) {
    Log(LOG_LEVEL_DEBUG, where, "Set info", info.param);
    Register(own, info);
    Register(vendor, {relay, info.param});
    return &vendor;
}

// Clears the application's registration. The vendors' registration stays; their further reports are
// dropped.
template <class OwnInfo>
void ClearRegistration(OwnInfo& own, const Location& where) {
    Log(LOG_LEVEL_DEBUG, where, "Clear info");
    Register(own, {});
}

// Calls the application's callback with a copy of `record`, which `convert` writes over `start`,
// and returns its result; 0 without a callback. The callback is read once, so that a concurrent
// clear cannot lead to a call of null.
template <class OwnInfo, class VendorRecord, class OwnRecord>
int RelayReport(OwnInfo& own, const VendorRecord* record, OwnRecord start,
                void (*convert)(const VendorRecord&, OwnRecord&), const Location& where) {
    const auto callback = Callback(own);
    if (callback == nullptr) {
        return 0;
    }
    if (record == nullptr) {
        Log(LOG_LEVEL_ERROR, where, "callback record is nullptr");
        return 0;
    }
    Log(LOG_LEVEL_DEBUG, where, "callback");
    convert(*record, start);
    return callback(&start);
}

}  // namespace Broker
