// SPDX-License-Identifier: Apache-2.0

#include "base/device_id.h"

#include <gtest/gtest.h>

namespace Base {
namespace {

std::string All(const DeviceId& id) {
    return id.manufacturer + "|" + id.model + "|" + id.serialNumber;
}

// In the forms that printers have them, with other names.
TEST(DeviceIdText, OfPrinters_IsUnderstood) {
    EXPECT_EQ(
        All(ReadDeviceId("MFG:Acme-Works;CMD:PJL,PML,PCLXL,POSTSCRIPT,PCL;MDL:Acme Laser 4000 "
                         "Series;CLS:PRINTER;DES:Acme-Works Laser 4000 Series;MEM:9MB;"
                         "1284.4DL:4d,4e,1;COMMENT:RES=1200x8;")),
        "Acme-Works|Acme Laser 4000 Series|");
    EXPECT_EQ(
        All(ReadDeviceId("MFG:ACME;CMD:ESCPL2,BDC,D4,D4PX,ESCPR1;MDL:XQ-600 Series;CLS:PRINTER;"
                         "DES:ACME XQ-600 Series;CID:AcmeRGB;FID:FXN,DPN,WFA;RID:01;ELG:0B31;"
                         "SN:503951483030363237;")),
        "ACME|XQ-600 Series|503951483030363237");
    EXPECT_EQ(All(ReadDeviceId("MANUFACTURER:Acme Technologies ;COMMAND SET:EPL;MODEL: LX2844 "
                               ";CLASS:PRINTER;OPTIONS:XML;")),
              "Acme Technologies|LX2844|");
    EXPECT_EQ(All(ReadDeviceId("MFG:Acme;MDL:Ink F2100 series;CMD:MLC,PCL,DW-PCL,DYN;CLS:PRINTER;"
                               "SERN:BR7CCD1234;VSTATUS:$HB0$NC0,ff,DN,IDLE,CUT,K0;")),
              "Acme|Ink F2100 series|BR7CCD1234");
}

TEST(DeviceIdText, IsReadWithLongKeysInAnyCaseAndWithBlanks) {
    EXPECT_EQ(All(ReadDeviceId(" manufacturer : Acme ;Model:Ink\t50;\nSerialNumber: 7 ")),
              "Acme|Ink\t50|7");
    EXPECT_EQ(ReadDeviceId("sern:8;").serialNumber, "8");
}

TEST(DeviceIdText, TakesTheFirstOfSeveralThatHasAValue) {
    EXPECT_EQ(ReadDeviceId("MDL:one;MDL:two;MODEL:three").model, "one");
    EXPECT_EQ(ReadDeviceId("MDL:;MODEL: ;MDL:three").model, "three");
    EXPECT_EQ(ReadDeviceId("SERN:a;SN:b;").serialNumber, "a");
}

TEST(DeviceIdText, KeepsColonsAndOtherBytesOfValues) {
    EXPECT_EQ(ReadDeviceId("SN:00:11:22;").serialNumber, "00:11:22");
    EXPECT_EQ(ReadDeviceId("MDL:a\xFF\x1B;").model, "a\xFF\x1B");
}

TEST(DeviceIdText, EndsAtAZeroByte) {
    EXPECT_EQ(ReadDeviceId(std::string_view("SN:1\0\0", 6)).serialNumber, "1");
    EXPECT_EQ(ReadDeviceId(std::string_view("\0SN:1", 5)).serialNumber, "");
}

TEST(DeviceIdText, SaysNothingWhenItIsMalformed) {
    for (const char* text : {"", ";", ":", ";;;:;", "MDL", "MDL;", "XMDL:a;", "MDL:", "=MDL:a"}) {
        EXPECT_EQ(All(ReadDeviceId(text)), "||") << text;
    }
}

std::string Answer(int first, int second, const std::string& text) {
    return std::string{static_cast<char>(first), static_cast<char>(second)} + text;
}

TEST(DeviceIdAnswer, HasItsLengthInTheFirstTwoBytes) {
    EXPECT_EQ(DeviceIdText(Answer(0, 10, "MDL:abc;")), "MDL:abc;");
    EXPECT_EQ(DeviceIdText(Answer(0, 10, "MDL:abc;SN:1;")), "MDL:abc;") << "a rest of the last one";
    const std::string longText = "MDL:" + std::string(300, 'x') + ";";
    EXPECT_EQ(DeviceIdText(Answer(1, 0x33, longText)), longText);
}

TEST(DeviceIdAnswer, WithAWrongLength_LosesNoByteOfTheText) {
    EXPECT_EQ(DeviceIdText(Answer(0, 8, "MDL:abc;")), "MDL:abc;") << "without its own two bytes";
    EXPECT_EQ(DeviceIdText(Answer(10, 0, "MDL:abc;")), "MDL:abc;") << "the lower byte first";
    EXPECT_EQ(DeviceIdText(Answer(0, 0, "MDL:abc;")), "MDL:abc;");
    EXPECT_EQ(DeviceIdText(Answer(0, 2, "MDL:abc;")), "MDL:abc;");
    EXPECT_EQ(DeviceIdText(Answer(0xFF, 0xFF, "MDL:abc;")), "MDL:abc;");
    EXPECT_EQ(DeviceIdText(Answer(0, 200, "MDL:abc;")), "MDL:abc;");
}

TEST(DeviceIdAnswer, TooShortForAText_HasNone) {
    EXPECT_EQ(DeviceIdText(""), "");
    EXPECT_EQ(DeviceIdText("M"), "");
    EXPECT_EQ(DeviceIdText(Answer(0, 2, "")), "");
}

}  // namespace
}  // namespace Base
