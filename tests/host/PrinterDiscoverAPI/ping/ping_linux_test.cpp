// SPDX-License-Identifier: Apache-2.0

#include <linux/capability.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

#include <filesystem>
#include <thread>

#include "tests/host/PrinterDiscoverAPI/logged.h"
#include "tests/host/PrinterDiscoverAPI/ping/ping_test.h"
#include "tests/host/PrinterDiscoverAPI/ping/tunnel_linux.h"

namespace HostTest {

namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kHost = "10.99.1.2";
constexpr std::uint32_t kTimeout = 100;
constexpr std::uint8_t kUnreachable = 3;
constexpr std::uint8_t kTimeExceeded = 11;

// A new network does not.
void AllowDatagramSockets() {
    ChangeNetwork("ping_group_range", "0 0");
}

// Gives up, for this thread, what raw sockets need.
void GiveUpRawSockets() {
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct data[2] = {};
    ASSERT_EQ(syscall(SYS_capget, &header, data), 0);
    data[0].effective &= ~(1U << CAP_NET_RAW);
    ASSERT_EQ(syscall(SYS_capset, &header, data), 0);
}

std::ptrdiff_t OpenFiles() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

// Both kinds of socket behave alike.
class PingBy : public testing::TestWithParam<const char*> {
protected:
    PingBy() {
        const bool byDatagram = std::string_view(GetParam()) == "DatagramSocket";
        if (byDatagram) {
            AllowDatagramSockets();
            GiveUpRawSockets();
        }
    }
};
INSTANTIATE_TEST_SUITE_P(, PingBy, testing::Values("DatagramSocket", "RawSocket"),
                         [](const auto& kind) { return std::string(kind.param); });

TEST_P(PingBy, TellsWhatTheReplySays) {
    Tunnel tunnel([](const IcmpPacket& request, const Tunnel::Send& send) {
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        send(ReplyTo(request));
    });
    const Pinged pinged = Ping(kHost, 1000);
    EXPECT_NE(pinged.result, 0);
    EXPECT_EQ(pinged.reply.address, NetworkOrder(10, 99, 1, 2));
    EXPECT_EQ(pinged.reply.timeToLive, 57U);
    EXPECT_EQ(pinged.reply.dataSize, 32U);
    EXPECT_GE(pinged.reply.roundTripTime, 30U);
    EXPECT_LE(pinged.reply.roundTripTime, pinged.milliseconds);
    EXPECT_EQ(tunnel.Requests(), 1);
}

TEST_P(PingBy, OfASilentHost_EndsWhenTheTimeIsOver) {
    Tunnel tunnel([](const IcmpPacket&, const Tunnel::Send&) {});
    const int pings = ExpectSilence(kHost, kTimeout) + ExpectSilence(kHost, 40);
    EXPECT_EQ(tunnel.Requests(), pings);
    EXPECT_THAT(TakeLines(), IsEmpty());
}

TEST_P(PingBy, TakesNoReplyOfAnEarlierPingForItsOwn) {
    IcmpPacket first;
    Tunnel tunnel([&first](const IcmpPacket& request, const Tunnel::Send& send) {
        if (first.empty()) {
            first = request;
        } else {
            send(ReplyTo(first));
        }
    });
    ExpectSilence(kHost, 30);
    ExpectSilence(kHost, kTimeout);
}

// What comes instead of the reply, by its description.
struct Forgery {
    const char* description;
    std::function<IcmpPacket(IcmpPacket reply)> forge;
};

const Forgery kForgeries[] = {
    {"another id",
     [](IcmpPacket reply) {
         reply[kIdAt] ^= 1;
         return Sealed(reply);
     }},
    {"another sequence",
     [](IcmpPacket reply) {
         reply[kSequenceAt + 1] ^= 1;
         return Sealed(reply);
     }},
    {"other data",
     [](IcmpPacket reply) {
         reply.back() ^= 1;
         return Sealed(reply);
     }},
    {"less data",
     [](IcmpPacket reply) {
         reply.pop_back();
         return Sealed(reply);
     }},
    {"no data",
     [](IcmpPacket reply) {
         reply.resize(kPayloadAt);
         return Sealed(reply);
     }},
    {"more data",
     [](IcmpPacket reply) {
         reply.resize(1400);
         return Sealed(reply);
     }},
    {"another host",
     [](IcmpPacket reply) {
         reply[kSourceAt + 3] = 3;
         return Sealed(reply);
     }},
    {"a request",
     [](IcmpPacket reply) {
         reply[kIcmpAt] = 8;
         return Sealed(reply);
     }},
    {"a time stamp reply",
     [](IcmpPacket reply) {
         reply[kIcmpAt] = 14;
         return Sealed(reply);
     }},
    {"a wrong checksum",
     [](IcmpPacket reply) {
         reply[kIcmpAt + 3] ^= 1;
         return reply;
     }},
    {"only a start",
     [](IcmpPacket reply) {
         reply.resize(kIcmpAt + 4);
         return Sealed(reply);
     }},
};

TEST_P(PingBy, TakesNoOthersReplyForItsOwn) {
    for (const Forgery& forgery : kForgeries) {
        SCOPED_TRACE(forgery.description);
        Tunnel tunnel([&forgery](const IcmpPacket& request, const Tunnel::Send& send) {
            send(forgery.forge(ReplyTo(request)));
        });
        const int pings = ExpectSilence(kHost, 50);
        EXPECT_EQ(tunnel.Requests(), pings);
    }
}

TEST_P(PingBy, FindsItsReplyAmongOthers) {
    Tunnel tunnel([](const IcmpPacket& request, const Tunnel::Send& send) {
        for (const Forgery& forgery : kForgeries) {
            send(forgery.forge(ReplyTo(request)));
        }
        send(ReplyTo(request));
    });
    const Pinged pinged = Ping(kHost, 1000);
    EXPECT_NE(pinged.result, 0);
    EXPECT_EQ(pinged.reply.dataSize, 32U);
    EXPECT_LT(pinged.milliseconds, 500);
}

// Whether the thread that pings is kept from running, and whether it is to be.
std::atomic<bool> isHeld = false;
std::atomic<bool> holds = false;

void Hold(int) {
    isHeld = true;
    while (holds) {
        usleep(1000);
    }
    isHeld = false;
}

TEST_P(PingBy, FindsItsReplyBehindMoreOthersThanASocketHasRoomFor) {
    struct sigaction action {};
    action.sa_handler = Hold;
    ASSERT_EQ(sigaction(SIGUSR1, &action, nullptr), 0);
    const pthread_t pinging = pthread_self();
    Tunnel tunnel([pinging](const IcmpPacket& request, const Tunnel::Send& send) {
        holds = true;
        pthread_kill(pinging, SIGUSR1);
        while (!isHeld) {
            usleep(1000);
        }
        IcmpPacket other = ReplyTo(request);
        other[kIdAt] ^= 1;
        other = Sealed(other);
        IcmpPacket error = request;
        error[kIdAt] ^= 1;
        error = ErrorAbout(error, kUnreachable, 1);
        for (int count = 0; count < 2000; ++count) {
            send(count % 2 == 0 ? other : error);
        }
        send(ReplyTo(request));
        holds = false;
    });
    EXPECT_NE(Ping(kHost, 2000).result, 0);
}

TEST_P(PingBy, UnderAFloodOfOthersReplies_EndsWhenTheTimeIsOver) {
    Tunnel tunnel([](const IcmpPacket& request, const Tunnel::Send& send) {
        IcmpPacket other = ReplyTo(request);
        other.back() ^= 1;
        other = Sealed(other);
        const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(300);
        while (std::chrono::steady_clock::now() < end) {
            send(other);
        }
    });
    ExpectSilence(kHost, kTimeout);
}

TEST_P(PingBy, EndsWhenTheNetworkSaysThatTheHostIsNotReached) {
    for (const std::uint8_t type : {kUnreachable, kTimeExceeded}) {
        Tunnel tunnel([type](const IcmpPacket& request, const Tunnel::Send& send) {
            send(ErrorAbout(request, type, type == kUnreachable ? 1 : 0));
        });
        const Pinged pinged = Ping(kHost, 5000);
        EXPECT_EQ(pinged.result, 0);
        EXPECT_TRUE(IsUntouched(pinged.reply));
        EXPECT_LT(pinged.milliseconds, 1000);
    }
    EXPECT_THAT(TakeLines(), IsEmpty());
}

TEST_P(PingBy, IgnoresErrorsAboutOthersPackets) {
    Tunnel tunnel([](const IcmpPacket& request, const Tunnel::Send& send) {
        for (const std::size_t at : {kIdAt, kSequenceAt, kTargetAt + 3, kIcmpAt}) {
            IcmpPacket other = request;
            other[at] ^= 1;
            send(ErrorAbout(other, kUnreachable, 1));
        }
        for (const std::size_t quoted : {0U, 1U, 19U, 20U, 24U, 27U}) {
            send(ErrorAbout(request, kUnreachable, 1, quoted));
        }
        IcmpPacket longHeader = request;
        longHeader[0] = 0x4F;
        send(ErrorAbout(longHeader, kUnreachable, 1));
        send(ReplyTo(request));
    });
    EXPECT_NE(Ping(kHost, 1000).result, 0);
}

TEST_P(PingBy, GoesOnWaitingAfterASignal) {
    struct sigaction action {};
    action.sa_handler = [](int) {};
    ASSERT_EQ(sigaction(SIGALRM, &action, nullptr), 0);
    const itimerval often{{0, 7000}, {0, 7000}};
    ASSERT_EQ(setitimer(ITIMER_REAL, &often, nullptr), 0);
    Tunnel tunnel([](const IcmpPacket&, const Tunnel::Send&) {});
    ExpectSilence(kHost, kTimeout);
    const itimerval never{};
    setitimer(ITIMER_REAL, &never, nullptr);
}

TEST_P(PingBy, FromManyThreads_GivesEachItsOwnReply) {
    // The replies come in pairs and in the wrong order.
    IcmpPacket waiting;
    Tunnel tunnel([&waiting](const IcmpPacket& request, const Tunnel::Send& send) {
        send(ReplyTo(request));
        if (!waiting.empty()) {
            send(ReplyTo(waiting));
        }
        waiting = request;
    });
    std::vector<std::thread> threads;
    std::atomic<int> answered = 0;
    for (std::uint8_t host = 10; host < 18; ++host) {
        threads.emplace_back([host, &answered] {
            const std::string address = "10.99.1." + std::to_string(host);
            for (int round = 0; round < 25; ++round) {
                const Pinged pinged = Ping(address.c_str(), 5000);
                answered +=
                    pinged.result != 0 && pinged.reply.address == NetworkOrder(10, 99, 1, host);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(answered, 8 * 25);
}

TEST_P(PingBy, KeepsNoFileOpen) {
    const std::ptrdiff_t before = OpenFiles();
    Ping("127.0.0.1", 100);
    Ping("192.0.2.1", 100);
    Ping("10.99.1.2", 1);
    Ping("nowhere", 1);
    EXPECT_EQ(OpenFiles(), before);
}

TEST_P(PingBy, WithoutAFileLeft_FailsAndSaysSo) {
    Ping("127.0.0.1", 100);
    // A sanitizer needs files to look at types it has not seen yet.
    Ping("nowhere", 100);
    TakeLines();
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
    const rlimit none{0, before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    EXPECT_EQ(Ping("127.0.0.1", 100).result, 0);
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &before), 0);
    EXPECT_THAT(TakeLines(), ElementsAre(IsLine(LOG_LEVEL_WARNING, L"Too many open files")));
}

TEST(Ping, WhereItIsNotAllowed_SaysSoOnce) {
    GiveUpRawSockets();
    for (int round = 0; round < 3; ++round) {
        const Pinged pinged = Ping("127.0.0.1", 5000);
        EXPECT_EQ(pinged.result, 0);
        EXPECT_TRUE(IsUntouched(pinged.reply));
        EXPECT_LT(pinged.milliseconds, 1000);
    }
    EXPECT_THAT(TakeLines(), ElementsAre(AllOf(IsLine(LOG_LEVEL_ERROR, L"ping is not allowed"),
                                               IsLine(LOG_LEVEL_ERROR, L"ping_group_range"),
                                               IsLine(LOG_LEVEL_ERROR, L"CAP_NET_RAW"))));
}

TEST(Ping, OfAnAddressWhoseRouteLeadsNowhere_SaysSo) {
    EXPECT_EQ(Ping("10.99.2.7", 1000).result, 0);
    EXPECT_THAT(TakeLines(), ElementsAre(IsLine(LOG_LEVEL_WARNING, L"cannot ping 10.99.2.7")));
}

TEST(Ping, OfABroadcastAddress_FailsAndSaysSo) {
    Tunnel tunnel([](const IcmpPacket&, const Tunnel::Send&) {});
    EXPECT_EQ(Ping("10.99.1.255", 1000).result, 0);
    EXPECT_THAT(TakeLines(), ElementsAre(IsLine(LOG_LEVEL_WARNING, L"cannot ping 10.99.1.255")));
}

}  // namespace

}  // namespace HostTest
