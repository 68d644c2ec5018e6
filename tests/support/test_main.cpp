// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

#include "tests/support/process.h"

namespace {

using Words = std::vector<std::string>;

constexpr int kSecondsOfATest = 300;

// Set for a program that its launcher has started.
constexpr const char* kLaunched = "DEVICEDISCOVER_TEST_LAUNCHED";

bool IsLaunched() {
    return std::getenv(kLaunched) != nullptr;
}

std::string NameOf(const testing::TestInfo& test) {
    return std::string(test.test_suite_name()) + '.' + test.name();
}

Words SelectedTests(const testing::UnitTest& program) {
    Words names;
    for (int suite = 0; suite < program.total_test_suite_count(); ++suite) {
        const testing::TestSuite& tests = *program.GetTestSuite(suite);
        for (int index = 0; index < tests.total_test_count(); ++index) {
            if (tests.GetTestInfo(index)->should_run()) {
                names.push_back(NameOf(*tests.GetTestInfo(index)));
            }
        }
    }
    return names;
}

// Singletons bind once a process: of several tests each gets a process of its own. Also a single
// test gets one if the program has a launcher that it was not started by.
class ProcessForEachTest : public testing::EmptyTestEventListener {
public:
    explicit ProcessForEachTest(Words words) : command(std::move(words)) {}

    void OnTestProgramStart(const testing::UnitTest& program) override {
        const Words names = SelectedTests(program);
        const Words launcher = IsLaunched() ? Words() : Process::OwnLauncher();
        if (names.size() > 1 || (names.size() == 1 && !launcher.empty())) {
            std::exit(Run(names, launcher));
        }
    }

private:
    int Run(const Words& names, const Words& launcher) const {
        if (!launcher.empty()) {
            Process::SetEnvironment(kLaunched, "1");
        }
        Words failed;
        for (const std::string& name : names) {
            Words words = launcher;
            words.insert(words.end(), command.begin(), command.end());
            words.push_back("--gtest_filter=" + name);
            if (Process::RunCommand(words, kSecondsOfATest) != 0) {
                failed.push_back(name);
            }
        }
        std::cout << names.size() << " tests, each in a process of its own: " << failed.size()
                  << " failed\n";
        for (const std::string& name : failed) {
            std::cout << "  " << name << '\n';
        }
        std::cout.flush();
        return failed.empty() ? EXIT_SUCCESS : EXIT_FAILURE;
    }

    const Words command;
};

}  // namespace

int main(int count, char** arguments) {
    Words command(arguments, arguments + count);
    command.front() = Process::OwnFile();
    testing::InitGoogleMock(&count, arguments);
    testing::UnitTest::GetInstance()->listeners().Append(
        new ProcessForEachTest(std::move(command)));
    return RUN_ALL_TESTS();
}
