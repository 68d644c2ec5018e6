// SPDX-License-Identifier: Apache-2.0

#include <memory>
#include <string>

#include "host/PrinterUtil/modules/trusted_file.h"
#include "host/PrinterUtil/modules/write_access_windows.h"
#include "tests/host/PrinterUtil/printer_util_fixture.h"

// After the system's own header, which it needs.
#include <sddl.h>

namespace {

using HostTest::ModuleFileName;
using HostTest::ShipModule;
using HostTest::Utf8;
using PrinterUtil::PathPart;
using testing::ElementsAre;
using testing::HasSubstr;

const std::string kInstaller = "S-1-5-80-956008885-3418522649-1831038044-1853292631-2271478464";
const std::string kStranger = "S-1-5-21-1-2-3-1001";

struct FreeLocal {
    void operator()(void* memory) const { LocalFree(memory); }
};
using Descriptor = std::unique_ptr<void, FreeLocal>;

// An owner and a list, in the system's own notation: "O:SYD:(A;;FA;;;SY)".
Descriptor Parse(const std::string& text) {
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    ConvertStringSecurityDescriptorToSecurityDescriptorA(text.c_str(), SDDL_REVISION_1, &descriptor,
                                                         nullptr);
    return Descriptor(descriptor);
}

std::string Problem(PathPart part, const std::string& text) {
    const Descriptor descriptor = Parse(text);
    return descriptor ? PrinterUtil::WhyOthersMayChange(descriptor.get(), part) : "not read";
}

std::string CurrentUser() {
    HANDLE token = nullptr;
    OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token);
    alignas(TOKEN_USER) char user[256];
    DWORD size = 0;
    GetTokenInformation(token, TokenUser, user, sizeof user, &size);
    CloseHandle(token);
    char* text = nullptr;
    ConvertSidToStringSidA(reinterpret_cast<TOKEN_USER*>(user)->User.Sid, &text);
    std::string number = text;
    LocalFree(text);
    return number;
}

constexpr PathPart kParts[] = {PathPart::kFile, PathPart::kFileFolder, PathPart::kFolderAbove};

TEST(WriteAccess, OfTheUserTheAdministratorsAndTheSystemIsTrusted) {
    for (const std::string& account :
         {std::string("SY"), std::string("BA"), kInstaller, CurrentUser()}) {
        for (const PathPart part : kParts) {
            const std::string text = "O:" + account + "D:(A;;FA;;;" + account +
                                     ")(A;;FA;;;OW)(A;OICIIO;FA;;;CO)(A;;FRFX;;;WD)";
            EXPECT_EQ(Problem(part, text), "") << text;
        }
    }
}

TEST(WriteAccess, OfAnotherOwnerIsNot) {
    for (const PathPart part : kParts) {
        EXPECT_EQ(Problem(part, "O:" + kStranger + "D:(A;;FA;;;SY)"),
                  "it belongs to another user, " + kStranger);
        EXPECT_THAT(Problem(part, "O:BUD:(A;;FA;;;SY)"), HasSubstr("belongs to another user"));
        EXPECT_EQ(Problem(part, "D:(A;;FA;;;SY)"), "it belongs to nobody");
    }
}

TEST(WriteAccess, OfAnotherAccountIsNamed) {
    for (const PathPart part : kParts) {
        for (const char* right : {"GA", "FA", "SD", "WD", "WO"}) {
            const std::string list = std::string("(A;;") + right + ";;;";
            EXPECT_EQ(Problem(part, "O:SYD:(A;;FA;;;SY)" + list + kStranger + ")"),
                      "account " + kStranger + " may write to it");
            for (const char* everybody : {"WD", "AU", "BU", "IU", "AN"}) {
                EXPECT_EQ(Problem(part, "O:SYD:" + list + everybody + ")"),
                          "anyone may write to it");
            }
        }
    }
}

