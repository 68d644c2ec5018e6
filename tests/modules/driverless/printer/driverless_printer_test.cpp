// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>

#include <cstring>

#include "modules/driverless/printer/printer.h"

namespace Driverless {
namespace {

const std::string kUuid = "7e21a7d4-0000-4000-8000-0000000000ab";

ServiceId Ipp(const std::string& name = "Laser") {
    return {name, "local", ServiceKind::Ipp, 2};
}

Service At(std::map<std::string, std::string> txt = {}) {
    return {"laser.local", "192.0.2.7", 631, std::move(txt)};
}

TEST(PlainUuid, TakesThePrefixOffAndAcceptsNothingElse) {
    EXPECT_EQ(PlainUuid("urn:uuid:7E21A7D4-0000-4000-8000-0000000000AB"), kUuid);
    EXPECT_EQ(PlainUuid(kUuid), kUuid);
    EXPECT_EQ(PlainUuid("7e21a7d4"), "");
    EXPECT_EQ(PlainUuid(std::string(36, 'x')), "");
    EXPECT_EQ(PlainUuid(""), "");
}

TEST(Describe, PrefersTheSerialNumberThenTheDeviceIdThenTheUuidThenTheName) {
    PrinterAttributes attributes;
    attributes.serialNumber = "S1";
    attributes.deviceId = "SN:S2;";
    attributes.uuid = "urn:uuid:" + kUuid;
    EXPECT_EQ(Describe(Ipp(), At(), attributes).serialNumber, "S1");
    attributes.serialNumber.clear();
    EXPECT_EQ(Describe(Ipp(), At(), attributes).serialNumber, "S2");
    attributes.deviceId = "SERN:S3;";
    EXPECT_EQ(Describe(Ipp(), At(), attributes).serialNumber, "S3");
    attributes.deviceId.clear();
    EXPECT_EQ(Describe(Ipp(), At(), attributes).serialNumber, kUuid);
    EXPECT_EQ(Describe(Ipp(), At({{"uuid", kUuid}}), {}).serialNumber, kUuid);
    EXPECT_EQ(Describe(Ipp(), At(), {}).serialNumber, "Laser@laser.local");
}

TEST(Describe, TakesMakeAndModelFromTheBestSource) {
    PrinterAttributes attributes;
    attributes.makeAndModel = "Acme Laser";
    const Service full = At(
        {{"ty", "From ty"}, {"usb_mfg", "Acme"}, {"usb_mdl", "9"}, {"product", "(From product)"}});
    EXPECT_EQ(Describe(Ipp(), full, attributes).makeAndModel, "Acme Laser");
    EXPECT_EQ(Describe(Ipp(), full, {}).makeAndModel, "From ty");
    Service less = full;
    less.txt.erase("ty");
    EXPECT_EQ(Describe(Ipp(), less, {}).makeAndModel, "Acme 9");
    less.txt.erase("usb_mfg");
    EXPECT_EQ(Describe(Ipp(), less, {}).makeAndModel, "9");
    less.txt.erase("usb_mdl");
    EXPECT_EQ(Describe(Ipp(), less, {}).makeAndModel, "From product");
    EXPECT_EQ(Describe(Ipp(), At(), {}).makeAndModel, "Laser");
}

TEST(Describe, ReadsTheResourceWithOrWithoutItsSlash) {
    EXPECT_EQ(Describe(Ipp(), At({{"rp", "ipp/office"}}), {}).resource, "/ipp/office");
    EXPECT_EQ(Describe(Ipp(), At({{"rp", "/ipp/office"}}), {}).resource, "/ipp/office");
    EXPECT_EQ(Describe(Ipp(), At({{"rp", ""}}), {}).resource, "/ipp/print");
    EXPECT_EQ(Describe({"Raw", "local", ServiceKind::PdlDatastream, 2}, At(), {}).resource, "");
}

TEST(ToRecord, FillsTheFieldsAsDocumented) {
    const VendorSdk::DeviceInfo record =
        ToRecord(Describe(Ipp(), At({{"ty", "Acme"}, {"uuid", kUuid}, {"rp", "ipp/print"}}), {}));
    EXPECT_EQ(record.code1, 631);
    EXPECT_EQ(record.code2, 1);
    EXPECT_EQ(record.deviceSN, kUuid);
    EXPECT_STREQ(record.modelID, "driverless");
    EXPECT_STREQ(record.extra1, "Acme");
    EXPECT_STREQ(record.extra2, "192.0.2.7");
    EXPECT_STREQ(record.extra3, "/ipp/print");
}

TEST(ToRecord, LeavesOutAPathThatDoesNotFit) {
    const auto pathOf = [](const std::string& path) {
        const VendorSdk::DeviceInfo record = ToRecord(Describe(Ipp(), At({{"rp", path}}), {}));
        return std::string(record.extra3, strnlen(record.extra3, sizeof record.extra3));
    };
    EXPECT_EQ(pathOf("/" + std::string(30, 'p')), "/" + std::string(30, 'p'));
    EXPECT_EQ(pathOf("/" + std::string(31, 'p')), "");
    EXPECT_EQ(pathOf("/with blank"), "");
}

TEST(FromRecord, GivesBackWhatToRecordWrote) {
    const Printer before = Describe(Ipp(), At({{"ty", "Acme"}, {"uuid", kUuid}}), {});
    const Printer after = FromRecord(ToRecord(before));
    EXPECT_EQ(after.serialNumber, before.serialNumber);
    EXPECT_EQ(after.uuid, before.uuid);
    EXPECT_EQ(after.kind, before.kind);
    EXPECT_EQ(after.address, before.address);
    EXPECT_EQ(after.port, before.port);
    EXPECT_EQ(after.resource, before.resource);
}

TEST(FromRecord, StaysWithinFieldsThatAreNotTerminated) {
    VendorSdk::DeviceInfo record;
    std::memset(&record, 'x', sizeof record);
    const Printer printer = FromRecord(record);
    EXPECT_EQ(printer.serialNumber, std::string(sizeof record.deviceSN, 'x'));
    EXPECT_EQ(printer.address, std::string(sizeof record.extra2, 'x'));
    EXPECT_EQ(printer.kind, ServiceKind::None);
}

}  // namespace
}  // namespace Driverless
