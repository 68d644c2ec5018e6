#include <elf.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>

#include "tests/host/printer_util_fixture.h"

namespace {

using HostTest::ModuleFileName;
using HostTest::ShipModule;
using HostTest::Utf8;
using HostTest::Write;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class ModuleOnLinux : public HostTest::PrinterUtilTest {
protected:
    ModuleOnLinux() { WriteEmptyList(); }

    std::filesystem::path File(const std::string& name) const {
        return ModuleFolder() / ModuleFileName(name);
    }
};

}  // namespace

TEST_F(ModuleOnLinux, OfAnotherProcessorOfTheSameWidthIsNamed) {
    Elf64_Ehdr header{};
    std::memcpy(header.e_ident, ELFMAG, SELFMAG);
    header.e_ident[EI_CLASS] = sizeof(void*) == 8 ? ELFCLASS64 : ELFCLASS32;
    header.e_ident[EI_DATA] = ELFDATA2LSB;
    header.e_ident[EI_VERSION] = EV_CURRENT;
    header.e_type = ET_DYN;
    header.e_machine = EM_S390;
    header.e_version = EV_CURRENT;
    std::string file(reinterpret_cast<const char*>(&header), sizeof header);
    file.resize(4096);
    Write(File("foreign"), file);
    EXPECT_EQ(Handle("foreign"), nullptr);
    EXPECT_THAT(Errors(), ElementsAre(HasSubstr("built for another architecture: ")));
}

TEST_F(ModuleOnLinux, NamesTheLibraryThatItLacks) {
    ShipModule("borrowing_module", ModuleFolder());
    EXPECT_EQ(Handle("borrowing_module"), nullptr);
    EXPECT_THAT(Errors(), ElementsAre(AllOf(HasSubstr("scanning_library.so"),
                                            HasSubstr("No such file or directory"))));
}

TEST_F(ModuleOnLinux, IsJudgedBehindALink) {
    const auto elsewhere = user.Folder() / "elsewhere";
    ShipModule("plain_module", elsewhere);
    const auto target = elsewhere / ModuleFileName("plain_module");
    std::filesystem::create_symlink(target, File("linked"));
    const HINSTANCE module = Handle("linked");
    ASSERT_NE(module, nullptr);
    EXPECT_NE(FreeLibrary(module), 0);

    HostTest::LetAnyoneWrite(elsewhere);
    EXPECT_EQ(Handle("linked"), nullptr);
    std::filesystem::permissions(elsewhere, std::filesystem::perms::owner_all);
    HostTest::LetAnyoneWrite(target);
    EXPECT_EQ(Handle("linked"), nullptr);
    EXPECT_THAT(Errors(), ElementsAre(HasSubstr(Utf8(elsewhere) + ": anyone may write to it"),
                                      HasSubstr("refused: anyone may write to it")));
}

TEST_F(ModuleOnLinux, BehindABrokenLinkIsMissing) {
    std::filesystem::create_symlink(user.Folder() / "nowhere", File("linked"));
    EXPECT_EQ(Handle("linked"), nullptr);
    EXPECT_THAT(Errors(), ElementsAre(HasSubstr("there is no such file")));
}

TEST_F(ModuleOnLinux, ThatIsAPipeIsRefusedWithoutWaiting) {
    ASSERT_EQ(mkfifo(File("pipe").c_str(), 0600), 0);
    EXPECT_EQ(Handle("pipe"), nullptr);
    EXPECT_THAT(Errors(), ElementsAre(HasSubstr("not a regular file")));
}

TEST_F(ModuleOnLinux, OfAnotherUserIsRefused) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "only root can give files away";
    }
    ShipModule("plain_module", ModuleFolder());
    ASSERT_EQ(chown(File("plain_module").c_str(), 12345, 12345), 0);
    EXPECT_EQ(Handle("plain_module"), nullptr);
    EXPECT_THAT(Errors(), ElementsAre(HasSubstr("belongs to another user, number 12345")));
}

TEST_F(ModuleOnLinux, ListOfAnotherUserIsRefused) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "only root can give files away";
    }
    WriteList(HostTest::ListOf("P"));
    ASSERT_EQ(chown(ListFile().c_str(), 12345, 12345), 0);
    EXPECT_THAT(ProductIds(), IsEmpty());
    EXPECT_THAT(Errors(), ElementsAre(HasSubstr("belongs to another user, number 12345")));
}

TEST_F(ModuleOnLinux, ListBehindALinkIsJudgedByTheFolderThere) {
    const auto target = user.Folder() / "elsewhere" / "list.json";
    Write(target, HostTest::ListOf("P"));
    std::filesystem::remove(ListFile());
    std::filesystem::create_symlink(target, ListFile());
    EXPECT_THAT(ProductIds(), ElementsAre("P"));
    HostTest::LetAnyoneWrite(target.parent_path());
    EXPECT_THAT(ProductIds(), IsEmpty());
    EXPECT_THAT(Errors(),
                ElementsAre(HasSubstr(Utf8(target.parent_path()) + ": anyone may write to it")));
}

TEST_F(ModuleOnLinux, ListInAFolderWhereEachMayRemoveHisOwnFilesOnlyIsRefused) {
    WriteList(HostTest::ListOf("P"));
    ASSERT_EQ(chmod(ListFile().parent_path().c_str(), 01777), 0);
    EXPECT_THAT(ProductIds(), IsEmpty());
    EXPECT_THAT(Errors(), ElementsAre(HasSubstr("anyone may write to it")));
}

TEST_F(ModuleOnLinux, ListThatIsAPipeIsRefusedWithoutWaiting) {
    std::filesystem::remove(ListFile());
    ASSERT_EQ(mkfifo(ListFile().c_str(), 0600), 0);
    EXPECT_THAT(ProductIds(), IsEmpty());
    EXPECT_THAT(Errors(), ElementsAre(HasSubstr("not a regular file")));
}
