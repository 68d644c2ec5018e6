// SPDX-License-Identifier: Apache-2.0

#include "app/library/module_exports.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <iterator>
#include <random>
#include <sstream>

namespace App {

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

using Names = std::vector<std::string>;

std::string Bytes(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

Names NamesIn(const std::string& bytes) {
    std::istringstream stream(bytes);
    return ExportedNames(stream);
}

void Put(std::string& image, std::size_t at, std::uint64_t value, std::size_t size) {
    for (std::size_t index = 0; index < size; ++index) {
        image[at + index] = static_cast<char>(value >> (8 * index) & 0xFF);
    }
}

// A library of Windows with these two exports.
std::string SmallPeLibrary(bool wide) {
    constexpr std::size_t header = 0x40;
    constexpr std::size_t optional = header + 24;
    const std::size_t optionalSize = wide ? 240 : 224;
    const std::size_t section = optional + optionalSize;
    constexpr std::size_t place = 0x200;     // of the section in the file
    constexpr std::size_t address = 0x1000;  // and once it is loaded
    std::string image(0x300, '\0');
    image.replace(0, 2, "MZ");
    Put(image, 0x3C, header, 4);
    image.replace(header, 2, "PE");
    Put(image, header + 6, 1, 2);
    Put(image, header + 20, optionalSize, 2);
    Put(image, optional, wide ? 0x20B : 0x10B, 2);
    Put(image, optional + (wide ? 112 : 96), address, 4);
    Put(image, section + 12, address, 4);
    Put(image, section + 16, 0x100, 4);
    Put(image, section + 20, place, 4);
    Put(image, place + 24, 2, 4);
    Put(image, place + 32, address + 0x40, 4);
    Put(image, place + 0x40, address + 0x50, 4);
    Put(image, place + 0x44, address + 0x60, 4);
    image.replace(place + 0x50, 5, "First");
    image.replace(place + 0x60, 6, "Second");
    return image;
}

TEST(ModuleExports, OfARealModule_AreItsOwn) {
    const Names names = NamesIn(Bytes(SCRIPTED_MODULE));
    EXPECT_THAT(names, Contains("StartDeviceScan"));
    EXPECT_THAT(names, Contains("StopDeviceScan"));
    EXPECT_THAT(names, testing::Not(Contains("malloc"))) << "that is another library's";
}

TEST(ModuleExports, OfALibraryOfWindows_AreThoseOfItsDirectory) {
    EXPECT_THAT(NamesIn(SmallPeLibrary(true)), ElementsAre("First", "Second"));
    EXPECT_THAT(NamesIn(SmallPeLibrary(false)), ElementsAre("First", "Second"));
}

TEST(ModuleExports, OfWhatIsNoLibrary_AreNone) {
    for (const std::string text : {"", "M", "MZ", "\x7f", "\x7f\x45LF", "This is no library.\n"}) {
        EXPECT_THAT(NamesIn(text), IsEmpty()) << text;
    }
}

TEST(ModuleExports, OfACutFile_AreAtMostThoseOfTheWhole) {
    for (const std::string& whole : {Bytes(SCRIPTED_MODULE), SmallPeLibrary(true)}) {
        const std::size_t count = NamesIn(whole).size();
        const std::size_t step = whole.size() / 200 + 1;
        for (std::size_t size = 0; size < whole.size(); size += step) {
            EXPECT_LE(NamesIn(whole.substr(0, size)).size(), count) << size;
        }
    }
}

TEST(ModuleExports, OfADamagedFile_AreBounded) {
    std::minstd_rand random(7);
    for (const std::string& whole :
         {Bytes(SCRIPTED_MODULE).substr(0, 4096) + Bytes(SCRIPTED_MODULE), SmallPeLibrary(true)}) {
        for (int round = 0; round < 300; ++round) {
            std::string damaged = whole;
            for (int change = 0; change < 8; ++change) {
                damaged[random() % std::min<std::size_t>(damaged.size(), 0x300)] =
                    static_cast<char>(random() & 1 ? 0xFF : random());
            }
            EXPECT_LE(NamesIn(damaged).size(), 65536U);
        }
    }
}

TEST(ModuleExports, ThatPointEverywhere_AreLeftOut) {
    std::string image = SmallPeLibrary(true);
    Put(image, 0x240, 0xFFFFFFFF, 4);  // the first name
    EXPECT_THAT(NamesIn(image), ElementsAre("Second"));
    image = SmallPeLibrary(true);
    Put(image, 0x218, 0xFFFFFFFF, 4);  // how many there are
    EXPECT_THAT(NamesIn(image), testing::SizeIs(testing::Le(65536U)));
    image = SmallPeLibrary(true);
    std::fill(image.begin() + 0x260, image.end(), 'x');  // a name without an end
    EXPECT_THAT(NamesIn(image), ElementsAre("First"));
}

TEST(NearMiss, IsADecoratedName) {
    for (const std::string name :
         {"_Z15StartDeviceScanPv", "_ZN4Acme15StartDeviceScanEPv", "?StartDeviceScan@@YAHPEAX@Z"}) {
        EXPECT_THAT(NearMiss("StartDeviceScan", {"other", name}),
                    testing::AllOf(HasSubstr("StartDeviceScan: "), HasSubstr(name),
                                   HasSubstr("extern \"C\"")));
    }
    EXPECT_THAT(NearMiss("StartDeviceScan", {"_StartDeviceScan@8"}), HasSubstr("calling"));
    EXPECT_THAT(NearMiss("StartDeviceScan", {"_StartDeviceScan"}), HasSubstr("calling"));
}

TEST(NearMiss, IsANameInAnotherCase) {
    EXPECT_THAT(NearMiss("StartDeviceScan", {"startDevicescan"}),
                HasSubstr("upper and lower case"));
}

TEST(NearMiss, IsNoOtherName) {
    EXPECT_EQ(NearMiss("StartDeviceScan",
                       {"", "StartDeviceScanner", "StopDeviceScan", "_Z16StartDeviceScan2v",
                        "_Z18StartDeviceScanAllv", "?StartDeviceScans@@YAHXZ"}),
              "");
}

}  // namespace

}  // namespace App