// Each right by itself: to write, to append or to add folders, to delete what is in it, to change
// attributes.
TEST(WriteAccess, IsWhatReplacesTheFile) {
    const auto others = [](PathPart part, const char* right) {
        return !Problem(part, std::string("O:SYD:(A;;") + right + ";;;WD)").empty();
    };
    constexpr const char* kRights[] = {"0x2", "0x4", "0x40", "0x100", "GW", "0x1200a9"};
    constexpr bool kExpected[][6] = {{true, true, false, true, true, false},
                                     {true, false, true, false, true, false},
                                     {false, false, true, false, false, false}};
    for (std::size_t part = 0; part < 3; ++part) {
        for (std::size_t right = 0; right < 6; ++right) {
            EXPECT_EQ(others(kParts[part], kRights[right]), kExpected[part][right])
                << part << " " << kRights[right];
        }
    }
}

TEST(WriteAccess, OfTheRootAndTheFoldersOfWindowsIsTrusted) {
    EXPECT_EQ(Problem(PathPart::kFolderAbove,
                      "O:" + kInstaller +
                          "D:PAI(A;;LC;;;AU)(A;OICIIO;SDGXGWGR;;;AU)(A;OICI;FA;;;SY)"
                          "(A;OICI;FA;;;BA)(A;OICI;0x1200a9;;;BU)"),
              "");
    // Where programs keep what all users share: each may add to it.
    const std::string shared =
        "O:SYD:PAI(A;OICIIO;GA;;;CO)(A;OICI;FA;;;SY)(A;OICI;FA;;;BA)(A;OICI;0x1200a9;;;BU)"
        "(A;CI;DCLCRPCR;;;BU)";
    EXPECT_EQ(Problem(PathPart::kFolderAbove, shared), "");
    EXPECT_EQ(Problem(PathPart::kFileFolder, shared), "anyone may write to it");
    // What anybody made below the root.
    EXPECT_EQ(Problem(PathPart::kFolderAbove, "O:BAD:AI(A;OICIID;0x1301bf;;;AU)(A;OICIID;FA;;;SY)"),
              "anyone may write to it");
}

TEST(WriteAccess, OfAnUnusualListIsNotTrusted) {
    EXPECT_EQ(Problem(PathPart::kFile, "O:SY"), "anyone may write to it");
    EXPECT_EQ(Problem(PathPart::kFile, "O:SYD:"), "");
    EXPECT_EQ(Problem(PathPart::kFile, "O:SYD:(D;;FA;;;" + kStranger + ")(A;;FA;;;WD)"),
              "anyone may write to it");
}

TEST(WriteAccess, OfAListThatIsNotThereIsAnyones) {
    SECURITY_DESCRIPTOR descriptor{};
    InitializeSecurityDescriptor(&descriptor, SECURITY_DESCRIPTOR_REVISION);
    SetSecurityDescriptorDacl(&descriptor, TRUE, nullptr, FALSE);
    EXPECT_EQ(PrinterUtil::WhyOthersMayChange(&descriptor, PathPart::kFile),
              "anyone may write to it");
}

TEST(WriteAccess, OfAnEntryOfAnotherKindIsNotTrusted) {
    const auto problem = [](BYTE type, const std::string& account) {
        const Descriptor descriptor = Parse("O:SYD:(A;;FA;;;" + account + ")");
        PACL list = nullptr;
        BOOL isThere = FALSE;
        GetSecurityDescriptorDacl(descriptor.get(), &isThere, &list, &isThere);
        void* entry = nullptr;
        GetAce(list, 0, &entry);
        static_cast<ACE_HEADER*>(entry)->AceType = type;
        return PrinterUtil::WhyOthersMayChange(descriptor.get(), PathPart::kFile);
    };
    EXPECT_EQ(problem(ACCESS_ALLOWED_OBJECT_ACE_TYPE, "SY"), "another account may write to it");
    EXPECT_EQ(problem(ACCESS_ALLOWED_CALLBACK_ACE_TYPE, "SY"), "");
    EXPECT_EQ(problem(ACCESS_ALLOWED_CALLBACK_ACE_TYPE, "WD"), "anyone may write to it");
    EXPECT_EQ(problem(ACCESS_DENIED_OBJECT_ACE_TYPE, "WD"), "");
}

