#include <gmock/gmock.h>
#include <sys/stat.h>

#include "tests/host/host_support.h"

namespace {

using HostTest::Lines;
using HostTest::Log;
using HostTest::Utf8;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;

mode_t Mode(const std::filesystem::path& path) {
    struct stat status {};
    EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
    return status.st_mode & 07777;
}

class LogHelperOnLinux : public testing::Test {
protected:
    LogHelperOnLinux() { umask(0); }

    HostTest::User user;
    LogHelper::Settings settings;
};

}  // namespace

TEST_F(LogHelperOnLinux, KeepsFileAndFoldersToTheUser) {
    Log(LOG_LEVEL_DEBUG, L"text");
    EXPECT_EQ(Mode(user.LogFile()), 0600u);
    EXPECT_EQ(Mode(user.StateFolder()), 0700u);
    EXPECT_EQ(Mode(user.StateFolder().parent_path()), 0700u);
}

TEST_F(LogHelperOnLinux, KeepsRotatedFilesToTheUser) {
    for (int count = 0; count < 50; ++count) {
        Log(LOG_LEVEL_DEBUG, std::wstring(100000, L'x'));
    }
    EXPECT_EQ(Mode(user.LogFile()), 0600u);
    EXPECT_EQ(Mode(user.StateFolder() / "DeviceDiscover.1.log"), 0600u);
}

TEST_F(LogHelperOnLinux, FallsBackToTheHomeFolder) {
    HostTest::ClearVariable("XDG_STATE_HOME");
    HostTest::SetVariable("HOME", user.Folder());
    LogHelper::Configure(settings);
    const auto file = user.Folder() / ".local/state/DeviceDiscover/DeviceDiscover.log";
    EXPECT_EQ(LogHelper::LogFilePath(), Utf8(file));
    Log(LOG_LEVEL_DEBUG, L"text");
    EXPECT_THAT(Lines(file), ElementsAre(EndsWith(" text")));
}

TEST_F(LogHelperOnLinux, TakesNoRelativeStateFolder) {
    HostTest::SetVariable("XDG_STATE_HOME", "state");
    HostTest::SetVariable("HOME", user.Folder());
    LogHelper::Configure(settings);
    EXPECT_THAT(LogHelper::LogFilePath(), HasSubstr("/.local/state/"));
}

TEST_F(LogHelperOnLinux, SurvivesAFullDisk) {
    settings.filePath = "/dev/full";
    LogHelper::Configure(settings);
    testing::internal::CaptureStderr();
    for (int count = 0; count < 3; ++count) {
        EXPECT_NO_THROW(Log(LOG_LEVEL_ERROR, L"text"));
    }
    const std::string said = testing::internal::GetCapturedStderr();
    EXPECT_THAT(said, HasSubstr("/dev/full"));
    EXPECT_THAT(said, HasSubstr("No space left on device"));
    EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 1) << said;
}

TEST_F(LogHelperOnLinux, DoesNotWaitForAPipeThatNobodyReads) {
    const auto pipe = user.Folder() / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    settings.filePath = Utf8(pipe);
    LogHelper::Configure(settings);
    testing::internal::CaptureStderr();
    Log(LOG_LEVEL_ERROR, L"text");
    EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr(Utf8(pipe)));
}

TEST_F(LogHelperOnLinux, StartsANewFileWhenTheFileIsRemoved) {
    Log(LOG_LEVEL_DEBUG, L"one");
    std::filesystem::remove_all(user.StateFolder());
    Log(LOG_LEVEL_DEBUG, L"two");
    EXPECT_THAT(Lines(user.LogFile()), ElementsAre(EndsWith(" two")));
}

TEST_F(LogHelperOnLinux, FollowsAFileThatAnotherProcessRotated) {
    Log(LOG_LEVEL_DEBUG, L"one");
    const auto moved = user.StateFolder() / "moved.log";
    std::filesystem::rename(user.LogFile(), moved);
    Log(LOG_LEVEL_DEBUG, L"two");
    EXPECT_THAT(Lines(moved), ElementsAre(EndsWith(" one")));
    EXPECT_THAT(Lines(user.LogFile()), ElementsAre(EndsWith(" two")));
}
