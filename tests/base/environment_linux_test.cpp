// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "base/environment.h"

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;

constexpr const char* kName = "DEVICEDISCOVER_TEST_FILE";
constexpr const char* kIgnored =
    "the environment variable DEVICEDISCOVER_TEST_FILE is ignored: this program has more rights "
    "than the user who started it";
constexpr uid_t kOther = 65534;

// A folder that everyone may write to, with a copy of the program that tells.
class Environment : public testing::Test {
protected:
    Environment() {
        std::string name = (fs::path(ENVIRONMENT_TELLER).parent_path() / "told-XXXXXX").string();
        folder = mkdtemp(name.data());
        chmod(folder.c_str(), 0777);
        fs::copy_file(ENVIRONMENT_TELLER, Program());
        setenv(kName, "/some/file", 1);
    }
    ~Environment() override { fs::remove_all(folder); }

    fs::path Program() const { return folder / "teller"; }

    // What the program says, started by these users and groups.
    std::vector<std::string> Told(uid_t real, uid_t effective, gid_t realGroup = 0,
                                  gid_t effectiveGroup = 0) const {
        const fs::path output = folder / "output";
        const pid_t child = fork();
        if (child == 0) {
            if (setresgid(realGroup, effectiveGroup, effectiveGroup) == 0 &&
                setresuid(real, effective, effective) == 0) {
                execl(Program().c_str(), "teller", output.c_str(), kName, nullptr);
            }
            _exit(127);
        }
        int status = 0;
        waitpid(child, &status, 0);
        EXPECT_EQ(status, 0);
        std::ifstream file(output);
        std::vector<std::string> lines(2);
        std::getline(file, lines[0]);
        std::getline(file, lines[1]);
        return lines;
    }

    fs::path folder;
};

}  // namespace

TEST_F(Environment, IsReadByAnOrdinaryProgram) {
    const uid_t user = getuid();
    EXPECT_THAT(Told(user, user, getgid(), getgid()), ElementsAre("/some/file", ""));
}

TEST_F(Environment, ThatIsEmptyIsNotIgnored) {
    setenv(kName, "", 1);
    EXPECT_THAT(Told(getuid(), getuid(), getgid(), getgid()), ElementsAre("", ""));
}

TEST_F(Environment, IsIgnoredByASetUserIdProgram) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "only root can give files away";
    }
    ASSERT_EQ(chown(Program().c_str(), kOther, kOther), 0);
    ASSERT_EQ(chmod(Program().c_str(), 04755), 0);
    EXPECT_THAT(Told(0, 0), ElementsAre("", kIgnored));
}

TEST_F(Environment, IsIgnoredByASetGroupIdProgram) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "only root can give files away";
    }
    ASSERT_EQ(chown(Program().c_str(), 0, kOther), 0);
    ASSERT_EQ(chmod(Program().c_str(), 02755), 0);
    EXPECT_THAT(Told(0, 0), ElementsAre("", kIgnored));
}

TEST_F(Environment, IsIgnoredByAProgramWhoseEffectiveUserIsNotItsRealOne) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "only root can become another user";
    }
    EXPECT_THAT(Told(kOther, 0), ElementsAre("", kIgnored));
}

// The kernel noted nothing at the start of such a program.
TEST_F(Environment, IsIgnoredOnceTheProgramHasTakenAnotherUser) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "only root can become another user";
    }
    EXPECT_EQ(Base::ReadEnvironment(kName).text, "/some/file");
    ASSERT_EQ(seteuid(kOther), 0);
    const Base::EnvironmentText said = Base::ReadEnvironment(kName);
    ASSERT_EQ(seteuid(0), 0);
    EXPECT_EQ(said.text, "");
    EXPECT_EQ(said.ignored, kIgnored);
}
