// SPDX-License-Identifier: Apache-2.0

// What the questions of several scans take of one process.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <thread>

#include "modules/driverless/discovery/query_pool.h"
#include "modules/driverless/discovery/question_budget.h"

namespace Driverless {
namespace {

using std::chrono::milliseconds;

// Takes connections and says nothing, which costs no descriptor for each.
class Silent {
public:
    Silent() {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        EXPECT_EQ(bind(listener, reinterpret_cast<sockaddr*>(&address), size), 0);
        EXPECT_EQ(listen(listener, 1024), 0);
        EXPECT_EQ(getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size), 0);
        printer.address = printer.host = "127.0.0.1";
        printer.port = ntohs(address.sin_port);
        printer.kind = ServiceKind::Ipp;
    }
    ~Silent() { close(listener); }
    Silent(const Silent&) = delete;
    Silent& operator=(const Silent&) = delete;

    Printer printer;

private:
    const int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
};

template <typename Condition>
bool Becomes(Condition condition) {
    const auto deadline = Clock::now() + milliseconds(10000);
    while (!condition() && Clock::now() < deadline) {
        std::this_thread::sleep_for(milliseconds(5));
    }
    return condition();
}

std::unique_ptr<QueryPool> AskMany(const Printer& printer, int questions) {
    auto pool = std::make_unique<QueryPool>([](auto, const auto&) {});
    for (int number = 1; number <= questions; ++number) {
        pool->Start({static_cast<PrinterTable::QueryId>(number), printer,
                     Clock::now() + milliseconds(60000)});
    }
    return pool;
}

class LowLimit : public testing::Test {
protected:
    LowLimit() {
        getrlimit(RLIMIT_NOFILE, &before);
        rlimit low = before;
        low.rlim_cur = before.rlim_cur - FreeDescriptors() + kFree;
        setrlimit(RLIMIT_NOFILE, &low);
    }
    // What was asked ends by itself.
    ~LowLimit() override {
        EXPECT_TRUE(Becomes([] { return FreeDescriptors() + 1 >= kFree; }));
        setrlimit(RLIMIT_NOFILE, &before);
    }

    static constexpr std::size_t kFree = 60;
    rlimit before{};
    const Silent silent;
};

TEST_F(LowLimit, ScansThatHang_LeaveTheProcessHalfOfItsDescriptors) {
    const std::size_t free = FreeDescriptors();
    const auto first = AskMany(silent.printer, 100);
    const auto second = AskMany(silent.printer, 100);
    // The second has one of its own beside.
    const std::size_t left = free - free / 2 - 1;
    EXPECT_TRUE(Becomes([&] { return FreeDescriptors() <= left; }));
    for (int i = 0; i < 20; ++i) {
        EXPECT_GE(FreeDescriptors(), left);
        std::this_thread::sleep_for(milliseconds(5));
    }
    EXPECT_EQ(second->Room(), 1u);
}

TEST_F(LowLimit, AScanThatEnds_LeavesItsShareToTheOther) {
    const std::size_t share = FreeDescriptors() / 2 / 2;
    auto first = AskMany(silent.printer, 5);
    const auto second = AskMany(silent.printer, 0);
    EXPECT_EQ(first->Room(), share);
    EXPECT_EQ(second->Room(), share);
    first.reset();
    EXPECT_TRUE(Becomes([&] { return second->Room() >= 2 * share; }));
}

TEST(QueryPoolTest, SaysWhetherWhatIsNotWaitedForWasThere) {
    const Silent silent;
    Printer nowhere = silent.printer;
    nowhere.address = "192.0.2.1x";  // no address: nothing is ever connected
    milliseconds patience(10);
    EXPECT_TRUE(Becomes([&] {
        const auto pool = AskMany(silent.printer, 1);
        std::this_thread::sleep_for(patience *= 2);
        return pool->Drop(1);
    }));
    const auto pool = AskMany(nowhere, 1);
    std::this_thread::sleep_for(patience);
    EXPECT_FALSE(pool->Drop(1));
    EXPECT_FALSE(pool->Drop(2)) << "never asked";
}

}  // namespace
}  // namespace Driverless
