// SPDX-License-Identifier: Apache-2.0

#include <cstring>

#include "DeviceDiscover/records.h"
#include "broker/log/log_line.h"
#include "broker/records/bounded_copy.h"

namespace PrinterDeviceDiscoverSdk {

namespace {

// The two families have the same layout but are distinct types: one body serves both directions.
template <class From, class To>
void CopyDevice(const From& from, To& to) {
    to.code1 = from.code1;
    to.code2 = from.code2;
    Broker::BoundedCopy(to.deviceSN, from.deviceSN);
    Broker::BoundedCopy(to.modelID, from.modelID);
    Broker::BoundedCopy(to.extra1, from.extra1);
    Broker::BoundedCopy(to.extra2, from.extra2);
    Broker::BoundedCopy(to.extra3, from.extra3);
}

// A float assignment may change the bits of a signalling NaN.
template <class From, class To>
void CopySignalStrength(const From& from, To& to) {
    static_assert(sizeof to.rssi == sizeof from.rssi);
    std::memcpy(&to.rssi, &from.rssi, sizeof to.rssi);
}

template <class Record>
void Terminate(Record& record) {
    record.ssid[sizeof record.ssid - 1] = '\0';
    record.pwd[sizeof record.pwd - 1] = '\0';
}

}  // namespace

void DiscoverBasic::GetDiscoverDeviceInfo(const VendorSdk::DeviceInfo& from, DeviceInfo& to) {
    CopyDevice(from, to);
}

void DiscoverBasic::GetVendorSdkDeviceInfo(const DeviceInfo& from, VendorSdk::DeviceInfo& to) {
    CopyDevice(from, to);
}

void DiscoverBasic::GetDiscoverWifoConfigInfo(const VendorSdk::WifiConfigInfo& from,
                                              WifiConfigInfo& to) {
    CopySignalStrength(from, to);
    Broker::Log(LOG_LEVEL_WARNING, HERE, "rssi = ", to.rssi);
    const int ssidStatus = Broker::BoundedCopy(to.ssid, from.ssid);
    Broker::Log(LOG_LEVEL_WARNING, HERE, "memcpy_s1 ret = ", ssidStatus);
    const int pwdStatus = Broker::BoundedCopy(to.pwd, from.pwd);
    Broker::Log(LOG_LEVEL_WARNING, HERE, "memcpy_s2 ret = ", pwdStatus);
    Terminate(to);
}

void DiscoverBasic::GetVendorSdkWifoConfigInfo(const WifiConfigInfo& from,
                                               VendorSdk::WifiConfigInfo& to) {
    CopySignalStrength(from, to);
    Broker::BoundedCopy(to.ssid, from.ssid);
    Broker::BoundedCopy(to.pwd, from.pwd);
    Terminate(to);
}

}  // namespace PrinterDeviceDiscoverSdk
