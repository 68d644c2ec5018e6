// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <set>
#include <thread>

#include "tests/host/host_support.h"

namespace {

using HostTest::Becomes;
using HostTest::Lines;
using HostTest::Log;
using HostTest::LogOnly;
using HostTest::Utf8;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

constexpr const wchar_t* kWhere =
    L"(PrinterDeviceDiscoverSdk::DiscoverNetConnInterface::PrinterAPNetConfigEvent)";
constexpr const char* kNarrowWhere =
    "(PrinterDeviceDiscoverSdk::DiscoverNetConnInterface::PrinterAPNetConfigEvent)";

// Time, zone and thread of a line with every digit as 0, and one digit for the thread.
std::string Shape(const std::string& line) {
    std::string shape = line.substr(0, line.find(']'));
    std::replace_if(
        shape.begin(), shape.end(),
        [](char character) { return character >= '0' && character <= '9'; }, '0');
    const std::size_t thread = std::min(shape.find('[') + 1, shape.size());
    const std::size_t end = shape.find_first_not_of('0', thread);
    return end == std::string::npos && thread < shape.size() ? shape.substr(0, thread + 1) : shape;
}

// What a line says behind time, zone, thread and level.
std::string Text(const std::string& line) {
    const std::string shape = Shape(line);
    if (shape != "0000-00-00 00:00:00.000 +00:00 [0" &&
        shape != "0000-00-00 00:00:00.000 -00:00 [0") {
        return "no log line: " + line;
    }
    constexpr std::size_t kLevelWidth = 7;
    return line.substr(line.find("] ") + 2 + kLevelWidth + 1);
}

class LogHelperTest : public testing::Test {
protected:
    std::string LastText() {
        const std::vector<std::string> lines = Lines(user.LogFile());
        return lines.empty() ? "no line" : Text(lines.back());
    }

    // Runs the program that logs to a file of its own and ends in that way.
    int EndThere(const std::string& how) {
        const auto program = HostTest::ProgramFolder() / HostTest::ProgramFileName("log_and_end");
        return HostTest::Run(program, {Utf8(own), how});
    }
    std::string LastOwnLine() {
        const std::vector<std::string> lines = Lines(own);
        return lines.empty() ? "no line" : Text(lines.back());
    }

    HostTest::User user;
    LogHelper::Settings settings;
    const std::filesystem::path own = user.Folder() / "own.log";
};

}  // namespace

TEST_F(LogHelperTest, WritesTimeThreadLevelAndTextToTheUsersStateFolder) {
    Log(LOG_LEVEL_DEBUG, L"call Func OK(A::B)");
    EXPECT_EQ(LogHelper::LogFilePath(), Utf8(user.LogFile()));
    ASSERT_THAT(Lines(user.LogFile()), SizeIs(1));
    EXPECT_EQ(LastText(), "call Func OK(A::B)");
}

TEST_F(LogHelperTest, NamesTheLevels) {
    settings.level = LOG_LEVEL_TRACE;
    LogHelper::Configure(settings);
    for (const int level : {0, 1, 2, 3, 4, 5, 7}) {
        Log(static_cast<LOG_MESSAGE_LEVEL>(level), L"text");
    }
    EXPECT_THAT(Lines(user.LogFile()),
                ElementsAre(HasSubstr(" trace "), HasSubstr(" debug "), HasSubstr(" info "),
                            HasSubstr(" warning "), HasSubstr(" error "), HasSubstr(" error "),
                            HasSubstr(" error ")));
}

TEST_F(LogHelperTest, DropsLinesBelowTheLevel) {
    settings.level = LOG_LEVEL_WARNING;
    LogHelper::Configure(settings);
    Log(LOG_LEVEL_DEBUG, L"dropped");
    Log(LOG_LEVEL_WARNING, L"kept");
    Log(LOG_LEVEL_ERROR, L"kept too");
    EXPECT_THAT(Lines(user.LogFile()), ElementsAre(EndsWith(" kept"), EndsWith(" kept too")));
}

