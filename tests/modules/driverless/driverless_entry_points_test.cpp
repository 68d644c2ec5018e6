// SPDX-License-Identifier: Apache-2.0

// The entry points with what makes no sense, and without any network.

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <initializer_list>

#include "VendorSdk/entry_points.h"
#include "modules/driverless/common/results.h"

VENDORSDK_EXPORT(StartDeviceScan);
VENDORSDK_EXPORT(StopDeviceScan);
VENDORSDK_EXPORT(GetDeviceConnectState);
VENDORSDK_EXPORT(BeforeConnectEventNotify);
VENDORSDK_EXPORT(ConnectSuccessNotifyEvent);
VENDORSDK_EXPORT(ConnectFailNotifyEvent);

namespace {

int Ignore(const VendorSdk::DeviceInfo*) {
    return 0;
}

// A printer on this host's port 1, where nothing listens.
VendorSdk::DeviceInfo Nowhere(std::uint16_t kind) {
    VendorSdk::DeviceInfo record{};
    record.code1 = 1;
    record.code2 = kind;
    std::strcpy(record.deviceSN, "S1");
    std::strcpy(record.extra2, "127.0.0.1");
    return record;
}

TEST(StartDeviceScan, NeedsACallback) {
    VendorSdk::DeviceCallbackInfo info{};
    EXPECT_EQ(StartDeviceScan(nullptr), Driverless::kNoListener);
    EXPECT_EQ(StartDeviceScan(&info), Driverless::kNoListener);
}

TEST(StartDeviceScan, FailsWithoutABus) {
    setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nowhere/bus", 1);
    VendorSdk::DeviceCallbackInfo info{Ignore, 0};
    EXPECT_EQ(StartDeviceScan(&info), Driverless::kNoBus);
    EXPECT_EQ(StartDeviceScan(&info), Driverless::kNoBus);
}

TEST(StopDeviceScan, SucceedsWithoutAScan) {
    EXPECT_EQ(StopDeviceScan(), 0);
    EXPECT_EQ(StopDeviceScan(), 0);
}

TEST(DeviceOperations, RefuseNoRecord) {
    EXPECT_EQ(GetDeviceConnectState(nullptr), Driverless::kUnknownPrinter);
    EXPECT_EQ(BeforeConnectEventNotify(nullptr), Driverless::kUnknownPrinter);
    EXPECT_EQ(ConnectSuccessNotifyEvent(nullptr), Driverless::kUnknownPrinter);
    EXPECT_EQ(ConnectFailNotifyEvent(nullptr), Driverless::kUnknownPrinter);
}

TEST(DeviceOperations, DoNotKnowAnEmptyRecord) {
    const VendorSdk::DeviceInfo record{};
    EXPECT_EQ(GetDeviceConnectState(&record), Driverless::kUnknownPrinter);
    EXPECT_EQ(BeforeConnectEventNotify(&record), Driverless::kUnknownPrinter);
    EXPECT_EQ(ConnectSuccessNotifyEvent(&record), Driverless::kUnknownPrinter);
    EXPECT_EQ(ConnectFailNotifyEvent(&record), 0);
}

TEST(DeviceOperations, SurviveARecordWithoutTerminators) {
    VendorSdk::DeviceInfo record;
    for (const std::uint16_t kind : std::initializer_list<std::uint16_t>{0, 1, 2, 3, 4, 5, 65535}) {
        std::memset(&record, 'x', sizeof record);
        record.code2 = kind;
        EXPECT_NE(GetDeviceConnectState(&record), Driverless::kReady);
        BeforeConnectEventNotify(&record);
        ConnectSuccessNotifyEvent(&record);
        ConnectFailNotifyEvent(&record);
    }
}

TEST(DeviceOperations, TakeAnAddressOnlyAsNumbers) {
    VendorSdk::DeviceInfo record = Nowhere(1);
    std::strcpy(record.extra2, "localhost");
    EXPECT_EQ(GetDeviceConnectState(&record), Driverless::kNoAnswer);
}

TEST(GetDeviceConnectState, SaysThatNobodyAnswers) {
    for (const std::uint16_t kind : std::initializer_list<std::uint16_t>{1, 2, 3, 4}) {
        const VendorSdk::DeviceInfo record = Nowhere(kind);
        EXPECT_EQ(GetDeviceConnectState(&record), Driverless::kNoAnswer) << kind;
    }
}

TEST(ConnectSuccessNotifyEvent, KeepsTheAddressForRecordsWithoutOne) {
    const VendorSdk::DeviceInfo record = Nowhere(3);
    VendorSdk::DeviceInfo serialNumberOnly{};
    std::strcpy(serialNumberOnly.deviceSN, record.deviceSN);
    EXPECT_EQ(GetDeviceConnectState(&serialNumberOnly), Driverless::kUnknownPrinter);
    EXPECT_EQ(ConnectSuccessNotifyEvent(&record), 0);
    EXPECT_EQ(GetDeviceConnectState(&serialNumberOnly), Driverless::kNoAnswer);
    EXPECT_EQ(ConnectFailNotifyEvent(&record), 0);
    EXPECT_EQ(GetDeviceConnectState(&serialNumberOnly), Driverless::kUnknownPrinter);
}

}  // namespace
