// SPDX-License-Identifier: Apache-2.0

#include <fcntl.h>
#include <gmock/gmock.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <future>

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

mode_t Mode(const std::filesystem::path& path) {
    struct stat status {};
    EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
    return status.st_mode & 07777;
}

// A pipe in place of standard error.
class PipedErrors {
public:
    PipedErrors() {
        EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
        dup2(ends[1], STDERR_FILENO);
        close(ends[1]);
    }
    ~PipedErrors() {
        dup2(before, STDERR_FILENO);
        close(before);
        CloseReader();
    }
    PipedErrors(const PipedErrors&) = delete;
    PipedErrors& operator=(const PipedErrors&) = delete;

    void CloseReader() {
        if (ends[0] >= 0) {
            close(ends[0]);
            ends[0] = -1;
        }
    }
    // Fills the pipe; writers on it wait as before.
    void Fill() {
        fcntl(STDERR_FILENO, F_SETFL, O_NONBLOCK);
        while (write(STDERR_FILENO, "x", 1) == 1) {
        }
        fcntl(STDERR_FILENO, F_SETFL, 0);
    }
    // Takes all that is in the pipe.
    std::string Drain() {
        fcntl(ends[0], F_SETFL, O_NONBLOCK);
        std::string text;
        char byte = 0;
        while (read(ends[0], &byte, 1) == 1) {
            text += byte;
        }
        return text;
    }

private:
    int before = dup(STDERR_FILENO);
    int ends[2]{-1, -1};
};

// A file that takes nothing more until it is read: a terminal whose other side nobody reads.
class StuckFile {
public:
    StuckFile() : reader(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
        EXPECT_EQ(grantpt(reader), 0);
        EXPECT_EQ(unlockpt(reader), 0);
        path = ptsname(reader);
        keeper = open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
        termios raw{};
        tcgetattr(keeper, &raw);
        cfmakeraw(&raw);
        tcsetattr(keeper, TCSANOW, &raw);
        const std::string filling(1024, '.');
        while (write(keeper, filling.data(), filling.size()) > 0) {
        }
    }
    ~StuckFile() {
        close(keeper);
        close(reader);
    }
    StuckFile(const StuckFile&) = delete;
    StuckFile& operator=(const StuckFile&) = delete;

    const std::string& Path() const { return path; }

    // What was written, up to that text; all of it when it does not come.
    std::string ReadUntil(const std::string& text) {
        std::string all;
        char piece[65536];
        pollfd input{reader, POLLIN, 0};
        while (all.find(text) == std::string::npos && poll(&input, 1, 20000) == 1) {
            const ssize_t size = read(reader, piece, sizeof piece);
            all.append(piece, size > 0 ? static_cast<std::size_t>(size) : 0);
        }
        return all;
    }

private:
    int reader;
    int keeper;
    std::string path;
};

std::atomic<int> stats{0};

bool BrokenPipeIsPending() {
    sigset_t pending;
    sigpending(&pending);
    return sigismember(&pending, SIGPIPE) == 1;
}

bool BrokenPipeIsBlocked() {
    sigset_t blocked;
    pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
    return sigismember(&blocked, SIGPIPE) == 1;
}

void LogWhileCancelled() {
    pthread_cancel(pthread_self());
    LogOnly(LOG_LEVEL_ERROR, L"whole");
}

// Has no variables that the cancellation ends: AddressSanitizer would not see them go.
void* LogAndEnd(void*) {
    LogWhileCancelled();
    pthread_testcancel();
    return nullptr;
}

}  // namespace

// Stands before the system's.
extern "C" PLATFORM_EXPORT int stat(const char* __restrict path, struct stat* __restrict status) {
    ++stats;
    return fstatat(AT_FDCWD, path, status, 0);
}