TEST_F(LogHelperTest, DropsTraceLinesUnlessAskedForThem) {
    Log(LOG_LEVEL_TRACE, L"dropped");
    Log(LOG_LEVEL_DEBUG, L"kept");
    EXPECT_THAT(Lines(user.LogFile()), ElementsAre(EndsWith(" kept")));
}

TEST_F(LogHelperTest, HasAnErrorInTheFileBeforeItReturns) {
    for (std::size_t count = 1; count <= 20; ++count) {
        LogOnly(LOG_LEVEL_DEBUG, L"line");
        LogOnly(LOG_LEVEL_ERROR, L"error");
        ASSERT_THAT(Lines(user.LogFile()), SizeIs(2 * count));
    }
}

TEST_F(LogHelperTest, HasOtherLinesInTheFileAMomentLater) {
    for (std::size_t count = 1; count <= 5; ++count) {
        LogOnly(LOG_LEVEL_DEBUG, L"line");
        EXPECT_TRUE(Becomes([&] { return Lines(user.LogFile()).size() == count; }));
    }
}

TEST_F(LogHelperTest, KeepsTheOrderOfLinesOfAllLevels) {
    constexpr std::size_t kLines = 20000;
    for (std::size_t count = 0; count < kLines; ++count) {
        const bool isError = count % 1000 == 999;
        LogOnly(isError ? LOG_LEVEL_ERROR : LOG_LEVEL_DEBUG, std::to_wstring(count));
    }
    LogHelper::Flush();
    const std::vector<std::string> lines = Lines(user.LogFile());
    ASSERT_THAT(lines, SizeIs(kLines));
    for (std::size_t count = 0; count < kLines; ++count) {
        ASSERT_EQ(Text(lines[count]), std::to_string(count));
    }
}

TEST_F(LogHelperTest, HasAllLinesInTheFileWhenTheProcessEnds) {
    EXPECT_EQ(EndThere("exit"), 0);
    EXPECT_EQ(LastOwnLine(), "line 499");
}

TEST_F(LogHelperTest, HasAllLinesUpToAnErrorInTheFileWhenTheProcessCrashes) {
    EXPECT_NE(EndThere("crash-after-error"), 0);
    EXPECT_EQ(LastOwnLine(), "last");
    EXPECT_THAT(Lines(own), SizeIs(502));
}

TEST_F(LogHelperTest, HasWholeLinesInTheFileWhenTheProcessCrashesWithoutAHandler) {
    EXPECT_NE(EndThere("crash"), 0);
    const std::vector<std::string> lines = Lines(own);
    ASSERT_THAT(lines, Not(IsEmpty()));
    EXPECT_EQ(Text(lines.front()), "first");
    for (std::size_t number = 1; number < lines.size(); ++number) {
        ASSERT_EQ(Text(lines[number]), "line " + std::to_string(number - 1));
    }
}

TEST_F(LogHelperTest, WritesWhatWaitsAndTheLastWordsInASignalHandler) {
    EXPECT_EQ(EndThere("crash-with-handler"), 3);
    const std::vector<std::string> lines = Lines(own);
    EXPECT_THAT(lines, SizeIs(502));
    EXPECT_EQ(LastOwnLine(), "the last?words");
    EXPECT_THAT(lines.back(), HasSubstr("] error   the last"));
}

TEST_F(LogHelperTest, OpensTheFileInASignalHandlerWhenNothingWasWrittenYet) {
    const auto missing = user.Folder() / "not" / "there" / "own.log";
    const auto program = HostTest::ProgramFolder() / HostTest::ProgramFileName("log_and_end");
    ASSERT_EQ(HostTest::Run(program, {Utf8(missing), "crash-at-once"}), 3);
    const std::vector<std::string> lines = Lines(missing);
    ASSERT_THAT(lines, SizeIs(2));
    EXPECT_EQ(Text(lines.front()), "first");
    EXPECT_EQ(Text(lines.back()), "the last?words");
}