class ModuleOnWindows : public HostTest::PrinterUtilTest {
protected:
    ModuleOnWindows() {
        WriteEmptyList();
        ShipModule("plain_module", ModuleFolder());
    }

    bool IsServed() {
        const HINSTANCE module = Handle("plain_module");
        return module != nullptr && FreeLibrary(module) != 0;
    }
};

TEST_F(ModuleOnWindows, IsHeldWithItsFoldersWhileItIsTrusted) {
    const std::filesystem::path file = ModuleFolder() / ModuleFileName("plain_module");
    const std::filesystem::path folders[] = {ModuleFolder(), user.Folder()};
    const auto moved = [](const std::filesystem::path& path) {
        return MoveFileW(path.c_str(), (path.wstring() + L".moved").c_str()) != 0;
    };
    {
        const auto trusted = PrinterUtil::TrustedFile::Open(file);
        ASSERT_EQ(trusted.Problem(), "");
        for (const std::filesystem::path& folder : folders) {
            EXPECT_FALSE(moved(folder)) << folder;
        }
        EXPECT_FALSE(moved(file));
    }
    for (const std::filesystem::path& folder : folders) {
        EXPECT_TRUE(moved(folder)) << folder;
        std::filesystem::rename(folder.wstring() + L".moved", folder);
    }
}

TEST_F(ModuleOnWindows, BelowAFolderThatAnyoneMayChangeIsRefused) {
    HostTest::LetAnyoneWrite(user.Folder());
    EXPECT_FALSE(IsServed());
    EXPECT_THAT(Errors(), ElementsAre(HasSubstr("refused: its folder " + Utf8(user.Folder()) +
                                                ": anyone may write to it")));
}

// The folders that the administrator answers for, with one more while it lives.
class OneMoreFolder {
public:
    explicit OneMoreFolder(const std::filesystem::path& folder) {
        DWORD size = sizeof before;
        RegGetValueW(HKEY_LOCAL_MACHINE, kKey, kName, RRF_RT_REG_MULTI_SZ, nullptr, before, &size);
        length = size / sizeof(wchar_t);
        const std::wstring more = folder.wstring() + L'\0';
        Write(more + (length > 1 ? std::wstring(before, length) : std::wstring(1, L'\0')));
    }
    ~OneMoreFolder() { Write(std::wstring(before, length)); }
    OneMoreFolder(const OneMoreFolder&) = delete;
    OneMoreFolder& operator=(const OneMoreFolder&) = delete;

private:
    static constexpr const wchar_t* kKey = L"SOFTWARE\\DeviceDiscover";
    static constexpr const wchar_t* kName = L"TrustedFolders";

    static void Write(const std::wstring& folders) {
        EXPECT_EQ(RegSetKeyValueW(HKEY_LOCAL_MACHINE, kKey, kName, REG_MULTI_SZ, folders.data(),
                                  static_cast<DWORD>(folders.size() * sizeof(wchar_t))),
                  ERROR_SUCCESS);
    }

    wchar_t before[4096] = {};
    std::size_t length = 0;
};

TEST_F(ModuleOnWindows, BelowAFolderThatTheAdministratorAnswersForIsServed) {
    HostTest::LetAnyoneWrite(user.Folder());
    std::wstring name = user.Folder().wstring();
    CharUpperW(name.data());
    {
        const OneMoreFolder folder(name + L"\\");
        EXPECT_TRUE(IsServed());
        HostTest::LetAnyoneWrite(ModuleFolder());
        EXPECT_FALSE(IsServed()) << "what is in it is judged";
    }
    EXPECT_THAT(Errors(), ElementsAre(HasSubstr("its folder " + Utf8(ModuleFolder()) +
                                                ": anyone may write to it")));
}

}  // namespace
