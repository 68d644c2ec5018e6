// SPDX-License-Identifier: Apache-2.0

#include <fstream>
#include <set>
#include <thread>

#include "tests/host/PrinterUtil/printer_util_fixture.h"

namespace {

using HostTest::BuiltModule;
using HostTest::ModuleFileName;
using HostTest::ShipModule;
using HostTest::Utf8;
using HostTest::Write;
using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class ModuleTest : public HostTest::PrinterUtilTest {
protected:
    ModuleTest() { WriteEmptyList(); }

    std::filesystem::path File(const std::string& name) const {
        return ModuleFolder() / ModuleFileName(name);
    }

    // Expects the module not to be given, with one line that names the file and says `what`.
    void ExpectRefused(const std::string& name, const std::string& what) {
        EXPECT_EQ(Handle(name), nullptr);
        EXPECT_THAT(Errors(), ElementsAre(AllOf(HasSubstr(Utf8(File(name)) + ": "), HasSubstr(what),
                                                EndsWith("(VendorDllMgr::GetDeviceHandle)"))));
        const PrinterUtil::ModuleReport report = PrinterUtil::DescribeModule(name);
        EXPECT_EQ(report.module, nullptr);
        EXPECT_EQ(report.path, Utf8(File(name)));
        EXPECT_THAT(report.problem, HasSubstr(what));
    }

    // Expects the name to be refused before any file is looked at.
    void ExpectNoName(const std::string& name) {
        HINSTANCE module = reinterpret_cast<HINSTANCE>(this);
        EXPECT_FALSE(VendorDllMgr::GetInstance().GetDeviceHandle(module, name));
        EXPECT_EQ(module, reinterpret_cast<HINSTANCE>(this)) << "it was touched";
        const PrinterUtil::ModuleReport report = PrinterUtil::DescribeModule(name);
        EXPECT_EQ(report.path, "");
        EXPECT_THAT(report.problem, HasSubstr("not a plain name"));
    }
};

}  // namespace

TEST_F(ModuleTest, IsGivenByItsPlainName) {
    ShipModule("plain_module", ModuleFolder());
    const HINSTANCE module = Handle("plain_module");
    ASSERT_NE(module, nullptr);
    EXPECT_EQ(HostTest::Call(module, "StopDeviceScan"), 17);
    EXPECT_NE(FreeLibrary(module), 0);
    EXPECT_THAT(Errors(), IsEmpty());
}

TEST_F(ModuleTest, IsGivenByItsFileNameToo) {
    ShipModule("plain_module", ModuleFolder());
    const HINSTANCE module = Handle(ModuleFileName("plain_module"));
    ASSERT_NE(module, nullptr);
    EXPECT_NE(FreeLibrary(module), 0);
}

TEST_F(ModuleTest, AddsOneReferenceEachTime) {
    ShipModule("plain_module", ModuleFolder());
    const HINSTANCE first = Handle("plain_module");
    const HINSTANCE second = Handle("plain_module");
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first, second);
    EXPECT_NE(FreeLibrary(first), 0);
    EXPECT_NE(GetProcAddress(second, "StopDeviceScan"), nullptr);
    EXPECT_NE(FreeLibrary(second), 0);
}

TEST_F(ModuleTest, StaysMappedAfterItsLastReferenceIsGone) {
    ShipModule("plain_module", ModuleFolder());
    const HINSTANCE module = Handle("plain_module");
    ASSERT_NE(module, nullptr);
    const auto stop = reinterpret_cast<int (*)()>(
        reinterpret_cast<void (*)()>(GetProcAddress(module, "StopDeviceScan")));
    EXPECT_NE(FreeLibrary(module), 0);
    EXPECT_EQ(stop(), 17);
}

TEST_F(ModuleTest, IsGivenWithoutTheListHavingBeenAskedFor) {
    ShipModule("plain_module", ModuleFolder());
    const PrinterUtil::ModuleReport report = PrinterUtil::DescribeModule("plain_module");
    EXPECT_EQ(report.problem, "");
    EXPECT_EQ(report.path, Utf8(File("plain_module")));
    ASSERT_NE(report.module, nullptr);
    EXPECT_NE(FreeLibrary(report.module), 0);
}

TEST_F(ModuleTest, StandsInAFolderOfAnyName) {
    WriteList(R"({"moduleFolder": "\u00e9\u20ac\u0416", "vendors": []})");
    ShipModule("plain_module", ListFile().parent_path() / HostTest::ForeignName());
    const HINSTANCE module = Handle("plain_module");
    ASSERT_NE(module, nullptr);
    EXPECT_NE(FreeLibrary(module), 0);
}

TEST_F(ModuleTest, ComesFromTheFolderOfTheListInUse) {
    ShipModule("plain_module", user.Folder() / "other" / "modules");
    Write(user.Folder() / "other" / "vendors.json", R"({"vendors": []})");
    EXPECT_EQ(Handle("plain_module"), nullptr);
    PrinterUtil::UseVendorList(Utf8(user.Folder() / "other" / "vendors.json"));
    const HINSTANCE module = Handle("plain_module");
    ASSERT_NE(module, nullptr);
    EXPECT_NE(FreeLibrary(module), 0);
}

TEST_F(ModuleTest, WithoutAReadableListIsRefused) {
    WriteList("{");
    EXPECT_EQ(Handle("plain_module"), nullptr);
    EXPECT_THAT(Errors(), ElementsAre(HasSubstr(Utf8(ListFile()) + ":1:")));
}