TEST_F(LogHelperTest, WritesInASignalHandlerWhileOtherThreadsLog) {
    for (int count = 0; count < 10; ++count) {
        ASSERT_EQ(EndThere("crash-among-threads"), 3);
        const std::vector<std::string> lines = Lines(own);
        const auto has = [&](const std::string& text) {
            return std::any_of(lines.begin(), lines.end(),
                               [&](const std::string& line) { return Text(line) == text; });
        };
        ASSERT_TRUE(has("line 0"));
        ASSERT_TRUE(has("line 499"));
        ASSERT_TRUE(has("the last?words"));
        std::filesystem::remove(own);
    }
}

TEST_F(LogHelperTest, CutsALineThatNeverEnds) {
    Log(LOG_LEVEL_DEBUG, std::wstring(3000000, L'x'));
    Log(LOG_LEVEL_DEBUG, L"next");
    ASSERT_THAT(Lines(user.LogFile()), SizeIs(2));
    EXPECT_THAT(Lines(user.LogFile()).front(), EndsWith("xxx..."));
    EXPECT_LT(Lines(user.LogFile()).front().size(), 300000u);
}

TEST_F(LogHelperTest, TellsThreadsApart) {
    Log(LOG_LEVEL_DEBUG, L"one");
    std::thread([] { Log(LOG_LEVEL_DEBUG, L"two"); }).join();
    std::set<std::string> threads;
    for (const std::string& text : Lines(user.LogFile())) {
        threads.insert(text.substr(text.find('['), text.find(']') - text.find('[')));
    }
    EXPECT_THAT(threads, SizeIs(2));
}

TEST_F(LogHelperTest, MasksThePassPhrase) {
    Log(LOG_LEVEL_DEBUG, std::wstring(L"pwdsecret") + kWhere);
    EXPECT_EQ(LastText(), std::string("pwd***") + kNarrowWhere);
    Log(LOG_LEVEL_DEBUG, std::wstring(L"pwd") + kWhere);
    EXPECT_EQ(LastText(), std::string("pwd***") + kNarrowWhere);
}

TEST_F(LogHelperTest, MasksAPassPhraseWithParenthesesAndLineBreaks) {
    Log(LOG_LEVEL_DEBUG, std::wstring(L"pwd(se)cr(e\nt(") + kWhere);
    EXPECT_EQ(LastText(), std::string("pwd***") + kNarrowWhere);
    EXPECT_THAT(Lines(user.LogFile()), SizeIs(1));
}

TEST_F(LogHelperTest, MasksAPassPhraseWithoutALocation) {
    Log(LOG_LEVEL_DEBUG, L"pwdsecret");
    EXPECT_EQ(LastText(), "pwd***");
}

TEST_F(LogHelperTest, MasksThePassPhraseOnTheTerminalToo) {
    settings.terminal = true;
    LogHelper::Configure(settings);
    testing::internal::CaptureStderr();
    Log(LOG_LEVEL_DEBUG, std::wstring(L"pwdsecret") + kWhere);
    const std::string text = testing::internal::GetCapturedStderr();
    EXPECT_THAT(text, HasSubstr("pwd***"));
    EXPECT_THAT(text, Not(HasSubstr("secret")));
}

TEST_F(LogHelperTest, MasksAPassPhraseThatRunsOnFromTheNetworkName) {
    const std::wstring name(128, L'n');
    Log(LOG_LEVEL_DEBUG, L"ssid" + name + L"secret" + kWhere);
    EXPECT_EQ(LastText(), "ssid" + std::string(128, 'n') + "***" + kNarrowWhere);
}

TEST_F(LogHelperTest, ShowsNetworkNames) {
    Log(LOG_LEVEL_DEBUG, std::wstring(L"ssidhome (5 GHz)") + kWhere);
    EXPECT_EQ(LastText(), std::string("ssidhome (5 GHz)") + kNarrowWhere);
    Log(LOG_LEVEL_DEBUG, L"ssid" + std::wstring(128, L'n') + kWhere);
    EXPECT_EQ(LastText(), "ssid" + std::string(128, 'n') + kNarrowWhere);
}

