// SPDX-License-Identifier: Apache-2.0

#include <avahi-common/address.h>
#include <avahi-common/simple-watch.h>
#include <dbus/dbus.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "modules/driverless/discovery/service_lookups.h"

namespace Driverless {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kPatienceForBus{20};

// A D-Bus of the test's own, which is the system's as long as the test runs. It ends with the test.
class OwnBus {
public:
    OwnBus() {
        int ends[2];
        if (pipe(ends) != 0) {
            return;
        }
        const std::string print = "--print-address=" + std::to_string(ends[1]);
        const std::string words[] = {"setpriv",   "--pdeathsig", "KILL",        "dbus-daemon",
                                     "--session", "--nofork",    "--nopidfile", print};
        std::vector<char*> arguments;
        for (const std::string& word : words) {
            arguments.push_back(const_cast<char*>(word.c_str()));
        }
        arguments.push_back(nullptr);
        posix_spawnp(&process, "setpriv", nullptr, nullptr, arguments.data(), environ);
        close(ends[1]);
        for (char letter = 0; read(ends[0], &letter, 1) == 1 && letter != '\n';) {
            address += letter;
        }
        close(ends[0]);
        setenv("DBUS_SYSTEM_BUS_ADDRESS", address.c_str(), 1);
    }

    ~OwnBus() { End(); }
    OwnBus(const OwnBus&) = delete;
    OwnBus& operator=(const OwnBus&) = delete;

    void End() {
        if (process > 0) {
            kill(process, SIGKILL);
            waitpid(process, nullptr, 0);
            process = -1;
        }
    }

private:
    std::string address;
    pid_t process = -1;
};

struct ReleaseBusMessage {
    void operator()(DBusMessage* message) const { dbus_message_unref(message); }
};
using BusMessage = std::unique_ptr<DBusMessage, ReleaseBusMessage>;

// Somebody on the bus.
class BusPeer {
public:
    explicit BusPeer(const char* name = nullptr)
        : connection(dbus_bus_get_private(DBUS_BUS_SYSTEM, nullptr)) {
        dbus_connection_set_exit_on_disconnect(connection, FALSE);
        if (name != nullptr) {
            dbus_bus_request_name(connection, name, 0, nullptr);
        }
    }
    ~BusPeer() {
        dbus_connection_close(connection);
        dbus_connection_unref(connection);
    }
    BusPeer(const BusPeer&) = delete;
    BusPeer& operator=(const BusPeer&) = delete;

    // The next call of that method; nothing when none comes within the time.
    BusMessage Call(const std::string& method, std::chrono::milliseconds time = kPatienceForBus) {
        for (const auto end = Clock::now() + time; Clock::now() < end;) {
            dbus_connection_read_write(connection, 5);
            while (BusMessage message{dbus_connection_pop_message(connection)}) {
                const char* const member = dbus_message_get_member(message.get());
                if (member != nullptr && member == method) {
                    return message;
                }
            }
        }
        return nullptr;
    }

    void Reply(const BusMessage& call, const char* path) {
        const BusMessage reply(dbus_message_new_method_return(call.get()));
        dbus_message_append_args(reply.get(), DBUS_TYPE_OBJECT_PATH, &path, DBUS_TYPE_INVALID);
        Send(reply);
    }

    void Refuse(const BusMessage& call) {
        Send(BusMessage(dbus_message_new_error(
            call.get(), "org.freedesktop.Avahi.TooManyObjectsError", "Too many objects")));
    }

    // Says to the caller what the look-up with that path has found.
    void Find(const BusMessage& call, const char* path, const char* host) {
        const BusMessage signal(
            dbus_message_new_signal(path, "org.freedesktop.Avahi.ServiceResolver", "Found"));
        dbus_message_set_destination(signal.get(), dbus_message_get_sender(call.get()));
        const dbus_int32_t number = 0;
        const char* const text = "it";
        const char* const address = "10.1.2.3";
        const dbus_uint16_t port = 631;
        const dbus_uint32_t flags = 8;  // by this host
        dbus_message_append_args(signal.get(), DBUS_TYPE_INT32, &number, DBUS_TYPE_INT32, &number,
                                 DBUS_TYPE_STRING, &text, DBUS_TYPE_STRING, &text, DBUS_TYPE_STRING,
                                 &text, DBUS_TYPE_STRING, &host, DBUS_TYPE_INT32, &number,
                                 DBUS_TYPE_STRING, &address, DBUS_TYPE_UINT16, &port,
                                 DBUS_TYPE_INVALID);
        DBusMessageIter arguments;
        DBusMessageIter texts;
        dbus_message_iter_init_append(signal.get(), &arguments);
        dbus_message_iter_open_container(&arguments, DBUS_TYPE_ARRAY, "ay", &texts);
        for (const std::string entry : {"RP=ipp/print", "rp=second", "", "ty", "other=1"}) {
            DBusMessageIter bytes;
            const char* const start = entry.data();
            dbus_message_iter_open_container(&texts, DBUS_TYPE_ARRAY, "y", &bytes);
            dbus_message_iter_append_fixed_array(&bytes, DBUS_TYPE_BYTE, &start,
                                                 static_cast<int>(entry.size()));
            dbus_message_iter_close_container(&texts, &bytes);
        }
        dbus_message_iter_close_container(&arguments, &texts);
        dbus_message_iter_append_basic(&arguments, DBUS_TYPE_UINT32, &flags);
        Send(signal);
    }

