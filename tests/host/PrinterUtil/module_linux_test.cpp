// SPDX-License-Identifier: Apache-2.0

#include <dlfcn.h>
#include <elf.h>
#include <fcntl.h>
#include <link.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <functional>
#include <thread>

#include "tests/host/PrinterUtil/printer_util_fixture.h"

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

    // Whether the module can be loaded now.
    bool IsLoaded(const std::string& name) {
        const HINSTANCE module = Handle(name);
        return FreeLibrary(module) != 0;
    }
};

constexpr uid_t kOther = 12345;

bool IsRoot() {
    return geteuid() == 0;
}

// Lets a thread change things back and forth while it lives.
class Meanwhile {
public:
    explicit Meanwhile(std::function<void()> change)
        : thread([this, change = std::move(change)] {
              while (!isOver) {
                  change();
                  ++changes;
              }
          }) {}
    ~Meanwhile() {
        isOver = true;
        thread.join();
    }
    Meanwhile(const Meanwhile&) = delete;
    Meanwhile& operator=(const Meanwhile&) = delete;

    int Changes() const { return changes; }

private:
    std::atomic<bool> isOver = false;
    std::atomic<int> changes = 0;
    std::thread thread;
};

constexpr int kRounds = 3000;

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

TEST_F(ModuleOnLinux, IsRefusedWhereAnyoneMayReplaceAFolderOnTheWay) {
    ShipModule("plain_module", ModuleFolder());
    const auto above = ModuleFolder().parent_path().parent_path();
    ASSERT_EQ(chmod(above.c_str(), 0777), 0);
    EXPECT_EQ(Handle("plain_module"), nullptr);
    EXPECT_THAT(ProductIds(), IsEmpty());
    EXPECT_THAT(Errors(),
                ElementsAre(HasSubstr("refused: its folder " + Utf8(above) + ": anyone may write"),
                            HasSubstr("refused: its folder " + Utf8(above) + ": anyone may")));
    // Where each may replace his own names only, nobody replaces ours.
    ASSERT_EQ(chmod(above.c_str(), 01777), 0);
    EXPECT_TRUE(IsLoaded("plain_module"));
}

TEST_F(ModuleOnLinux, IsRefusedInAFolderOnTheWayThatIsAnotherUsers) {
    if (!IsRoot()) {
        GTEST_SKIP() << "only root can give files away";
    }
    ShipModule("plain_module", ModuleFolder());
    const auto above = ModuleFolder().parent_path().parent_path();
    ASSERT_EQ(chown(above.c_str(), kOther, 0), 0);
    ASSERT_EQ(chmod(above.c_str(), 01755), 0);
    EXPECT_EQ(Handle("plain_module"), nullptr);
    EXPECT_THAT(Errors(), ElementsAre(HasSubstr("refused: its folder " + Utf8(above) +
                                                ": it belongs to another user, number 12345")));
}

TEST_F(ModuleOnLinux, IsRefusedWhereAForeignGroupMayWrite) {
    if (!IsRoot()) {
        GTEST_SKIP() << "only root can give files away";
    }
    ShipModule("plain_module", ModuleFolder());
    const auto file = File("plain_module");
    for (const auto& path : {file, ModuleFolder(), ModuleFolder().parent_path().parent_path()}) {
        ASSERT_EQ(chown(path.c_str(), 0, kOther), 0);
        EXPECT_TRUE(IsLoaded("plain_module")) << path;
        ASSERT_EQ(chmod(path.c_str(), 0775), 0);
        EXPECT_EQ(Handle("plain_module"), nullptr) << path;
        ASSERT_EQ(chown(path.c_str(), 0, 0), 0);
        EXPECT_TRUE(IsLoaded("plain_module")) << "root's group is no other, " << path;
    }
    EXPECT_THAT(Errors(), testing::SizeIs(3));
    EXPECT_THAT(Errors(), testing::Each(HasSubstr("group number 12345 may write to it")));
}

TEST_F(ModuleOnLinux, IsRefusedWhereAnAccessControlListLetsOthersWrite) {
    ShipModule("plain_module", ModuleFolder());
    // Version 2; the owner, user 12345 and the group with what they may, the mask and the others.
    struct Entry {
        std::uint16_t tag;
        std::uint16_t rights;
        std::uint32_t id;
    };
    struct {
        std::uint32_t version = 2;
        std::array<Entry, 5> entries{Entry{1, 6, 0xFFFFFFFF}, Entry{2, 6, kOther},
                                     Entry{4, 4, 0xFFFFFFFF}, Entry{16, 6, 0xFFFFFFFF},
                                     Entry{32, 4, 0xFFFFFFFF}};
    } list;
    const auto file = File("plain_module");
    if (setxattr(file.c_str(), "system.posix_acl_access", &list, sizeof list, 0) != 0) {
        GTEST_SKIP() << "this file system has no access control lists";
    }
    EXPECT_EQ(Handle("plain_module"), nullptr);
    EXPECT_THAT(Errors(), ElementsAre(HasSubstr("its access control list lets others write")));
}