TEST_F(LogHelperTest, ShowsThePassPhraseToWhomAsksForIt) {
    settings.showSecrets = true;
    LogHelper::Configure(settings);
    Log(LOG_LEVEL_DEBUG, std::wstring(L"pwdsecret") + kWhere);
    EXPECT_EQ(LastText(), std::string("pwdsecret") + kNarrowWhere);
}

TEST_F(LogHelperTest, WritesWideTextAsUtf8) {
    Log(LOG_LEVEL_DEBUG, L"\u00E9\u20AC\U0001F600");
    EXPECT_EQ(LastText(), "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80");
}

TEST_F(LogHelperTest, ReplacesWhatIsNoText) {
    Log(LOG_LEVEL_DEBUG, std::wstring{L'a', static_cast<wchar_t>(0xD800), L'b'});
    EXPECT_EQ(LastText(),
              "a\xEF\xBF\xBD"
              "b");
}

TEST_F(LogHelperTest, LetsNoTextForgeALine) {
    Log(LOG_LEVEL_DEBUG,
        L"a\nb\rc\td\x1B[2Je\u0085f\u2028g\u2029h\x7F"
        L"i\u009Bj");
    Log(LOG_LEVEL_DEBUG, std::wstring(L"k\0l", 3));
    EXPECT_THAT(Lines(user.LogFile()),
                ElementsAre(EndsWith(R"( a\nb\rc\td\x1b[2Je\x85f\u2028g\u2029h\x7fi\x9bj)"),
                            EndsWith(R"( k\x00l)")));
}

TEST_F(LogHelperTest, GoesToStandardErrorOnRequest) {
    settings.terminal = true;
    settings.file = false;
    LogHelper::Configure(settings);
    testing::internal::CaptureStderr();
    Log(LOG_LEVEL_ERROR, L"caf\u00E9");
    EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("error   caf\xC3\xA9\n"));
    EXPECT_FALSE(exists(user.LogFile()));
    EXPECT_EQ(LogHelper::LogFilePath(), "");
}

TEST_F(LogHelperTest, SaysNothingOnStandardErrorOtherwise) {
    testing::internal::CaptureStderr();
    Log(LOG_LEVEL_ERROR, L"text");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(LogHelperTest, WritesToTheFileItIsGiven) {
    const auto file = user.Folder() / "new" / HostTest::ForeignName() / "own.log";
    settings.filePath = Utf8(file);
    LogHelper::Configure(settings);
    Log(LOG_LEVEL_DEBUG, L"text");
    EXPECT_EQ(LogHelper::LogFilePath(), Utf8(file));
    EXPECT_THAT(Lines(file), ElementsAre(EndsWith(" text")));
    EXPECT_FALSE(exists(user.LogFile()));
}

TEST_F(LogHelperTest, KeepsToARelativeFileWhereverTheProgramGoes) {
    std::filesystem::current_path(user.Folder());
    settings.filePath = "own.log";
    LogHelper::Configure(settings);
    std::filesystem::current_path(user.Folder().parent_path());
    Log(LOG_LEVEL_DEBUG, L"text");
    EXPECT_THAT(Lines(user.Folder() / "own.log"), ElementsAre(EndsWith(" text")));
}

TEST_F(LogHelperTest, GoesOnWithAnotherFileWhenToldSo) {
    settings.filePath = Utf8(user.Folder() / "one.log");
    LogHelper::Configure(settings);
    Log(LOG_LEVEL_DEBUG, L"one");
    settings.filePath = Utf8(user.Folder() / "two.log");
    LogHelper::Configure(settings);
    Log(LOG_LEVEL_DEBUG, L"two");
    EXPECT_THAT(Lines(user.Folder() / "one.log"), ElementsAre(EndsWith(" one")));
    EXPECT_THAT(Lines(user.Folder() / "two.log"), ElementsAre(EndsWith(" two")));
}

TEST_F(LogHelperTest, AddsToTheFileThatIsThere) {
    HostTest::Write(user.LogFile(), "earlier\n");
    Log(LOG_LEVEL_DEBUG, L"later");
    EXPECT_THAT(Lines(user.LogFile()), ElementsAre("earlier", EndsWith(" later")));
}

TEST_F(LogHelperTest, RotatesAndKeepsThreeOlderFiles) {
    const std::wstring text(100000, L'x');
    for (int count = 0; count < 250; ++count) {
        Log(LOG_LEVEL_DEBUG, text);
    }
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(user.StateFolder())) {
        names.insert(entry.path().filename().string());
        EXPECT_LE(entry.file_size(), 4u * 1024 * 1024);
        EXPECT_GT(entry.file_size(), 0u);
    }
    EXPECT_THAT(names, ElementsAre("DeviceDiscover.1.log", "DeviceDiscover.2.log",
                                   "DeviceDiscover.3.log", "DeviceDiscover.log"));
}

