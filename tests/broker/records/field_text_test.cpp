// SPDX-License-Identifier: Apache-2.0

#include "broker/records/field_text.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "VendorSdk/records.h"
#include "tests/support/guarded_memory.h"

namespace {

using Broker::FieldText;
using VendorSdk::DeviceInfo;

TEST(FieldText, EndsAtTheTerminator) {
    DeviceInfo device{};
    std::memcpy(device.deviceSN, "A1\0B2", 5);
    EXPECT_EQ(FieldText(device, device.deviceSN), "A1");
    EXPECT_EQ(FieldText(device, device.modelID), "");
}

TEST(FieldText, FillsTheFieldUpToATerminatorInTheLastPlace) {
    DeviceInfo device{};
    std::memset(&device, 'x', sizeof device);
    device.deviceSN[63] = '\0';
    EXPECT_EQ(FieldText(device, device.deviceSN), std::string(63, 'x'));
}

TEST(FieldText, RunsOnIntoTheNextFields) {
    DeviceInfo device{};
    std::memset(&device, 'x', sizeof device);
    device.extra2[1] = '\0';
    EXPECT_EQ(FieldText(device, device.deviceSN), std::string(64 + 32 + 64 + 1, 'x'));
    EXPECT_EQ(FieldText(device, device.modelID), std::string(32 + 64 + 1, 'x'));
    EXPECT_EQ(FieldText(device, device.extra2), "x");
}

TEST(FieldText, EndsWithTheRecord) {
    Guarded<DeviceInfo> device;
    std::memset(&*device, 'x', sizeof *device);
    EXPECT_EQ(FieldText(*device, device->deviceSN), std::string(228 - 4, 'x'));
    EXPECT_EQ(FieldText(*device, device->extra3), std::string(32, 'x'));
    Guarded<VendorSdk::WifiConfigInfo> network;
    std::memset(&*network, 'x', sizeof *network);
    EXPECT_EQ(FieldText(*network, network->ssid), std::string(160, 'x'));
    EXPECT_EQ(FieldText(*network, network->pwd), std::string(32, 'x'));
}

}  // namespace