    // Says something else under the same name.
    void FindNonsense(const BusMessage& call, const char* path) {
        const BusMessage signal(
            dbus_message_new_signal(path, "org.freedesktop.Avahi.ServiceResolver", "Found"));
        dbus_message_set_destination(signal.get(), dbus_message_get_sender(call.get()));
        Send(signal);
    }

private:
    void Send(const BusMessage& message) {
        dbus_connection_send(connection, message.get(), nullptr);
        dbus_connection_flush(connection);
    }

    DBusConnection* const connection;
};

std::string NameIn(const BusMessage& call) {
    const char* name = "";
    dbus_int32_t number = 0;
    dbus_message_get_args(call.get(), nullptr, DBUS_TYPE_INT32, &number, DBUS_TYPE_INT32, &number,
                          DBUS_TYPE_STRING, &name, DBUS_TYPE_INVALID);
    return name;
}

class ServiceLookupsTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(lookups->Connect()); }

    ~ServiceLookupsTest() override {
        lookups.reset();
        avahi_simple_poll_free(poll);
    }

    static ServiceId Id(const std::string& name) { return {name, "local", ServiceKind::Ipp, 2}; }

    // False when it is not so in time.
    bool Until(const std::function<bool()>& isSo,
               std::chrono::milliseconds time = kPatienceForBus) {
        const auto end = Clock::now() + time;
        while (!isSo() && Clock::now() < end) {
            avahi_simple_poll_iterate(poll, 5);
        }
        return isSo();
    }

    // Begins a look-up, which Avahi takes.
    BusMessage Begin(const std::string& name, const char* path) {
        lookups->Begin(Id(name));
        BusMessage call = avahi.Call("ServiceResolverNew");
        avahi.Reply(call, path);
        return call;
    }

    OwnBus bus;
    BusPeer avahi{"org.freedesktop.Avahi"};
    AvahiSimplePoll* const poll = avahi_simple_poll_new();
    std::vector<std::pair<ServiceId, Service>> found;
    std::vector<std::string> refused;
    bool isLost = false;
    std::unique_ptr<ServiceLookups> lookups = std::make_unique<ServiceLookups>(
        avahi_simple_poll_get(poll),
        ServiceLookups::Listener{[this](const ServiceId& id, Service service, bool byThisHost) {
                                     EXPECT_TRUE(byThisHost);
                                     found.emplace_back(id, std::move(service));
                                 },
                                 [this](const ServiceId& id, const std::string& error) {
                                     refused.push_back(id.name + ": " + error);
                                 }},
        [this] { isLost = !lookups->Receive(); });
};

TEST_F(ServiceLookupsTest, WhatIsFound_IsTold) {
    const BusMessage call = Begin("Laser", "/one");
    EXPECT_EQ(NameIn(call), "Laser");
    avahi.Find(call, "/one", "laser.local");
    ASSERT_TRUE(Until([this] { return !found.empty(); }));
    EXPECT_EQ(found[0].first, Id("Laser"));
    const Service& service = found[0].second;
    EXPECT_EQ(service.host, "laser.local");
    EXPECT_EQ(service.address, "10.1.2.3");
    EXPECT_EQ(service.port, 631);
    EXPECT_EQ(service.txt, (std::map<std::string, std::string>{{"rp", "ipp/print"}, {"ty", ""}}));
}

TEST_F(ServiceLookupsTest, Calls_DoNotWaitForEachOther) {
    lookups->Begin(Id("First"));
    lookups->Begin(Id("Second"));
    const BusMessage first = avahi.Call("ServiceResolverNew");
    const BusMessage second = avahi.Call("ServiceResolverNew");
    ASSERT_NE(second, nullptr) << "before the answer to the first";
    avahi.Reply(second, "/second");
    avahi.Find(second, "/second", "second.local");
    avahi.Reply(first, "/first");
    avahi.Find(first, "/first", "first.local");
    ASSERT_TRUE(Until([this] { return found.size() == 2; }));
    EXPECT_EQ(found[0].first, Id("Second"));
    EXPECT_EQ(found[1].first, Id("First"));
}

TEST_F(ServiceLookupsTest, WhatIsEnded_IsGivenBackAndNoLongerTold) {
    const BusMessage call = Begin("Laser", "/one");
    avahi.Find(call, "/one", "laser.local");
    ASSERT_TRUE(Until([this] { return !found.empty(); }));
    lookups->End(Id("Laser"));
    const BusMessage free = avahi.Call("Free");
    ASSERT_NE(free, nullptr);
    EXPECT_STREQ(dbus_message_get_path(free.get()), "/one");
    EXPECT_TRUE(dbus_message_get_no_reply(free.get()));
    avahi.Find(call, "/one", "again.local");
    const BusMessage next = Begin("Next", "/two");
    avahi.Find(next, "/two", "next.local");
    ASSERT_TRUE(Until([this] { return found.back().first == Id("Next"); }));
    EXPECT_EQ(found.size(), 2u);
}