TEST_F(ModuleTest, ThatIsMissingIsNamed) {
    ExpectRefused("absent", "there is no such file");
}

TEST_F(ModuleTest, InAMissingFolderIsNamed) {
    std::filesystem::remove(ModuleFolder());
    ExpectRefused("absent", "there is no folder " + Utf8(ModuleFolder()));
}

TEST_F(ModuleTest, ThatIsNoLibraryIsNamed) {
    Write(File("text"), "this is no library, but long enough to hold a header of any kind: " +
                            std::string(200, '.'));
    ExpectRefused("text", "not a library");
}

TEST_F(ModuleTest, ThatIsEmptyIsNamed) {
    Write(File("empty"), "");
    ExpectRefused("empty", "not a library");
}

TEST_F(ModuleTest, ThatIsAFolderIsNamed) {
    std::filesystem::create_directory(File("folder"));
    ExpectRefused("folder", "not a regular file");
}

TEST_F(ModuleTest, ThatCannotBeReadIsToldFromOneThatIsNoLibrary) {
    ShipModule("plain_module", ModuleFolder());
    PrinterUtil::DescribeVendorList();
    const HostTest::Unreadable unreadable(File("plain_module"));
    const PrinterUtil::ModuleReport report = PrinterUtil::DescribeModule("plain_module");
    EXPECT_EQ(report.module, nullptr);
    EXPECT_THAT(report.problem,
                AllOf(StartsWith("module " + Utf8(File("plain_module")) + ": cannot be read: "),
                      EndsWith(HostTest::WhyUnreadable())));
}

TEST_F(ModuleTest, OfAnotherArchitectureIsNamed) {
    Write(File("foreign"), HostTest::LibraryOfAnotherArchitecture());
    ExpectRefused("foreign", "built for another architecture: ");
}

TEST_F(ModuleTest, ThatLacksALibraryIsNamed) {
    ShipModule("borrowing_module", ModuleFolder());
    ExpectRefused("borrowing_module", "it needs another library: ");
}

TEST_F(ModuleTest, FindsItsLibrariesBesideIt) {
    ShipModule("borrowing_module", ModuleFolder());
    ShipModule("scanning_library", ModuleFolder());
    const HINSTANCE module = Handle("borrowing_module");
    ASSERT_NE(module, nullptr);
    EXPECT_EQ(HostTest::Call(module, "StopDeviceScan"), 18);
    EXPECT_NE(FreeLibrary(module), 0);
}

TEST_F(ModuleTest, DoesNotOwnTheSymbolsOfItsLibraries) {
    ShipModule("borrowing_module", ModuleFolder());
    ShipModule("scanning_library", ModuleFolder());
    const HINSTANCE module = Handle("borrowing_module");
    ASSERT_NE(module, nullptr);
    EXPECT_EQ(GetProcAddress(module, "StartDeviceScan"), nullptr);
    EXPECT_NE(FreeLibrary(module), 0);
}

TEST_F(ModuleTest, ThatAnyoneMayWriteToIsRefused) {
    ShipModule("plain_module", ModuleFolder());
    HostTest::LetAnyoneWrite(File("plain_module"));
    ExpectRefused("plain_module", "anyone may write to it");
}

TEST_F(ModuleTest, InAFolderThatAnyoneMayWriteToIsRefused) {
    ShipModule("plain_module", ModuleFolder());
    HostTest::LetAnyoneWrite(ModuleFolder());
    ExpectRefused("plain_module",
                  "its folder " + Utf8(ModuleFolder()) + ": anyone may write to it");
}

TEST_F(ModuleTest, IsServedOnceItIsPutRight) {
    EXPECT_EQ(Handle("plain_module"), nullptr);
    ShipModule("plain_module", ModuleFolder());
    const HINSTANCE module = Handle("plain_module");
    ASSERT_NE(module, nullptr);
    EXPECT_NE(FreeLibrary(module), 0);
}

TEST_F(ModuleTest, HasAPlainName) {
    // Each leads to a module that is really there.
    ShipModule("plain_module", ModuleFolder());
    const std::string folder = Utf8(ModuleFolder());
    for (const std::string& name :
         {std::string("../modules/plain_module"), std::string("./plain_module"),
          std::string("..\\modules\\plain_module"), std::string(".\\plain_module"),
          folder + "/plain_module", Utf8(File("plain_module")), std::string("C:plain_module"),
          std::string("plain_module:stream"), std::string("plain_module\0", 13),
          std::string("plain\nmodule"), std::string("plain\x7Fmodule"),
          std::string("plain..module"), std::string(".."), std::string(""),
          std::string(256, 'x')}) {
        SCOPED_TRACE(name);
        ExpectNoName(name);
    }
}

TEST_F(ModuleTest, WithABadNameGivesOneHarmlessLine) {
    EXPECT_EQ(Handle("../a\nb"), nullptr);
    EXPECT_THAT(Errors(), ElementsAre(HasSubstr("module \"../a?b\": not a plain name")));
}

TEST_F(ModuleTest, IsGivenToManyThreadsAtOnce) {
    ShipModule("plain_module", ModuleFolder());
    WriteList(HostTest::ListOf("P"));
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 8; ++thread) {
        threads.emplace_back([this] {
            for (int count = 0; count < 50; ++count) {
                std::vector<VendorInfo> vendors;
                EXPECT_EQ(VendorDllMgr::GetInstance().GetCurrentSupportList(vendors), 0);
                const HINSTANCE module = Handle("plain_module");
                EXPECT_NE(FreeLibrary(module), 0);
                EXPECT_EQ(Handle("absent"), nullptr);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}