TEST_F(ModuleOnLinux, IsRefusedBehindALinkThatIsAnotherUsers) {
    if (!IsRoot()) {
        GTEST_SKIP() << "only root can give files away";
    }
    ShipModule("plain_module", ModuleFolder());
    std::filesystem::create_symlink(File("plain_module"), File("linked"));
    ASSERT_EQ(lchown(File("linked").c_str(), kOther, kOther), 0);
    EXPECT_EQ(Handle("linked"), nullptr);
    EXPECT_THAT(Errors(), ElementsAre(AllOf(HasSubstr("refused: the link " + Utf8(File("linked"))),
                                            HasSubstr("belongs to another user"))));
}

TEST_F(ModuleOnLinux, BehindLinksThatLeadInACircleIsRefused) {
    std::filesystem::create_symlink(File("b"), File("a"));
    std::filesystem::create_symlink("./a.so", File("b"));
    EXPECT_EQ(Handle("a"), nullptr);
    EXPECT_THAT(Errors(), ElementsAre(HasSubstr("Too many levels of symbolic links")));
}

TEST_F(ModuleOnLinux, KeepsItsNameAndFindsItsNeighbours) {
    ShipModule("borrowing_module", ModuleFolder() / "real");
    ShipModule("scanning_library", ModuleFolder() / "real");
    std::filesystem::create_symlink("../modules/./real/../real/borrowing_module.so",
                                    File("linked"));
    const HINSTANCE module = Handle("linked");
    ASSERT_NE(module, nullptr);
    link_map* map = nullptr;
    ASSERT_EQ(dlinfo(module, RTLD_DI_LINKMAP, &map), 0);
    EXPECT_EQ(std::string(map->l_name), Utf8(ModuleFolder() / "real" / "borrowing_module.so"));
    EXPECT_NE(FreeLibrary(module), 0);
}

// Who may write to the folder above swaps the module folder for one of his own.
TEST_F(ModuleOnLinux, IsNeverTakenFromAFolderThatIsSwappedMeanwhile) {
    if (!IsRoot()) {
        GTEST_SKIP() << "only root can give files away";
    }
    const auto above = user.Folder() / "above";
    const auto foreign = above / "foreign";
    ShipModule("plain_module", above / "modules");
    ShipModule("plain_module", foreign);
    ASSERT_EQ(chown(foreign.c_str(), kOther, kOther), 0);
    ASSERT_EQ(chmod(above.c_str(), 0777), 0);
    WriteList(R"({"moduleFolder": ")" + Utf8(above / "modules") + R"(", "vendors": []})");
    ProductIds();
    const Meanwhile swapping([&] {
        renameat2(AT_FDCWD, foreign.c_str(), AT_FDCWD, (above / "modules").c_str(),
                  RENAME_EXCHANGE);
    });
    for (int round = 0; round < kRounds; ++round) {
        const PrinterUtil::ModuleReport report = PrinterUtil::DescribeModule("plain_module");
        ASSERT_EQ(report.module, nullptr);
    }
    EXPECT_GT(swapping.Changes(), 0);
}

// The link is followed once: what it led to then is what is judged and loaded.
TEST_F(ModuleOnLinux, IsNeverTakenFromWhereALinkLeadsLater) {
    if (!IsRoot()) {
        GTEST_SKIP() << "only root can give files away";
    }
    const auto own = user.Folder() / "own";
    const auto foreign = user.Folder() / "foreign";
    ShipModule("plain_module", own);
    ShipModule("plain_module", foreign);
    ASSERT_EQ(chown(foreign.c_str(), kOther, kOther), 0);
    // A name each round: what is loaded under its name already is not opened again.
    for (const auto& folder : {own, foreign}) {
        for (int round = 0; round < kRounds; ++round) {
            std::filesystem::create_hard_link(folder / "plain_module.so",
                                              folder / ("m" + std::to_string(round) + ".so"));
        }
    }
    const auto link = user.Folder() / "link";
    const auto other = user.Folder() / "other";
    std::filesystem::create_symlink(own, link);
    std::filesystem::create_symlink(foreign, other);
    WriteList(R"({"moduleFolder": ")" + Utf8(link) + R"(", "vendors": []})");
    ProductIds();
    const Meanwhile swapping(
        [&] { renameat2(AT_FDCWD, link.c_str(), AT_FDCWD, other.c_str(), RENAME_EXCHANGE); });
    int loaded = 0;
    int refused = 0;
    for (int round = 0; round < kRounds; ++round) {
        const PrinterUtil::ModuleReport report =
            PrinterUtil::DescribeModule("m" + std::to_string(round));
        ++(report.module == nullptr ? refused : loaded);
        FreeLibrary(report.module);
    }
    EXPECT_GT(loaded, 0);
    EXPECT_GT(refused, 0);
    struct stat notLoaded {};
    ASSERT_EQ(stat((foreign / "plain_module.so").c_str(), &notLoaded), 0);
    bool isForeignMapped = false;
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        isForeignMapped = isForeignMapped || line.find(" " + std::to_string(notLoaded.st_ino) +
                                                       " ") != std::string::npos;
    }
    EXPECT_FALSE(isForeignMapped);
}