namespace {

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

TEST_F(LogHelperOnLinux, TakesNoPipeForItsFileThoughSomebodyReadsIt) {
    const auto pipe = user.Folder() / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const int reader = open(pipe.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    ASSERT_GE(reader, 0);
    settings.filePath = Utf8(pipe);
    LogHelper::Configure(settings);
    testing::internal::CaptureStderr();
    Log(LOG_LEVEL_ERROR, L"text");
    EXPECT_THAT(testing::internal::GetCapturedStderr(),
                EndsWith(Utf8(pipe) + ": neither a regular file nor a character device\n"));
    char byte = 0;
    EXPECT_EQ(read(reader, &byte, 1), 0) << "nothing was written";
    close(reader);
}

TEST_F(LogHelperOnLinux, TakesACharacterDeviceForItsFile) {
    settings.filePath = "/dev/null";
    LogHelper::Configure(settings);
    testing::internal::CaptureStderr();
    Log(LOG_LEVEL_ERROR, L"text");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(LogHelperOnLinux, RaisesNoSignalWhenTheReaderOfStandardErrorHasGone) {
    settings.terminal = true;
    LogHelper::Configure(settings);
    signal(SIGPIPE, SIG_DFL);
    PipedErrors errors;
    errors.CloseReader();
    Log(LOG_LEVEL_ERROR, L"one");
    Log(LOG_LEVEL_ERROR, L"two");
    EXPECT_FALSE(BrokenPipeIsPending());
    EXPECT_FALSE(BrokenPipeIsBlocked());
    EXPECT_THAT(Lines(user.LogFile()), ElementsAre(EndsWith(" one"), EndsWith(" two")));
}

TEST_F(LogHelperOnLinux, LeavesTheProgramTheSignalThatWaitsForIt) {
    settings.terminal = true;
    LogHelper::Configure(settings);
    sigset_t brokenPipe;
    sigemptyset(&brokenPipe);
    sigaddset(&brokenPipe, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &brokenPipe, nullptr);
    raise(SIGPIPE);
    PipedErrors errors;
    errors.CloseReader();
    Log(LOG_LEVEL_ERROR, L"text");
    EXPECT_TRUE(BrokenPipeIsPending());
    EXPECT_TRUE(BrokenPipeIsBlocked());
}

TEST_F(LogHelperOnLinux, GoesOnWhenTheReaderOfStandardErrorStalls) {
    settings.terminal = true;
    LogHelper::Configure(settings);
    PipedErrors errors;
    errors.Fill();
    auto logged = std::async(std::launch::async, [] {
        for (int count = 0; count < 100; ++count) {
            Log(LOG_LEVEL_ERROR, L"lost");
        }
    });
    EXPECT_EQ(logged.wait_for(std::chrono::seconds(20)), std::future_status::ready);
    errors.Drain();
    logged.wait();
    Log(LOG_LEVEL_ERROR, L"read");
    EXPECT_THAT(errors.Drain(), EndsWith(" read\n"));
    EXPECT_EQ(Lines(user.LogFile()).size(), 101u);
}

TEST_F(LogHelperOnLinux, StartsANewFileWhenTheFileIsRemoved) {
    Log(LOG_LEVEL_DEBUG, L"one");
    std::filesystem::remove_all(user.StateFolder());
    EXPECT_TRUE(Becomes([&] {
        Log(LOG_LEVEL_DEBUG, L"two");
        return exists(user.LogFile());
    }));
    EXPECT_THAT(Lines(user.LogFile()), ElementsAre(EndsWith(" two")));
}

TEST_F(LogHelperOnLinux, FollowsAFileThatAnotherProcessRotated) {
    Log(LOG_LEVEL_DEBUG, L"one");
    const auto moved = user.StateFolder() / "moved.log";
    std::filesystem::rename(user.LogFile(), moved);
    EXPECT_TRUE(Becomes([&] {
        Log(LOG_LEVEL_DEBUG, L"two");
        return exists(user.LogFile());
    }));
    EXPECT_THAT(Lines(moved).front(), EndsWith(" one"));
    EXPECT_THAT(Lines(user.LogFile()), ElementsAre(EndsWith(" two")));
}

TEST_F(LogHelperOnLinux, LooksForItsFileAtMostTenTimesASecond) {
    Log(LOG_LEVEL_DEBUG, L"text");
    const auto start = std::chrono::steady_clock::now();
    const int before = stats;
    for (int count = 0; count < 300; ++count) {
        Log(LOG_LEVEL_DEBUG, L"text");
    }
    const auto tenths = (std::chrono::steady_clock::now() - start) / std::chrono::milliseconds(100);
    EXPECT_LE(stats - before, tenths + 1);
    EXPECT_TRUE(Becomes([&] {
        Log(LOG_LEVEL_DEBUG, L"text");
        return stats > before;
    }));
}

TEST_F(LogHelperOnLinux, IsNotHeldUpByAFileThatTakesNothing) {
    StuckFile file;
    settings.filePath = file.Path();
    LogHelper::Configure(settings);
    auto logged = std::async(std::launch::async, [] {
        for (int count = 0; count < 30000; ++count) {
            LogOnly(LOG_LEVEL_DEBUG, std::wstring(200, L'x'));
        }
    });
    EXPECT_EQ(logged.wait_for(std::chrono::seconds(20)), std::future_status::ready);
    EXPECT_THAT(file.ReadUntil("the file took no more"), HasSubstr("LogHelper: lost lines: "));
    LogOnly(LOG_LEVEL_DEBUG, L"after the loss");
    EXPECT_THAT(file.ReadUntil("after the loss"), HasSubstr("after the loss"));
    settings.file = false;
    LogHelper::Configure(settings);
}

TEST_F(LogHelperOnLinux, SharesItsFileWithOtherProcessesLineByLine) {
    const auto program = HostTest::ProgramFolder() / "log_and_end";
    const std::string shared = Utf8(user.Folder() / "shared.log");
    std::vector<std::future<int>> ends;
    for (int process = 0; process < 3; ++process) {
        ends.push_back(std::async(std::launch::async, [&] {
            return HostTest::Run(program, {shared, "exit"});
        }));
    }
    for (auto& end : ends) {
        EXPECT_EQ(end.get(), 0);
    }
    EXPECT_EQ(Lines(shared).size(), 3u * 501u);
    for (const std::string& line : Lines(shared)) {
        ASSERT_THAT(line, testing::MatchesRegex(".* (debug   line [0-9]+|error   first)"));
    }
}

TEST_F(LogHelperOnLinux, WritesALineOnceWhenTheProcessIsCopied) {
    Log(LOG_LEVEL_DEBUG, L"before");
    LogOnly(LOG_LEVEL_DEBUG, L"waits");
    const pid_t copy = fork();
    if (copy == 0) {
        LogOnly(LOG_LEVEL_DEBUG, L"from the copy");
        LogHelper::Flush();
        _exit(0);
    }
    int status = -1;
    waitpid(copy, &status, 0);
    EXPECT_EQ(status, 0);
    Log(LOG_LEVEL_DEBUG, L"after");
    const std::vector<std::string> lines = Lines(user.LogFile());
    for (const char* const text : {" before", " waits", " from the copy", " after"}) {
        EXPECT_EQ(std::count_if(lines.begin(), lines.end(),
                                [&](const std::string& line) { return line.ends_with(text); }),
                  1)
            << text;
    }
    EXPECT_THAT(lines, testing::Contains(HasSubstr("[" + std::to_string(copy) + "]")));
}

TEST_F(LogHelperOnLinux, HasAThreadThatTakesNoSignals) {
    Log(LOG_LEVEL_DEBUG, L"text");
    static std::atomic<pid_t> taker{0};
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGUSR1);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    signal(SIGUSR1, [](int) { taker = gettid(); });
    kill(getpid(), SIGUSR1);
    LogOnly(LOG_LEVEL_DEBUG, L"text");
    ASSERT_TRUE(Becomes([&] { return Lines(user.LogFile()).size() == 2; }));
    EXPECT_EQ(taker, 0);
    pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
    EXPECT_EQ(taker, gettid());
}

TEST_F(LogHelperOnLinux, WritesALineToItsEndWhenTheThreadIsCancelled) {
    settings.terminal = true;
    LogHelper::Configure(settings);
    PipedErrors errors;
    errors.Fill();
    pthread_t thread{};
    ASSERT_EQ(pthread_create(&thread, nullptr, LogAndEnd, nullptr), 0);
    void* result = nullptr;
    pthread_join(thread, &result);
    EXPECT_EQ(result, PTHREAD_CANCELED);
    errors.Drain();
    EXPECT_THAT(Lines(user.LogFile()), ElementsAre(EndsWith(" whole")));
    Log(LOG_LEVEL_ERROR, L"next");
    EXPECT_EQ(Lines(user.LogFile()).size(), 2u);
}