TEST_F(ServiceLookupsTest, WhatIsEndedBeforeAvahiHasNamedIt_IsGivenBackThen) {
    lookups->Begin(Id("Laser"));
    lookups->End(Id("Laser"));
    const BusMessage call = avahi.Call("ServiceResolverNew");
    avahi.Reply(call, "/one");
    avahi.Find(call, "/one", "laser.local");
    BusMessage free;
    ASSERT_TRUE(Until([&] {
        free = free ? std::move(free) : avahi.Call("Free", std::chrono::milliseconds(5));
        return free != nullptr;
    }));
    EXPECT_STREQ(dbus_message_get_path(free.get()), "/one");
    EXPECT_TRUE(found.empty());
}

TEST_F(ServiceLookupsTest, WhatIsBegunAnew_IsAnotherLookup) {
    lookups->Begin(Id("Laser"));
    const BusMessage before = avahi.Call("ServiceResolverNew");
    lookups->Begin(Id("Laser"));
    const BusMessage call = avahi.Call("ServiceResolverNew");
    avahi.Reply(before, "/before");
    avahi.Find(before, "/before", "before.local");
    avahi.Reply(call, "/one");
    avahi.Find(call, "/one", "laser.local");
    ASSERT_TRUE(Until([this] { return !found.empty(); }));
    EXPECT_EQ(found[0].second.host, "laser.local");
    const BusMessage free = avahi.Call("Free");
    ASSERT_NE(free, nullptr);
    EXPECT_STREQ(dbus_message_get_path(free.get()), "/before");
}

TEST_F(ServiceLookupsTest, ARefusal_IsTold) {
    lookups->Begin(Id("Laser"));
    avahi.Refuse(avahi.Call("ServiceResolverNew"));
    ASSERT_TRUE(Until([this] { return !refused.empty(); }));
    EXPECT_EQ(refused, std::vector<std::string>{"Laser: Too many objects"});
}

TEST_F(ServiceLookupsTest, OfARefusalOfWhatIsEnded_NothingIsTold) {
    lookups->Begin(Id("Laser"));
    lookups->End(Id("Laser"));
    avahi.Refuse(avahi.Call("ServiceResolverNew"));
    const BusMessage next = Begin("Next", "/two");
    avahi.Find(next, "/two", "next.local");
    ASSERT_TRUE(Until([this] { return !found.empty(); }));
    EXPECT_TRUE(refused.empty());
}

TEST_F(ServiceLookupsTest, SomebodyElsesWord_IsNotBelieved) {
    const BusMessage call = Begin("Laser", "/one");
    avahi.Find(call, "/one", "laser.local");
    ASSERT_TRUE(Until([this] { return !found.empty(); }));
    BusPeer stranger;
    stranger.Find(call, "/one", "stranger.local");
    avahi.FindNonsense(call, "/one");
    const BusMessage next = Begin("Next", "/two");
    avahi.Find(next, "/two", "next.local");
    ASSERT_TRUE(Until([this] { return found.size() > 1; }));
    EXPECT_EQ(found[1].second.host, "next.local");
}

TEST_F(ServiceLookupsTest, AnAvahiThatIsBehind_IsAskedForNoMore) {
    constexpr int many = 40;
    for (int number = 0; number < many; ++number) {
        lookups->Begin(Id("Laser " + std::to_string(number)));
    }
    EXPECT_TRUE(lookups->IsBehind());
    std::vector<BusMessage> calls;
    while (BusMessage call = avahi.Call("ServiceResolverNew", std::chrono::milliseconds(200))) {
        calls.push_back(std::move(call));
    }
    EXPECT_GT(calls.size(), 1u);
    EXPECT_LT(calls.size(), 20u);
    lookups->End(Id("Laser 39"));
    std::size_t answered = 0;
    const auto answerAll = [&] {
        while (BusMessage call = avahi.Call("ServiceResolverNew", std::chrono::milliseconds(2))) {
            calls.push_back(std::move(call));
        }
        for (; answered < calls.size(); ++answered) {
            avahi.Reply(calls[answered], ("/" + std::to_string(answered)).c_str());
        }
        return !lookups->IsBehind() && answered == many - 1;
    };
    EXPECT_TRUE(Until(answerAll)) << answered;
}

TEST_F(ServiceLookupsTest, ABusThatEnds_IsTold) {
    Begin("Laser", "/one");
    bus.End();
    EXPECT_TRUE(Until([this] { return isLost; }));
    EXPECT_FALSE(lookups->IsConnected());
    lookups->Begin(Id("Laser"));
    lookups->End(Id("Laser"));
}

}  // namespace
}  // namespace Driverless
