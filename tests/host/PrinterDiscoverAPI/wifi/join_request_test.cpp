// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterDiscoverAPI/wifi/join_request.h"

#include <gmock/gmock.h>

#include "host/PrinterDiscoverAPI/wifi/wifi_service.h"

namespace HostTest {

namespace {

using Host::AccessPoint;
using Host::JoinRequest;

AccessPoint Point(const std::string& name, int quality, unsigned protection) {
    AccessPoint point;
    point.name = name;
    point.quality = quality;
    point.protection = protection;
    return point;
}

std::string ProblemWith(const std::wstring& ssid, const std::wstring& passPhrase) {
    try {
        const JoinRequest request(ssid, passPhrase);
        return {};
    } catch (const Host::WifiProblem& problem) {
        return problem.what();
    }
}

TEST(JoinRequest, TakesNamesOf1To32Bytes) {
    EXPECT_EQ(ProblemWith(L"x", L""), "");
    EXPECT_EQ(ProblemWith(std::wstring(32, L'x'), L""), "");
    EXPECT_EQ(JoinRequest(L"Caf\u00E9", L"").Name(), "Caf\xC3\xA9");
    EXPECT_NE(ProblemWith(L"", L""), "");
    EXPECT_NE(ProblemWith(std::wstring(33, L'x'), L""), "");
    EXPECT_NE(ProblemWith(std::wstring(1, static_cast<wchar_t>(0xD800)), L""), "");
}

TEST(JoinRequest, TakesPassPhrasesOf8To63CharactersAndKeysOf64Digits) {
    EXPECT_EQ(ProblemWith(L"x", std::wstring(8, L' ')), "");
    EXPECT_EQ(ProblemWith(L"x", std::wstring(63, L'~')), "");
    EXPECT_EQ(ProblemWith(L"x", std::wstring(64, L'F')), "");
    EXPECT_NE(ProblemWith(L"x", L"1234567"), "");
    EXPECT_NE(ProblemWith(L"x", std::wstring(64, L'g')), "");
    EXPECT_NE(ProblemWith(L"x", std::wstring(65, L'F')), "");
    EXPECT_NE(ProblemWith(L"x", L"1234567\n"), "");
    EXPECT_NE(ProblemWith(L"x", std::wstring(8, L'\0')), "");
    EXPECT_NE(ProblemWith(L"x", std::wstring(8, static_cast<wchar_t>(0xD800))), "");
}

TEST(JoinRequest, KeepsThePassPhraseOutOfTexts) {
    const JoinRequest request(L"x", L"secret words");
    EXPECT_EQ(request.WithoutSecret("a secret words b secret wordssecret words"), "a *** b ******");
    EXPECT_EQ(request.WithoutSecret("secret word"), "secret word");
    EXPECT_EQ(JoinRequest(L"x", L"").WithoutSecret("text"), "text");
}

TEST(JoinRequest, ChoosesTheStrongestThatFits) {
    const std::vector<AccessPoint> points = {
        Point("Home", 90, 0), Point("Home", 40, Host::kWpa2Personal),
        Point("Other", 99, Host::kWpa2Personal), Point("Home", 60, Host::kWpa3Personal),
        Point("Home", 95, Host::kEnterprise)};
    EXPECT_EQ(JoinRequest(L"Home", L"12345678").Choose(points), &points[3]);
    EXPECT_EQ(JoinRequest(L"Home", L"").Choose(points), &points[0]);
    EXPECT_EQ(JoinRequest(L"Nowhere", L"").Choose(points), nullptr);
}

TEST(JoinRequest, FindsANameThatIsNoTextByHowItIsShown) {
    const std::vector<AccessPoint> points = {Point("Caf\xE9", 10, 0)};
    EXPECT_EQ(JoinRequest(L"Caf\u00E9", L"").Choose(points), &points[0]);
}

TEST(JoinRequest, PrefersTheNameItselfToOneThatIsOnlyShownAlike) {
    const std::vector<AccessPoint> points = {Point("Caf\xE9", 90, 0), Point("Caf\xC3\xA9", 10, 0)};
    EXPECT_EQ(JoinRequest(L"Caf\u00E9", L"").Choose(points), &points[1]);
}

TEST(JoinRequest, SaysWhatAllThatAreThereWantInstead) {
    const auto problem = [](const AccessPoint& point) -> std::string {
        try {
            JoinRequest(L"Home", L"12345678").Choose({point});
        } catch (const Host::WifiProblem& wants) {
            return wants.what();
        }
        return {};
    };
    EXPECT_EQ(problem(Point("Home", 1, Host::kWpaPersonal)), "");
    EXPECT_EQ(problem(Point("Home", 1, Host::kEnterprise)),
              "it wants an account, not a pass phrase");
    EXPECT_EQ(problem(Point("Home", 1, Host::kWep)),
              "it is protected by WEP only, which is not supported");
    EXPECT_EQ(problem(Point("Home", 1, 0)), "it is open, and a pass phrase was given");
    AccessPoint peer = Point("Home", 1, Host::kWpa2Personal);
    peer.infrastructure = false;
    EXPECT_EQ(problem(peer), "it is not an access point");
}

}  // namespace

}  // namespace HostTest
