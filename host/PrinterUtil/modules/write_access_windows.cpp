// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterUtil/modules/write_access_windows.h"
#include "host/PrinterUtil/modules/local_memory_windows.h"

// After the system's own header, which they need.
#include <aclapi.h>
#include <sddl.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <vector>

#include "base/text/utf8.h"
#include "host/PrinterUtil/modules/system_message_windows.h"

namespace PrinterUtil {

namespace {

// Of the service that owns what belongs to Windows itself.
constexpr const wchar_t* kTrustedInstaller =
    L"S-1-5-80-956008885-3418522649-1831038044-1853292631-2271478464";

template <std::size_t count>
bool IsOneOf(PSID account, const std::array<WELL_KNOWN_SID_TYPE, count>& types) {
    return std::any_of(types.begin(), types.end(), [account](WELL_KNOWN_SID_TYPE type) {
        return IsWellKnownSid(account, type) != 0;
    });
}

// The groups to which everybody belongs, or everybody who can log on.
bool IsEverybody(PSID account) {
    constexpr std::array everybody{WinWorldSid, WinAuthenticatedUserSid, WinBuiltinUsersSid,
                                   WinInteractiveSid, WinAnonymousSid};
    return IsOneOf(account, everybody);
}

std::vector<std::byte> AskForCurrentUser() {
    HANDLE token = nullptr;
    if (OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token) == 0) {
        return {};
    }
    DWORD size = 0;
    GetTokenInformation(token, TokenUser, nullptr, 0, &size);
    std::vector<std::byte> user(size);
    if (GetTokenInformation(token, TokenUser, user.data(), size, &size) == 0) {
        user.clear();
    }
    CloseHandle(token);
    return user;
}

bool IsCurrentUser(PSID account) {
    static const std::vector<std::byte> user = AskForCurrentUser();
    return !user.empty() &&
           EqualSid(account, reinterpret_cast<const TOKEN_USER*>(user.data())->User.Sid) != 0;
}

bool IsTrustedInstaller(PSID account) {
    PSID installer = nullptr;
    const bool isKnown = ConvertStringSidToSidW(kTrustedInstaller, &installer) != 0;
    const LocalMemory owner(installer);
    return isKnown && EqualSid(account, installer) != 0;
}

// The owner is judged himself, and nobody logs on as the one who will own what is made in a folder.
bool StandsForTheOwner(PSID account) {
    constexpr std::array owners{WinCreatorOwnerRightsSid, WinCreatorOwnerSid};
    return IsOneOf(account, owners);
}

bool IsTrusted(PSID account) {
    constexpr std::array administrators{WinLocalSystemSid, WinBuiltinAdministratorsSid};
    return IsOneOf(account, administrators) || IsCurrentUser(account) ||
           IsTrustedInstaller(account);
}

std::string NumberOf(PSID account) {
    wchar_t* text = nullptr;
    if (ConvertSidToStringSidW(account, &text) == 0) {
        return "of an unknown number";
    }
    const LocalMemory owner(text);
    return Base::ToUtf8(text);
}

// The rights that change a part. A new name in a folder above replaces none that is on the path,
// but a folder that is moved away makes room for another.
DWORD ChangingRights(PathPart part) {
    constexpr DWORD any = GENERIC_ALL | WRITE_DAC | WRITE_OWNER | DELETE;
    switch (part) {
        case PathPart::kFile:
            return any | GENERIC_WRITE | FILE_WRITE_DATA | FILE_APPEND_DATA | FILE_WRITE_ATTRIBUTES;
        case PathPart::kFileFolder:
            return any | GENERIC_WRITE | FILE_ADD_FILE | FILE_DELETE_CHILD;
        default:
            return any | FILE_DELETE_CHILD;
    }
}

// Which of the entries that allow something name their account where the plain ones do.
bool IsPlain(BYTE type) {
    return type == ACCESS_ALLOWED_ACE_TYPE || type == ACCESS_ALLOWED_CALLBACK_ACE_TYPE;
}

bool Allows(BYTE type) {
    return IsPlain(type) || type == ACCESS_ALLOWED_OBJECT_ACE_TYPE ||
           type == ACCESS_ALLOWED_CALLBACK_OBJECT_ACE_TYPE ||
           type == ACCESS_ALLOWED_COMPOUND_ACE_TYPE;
}

// Whom an entry lets change the part, besides those who may; empty when nobody. What other entries
// deny is not looked at: it may be denied to a few of many.
std::string WhomItLets(ACE_HEADER* header, DWORD changing) {
    auto* entry = reinterpret_cast<ACCESS_ALLOWED_ACE*>(header);
    if (!Allows(header->AceType) || (header->AceFlags & INHERIT_ONLY_ACE) != 0 ||
        (entry->Mask & changing) == 0) {
        return {};
    }
    if (!IsPlain(header->AceType)) {
        return "another account";
    }
    const PSID account = &entry->SidStart;
    if (IsTrusted(account) || StandsForTheOwner(account)) {
        return {};
    }
    return IsEverybody(account) ? "anyone" : "account " + NumberOf(account);
}

std::string WhomTheListLets(PACL list, DWORD changing) {
    if (list == nullptr) {
        return "anyone";
    }
    for (DWORD index = 0; index < list->AceCount; ++index) {
        void* entry = nullptr;
        if (GetAce(list, index, &entry) == 0) {
            return "anyone";
        }
        std::string account = WhomItLets(static_cast<ACE_HEADER*>(entry), changing);
        if (!account.empty()) {
            return account;
        }
    }
    return {};
}

}  // namespace

std::string WhyOthersMayChange(PSECURITY_DESCRIPTOR descriptor, PathPart part) {
    PSID owner = nullptr;
    PACL list = nullptr;
    BOOL isThere = FALSE;
    BOOL isDefault = FALSE;
    if (GetSecurityDescriptorDacl(descriptor, &isThere, &list, &isDefault) == 0 ||
        GetSecurityDescriptorOwner(descriptor, &owner, &isDefault) == 0) {
        return SystemMessage(GetLastError());
    }
    const std::string account =
        WhomTheListLets(isThere != FALSE ? list : nullptr, ChangingRights(part));
    if (!account.empty()) {
        return account + " may write to it";
    }
    if (owner == nullptr) {
        return "it belongs to nobody";
    }
    return IsTrusted(owner) ? std::string() : "it belongs to another user, " + NumberOf(owner);
}

}  // namespace PrinterUtil
