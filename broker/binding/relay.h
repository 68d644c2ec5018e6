#pragma once

#include <atomic>

#include "broker/log/log_line.h"

namespace Broker {

// What the listeners share: the application's registration, the vendors' registration whose
// callback is the listener's relay, and the way from one to the other. A registration is a plain
// record {callback, param} that vendor threads read while the application sets or clears it, so
// each field is one atomic access. The lines are logged under `where`, the listener's own function.

template <class Info>
auto Callback(Info& registration) {
    return std::atomic_ref(registration.callback).load(std::memory_order_acquire);
}

// Replaces one field. One that already holds its value is left alone, so that whoever holds the
// registration may read it without precautions while the application starts the same again.
template <class Field>
void ReplaceField(Field& field, Field value) {
    const std::atomic_ref shared(field);
    if (shared.load(std::memory_order_relaxed) != value) {
        shared.store(value, std::memory_order_release);
    }
}

// Replaces `registration`, each field on its own.
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

// The vendors' registration stays: what they still report finds nobody.
template <class OwnInfo>
void ClearRegistration(OwnInfo& own, const Location& where) {
    Log(LOG_LEVEL_DEBUG, where, "Clear info");
    Register(own, {});
}

// Hands the application its own copy of `record`, made by `convert` onto `start`, and returns its
// answer; 0 when nobody listens. The callback is read once: a clear in between cannot make it a
// null call.
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