TEST_F(LogHelperTest, SaysOnceThatTheFileCannotBeWrittenAndGoesOn) {
    HostTest::Write(user.Folder() / "state", "a file where the folder should be");
    testing::internal::CaptureStderr();
    for (int count = 0; count < 3; ++count) {
        EXPECT_NO_THROW(Log(LOG_LEVEL_ERROR, L"text"));
    }
    const std::string said = testing::internal::GetCapturedStderr();
    EXPECT_THAT(said, HasSubstr(Utf8(user.Folder() / "state")));
    EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 1) << said;
}

TEST_F(LogHelperTest, TakesUpTheFileAgainOnceItCanBeWritten) {
    HostTest::Write(user.Folder() / "state", "a file where the folder should be");
    testing::internal::CaptureStderr();
    Log(LOG_LEVEL_ERROR, L"lost");
    testing::internal::GetCapturedStderr();
    std::filesystem::remove(user.Folder() / "state");
    std::this_thread::sleep_for(std::chrono::milliseconds(1100));
    Log(LOG_LEVEL_ERROR, L"found");
    EXPECT_EQ(LastText(), "found");
}

TEST_F(LogHelperTest, GoesOnWithoutAUsersFolder) {
    HostTest::SetUserFolders("", "");
    HostTest::ClearVariable("HOME");
    LogHelper::Configure(settings);
    testing::internal::CaptureStderr();
    Log(LOG_LEVEL_ERROR, L"text");
    Log(LOG_LEVEL_ERROR, L"text");
    const std::string said = testing::internal::GetCapturedStderr();
    EXPECT_THAT(said, HasSubstr("no folder"));
    EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 1) << said;
    EXPECT_EQ(LogHelper::LogFilePath(), "");
}

TEST_F(LogHelperTest, TakesLinesFromManyThreadsWhole) {
    constexpr int kThreads = 8;
    constexpr int kLines = 400;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([] {
            for (int count = 0; count < kLines; ++count) {
                Log(LOG_LEVEL_DEBUG, std::wstring(200, L'x'));
            }
        });
    }
    for (int count = 0; count < 20; ++count) {
        LogHelper::Configure(settings);
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    const std::vector<std::string> lines = Lines(user.LogFile());
    EXPECT_THAT(lines, SizeIs(kThreads * kLines));
    for (const std::string& text : lines) {
        ASSERT_EQ(Text(text), std::string(200, 'x'));
    }
}

TEST_F(LogHelperTest, IsSafeWhileTheProcessEnds) {
    const auto program = HostTest::ProgramFolder() / HostTest::ProgramFileName("log_until_exit");
    for (int count = 0; count < 50; ++count) {
        const auto file = user.Folder() / ("exit" + std::to_string(count) + ".log");
        ASSERT_EQ(HostTest::Run(program, {Utf8(file), std::to_string(count % 10)}), 0) << count;
        const std::string text = HostTest::Read(file);
        ASSERT_NE(text.find(" program's last line"), std::string::npos) << count;
        ASSERT_NE(text.find(" library's destructor 9"), std::string::npos) << count;
    }
}
