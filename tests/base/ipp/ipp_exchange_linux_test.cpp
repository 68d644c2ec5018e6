// SPDX-License-Identifier: Apache-2.0

#include "base/ipp/ipp_exchange_linux.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <functional>
#include <future>
#include <thread>

#include "tests/base/ipp/ipp_bytes.h"

namespace BaseTest {

namespace {

using Base::ByteStream;
using Base::IppReply;
using testing::HasSubstr;
using namespace std::chrono_literals;

constexpr Base::IppLimits kLimits{.bytes = 65536, .attributes = 100, .values = 200};
// What the machine may add when it is busy.
constexpr auto kSlack = 2s;

// A server on this host that does with its one connection what the test says, until the client
// closes it.
class Server {
public:
    // Says whether the client still listens.
    using Send = std::function<bool(const std::string&)>;

    explicit Server(std::function<void(const Send&)> serve) {
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        EXPECT_EQ(bind(listener, reinterpret_cast<sockaddr*>(&address), size), 0);
        EXPECT_EQ(listen(listener, 1), 0);
        EXPECT_EQ(getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size), 0);
        thread = std::thread([this, serve] {
            const int connection = accept(listener, nullptr, nullptr);
            ReadRequest(connection);
            serve([connection](const std::string& text) {
                return send(connection, text.data(), text.size(), MSG_NOSIGNAL) >= 0;
            });
            close(connection);
        });
    }
    ~Server() {
        thread.join();
        close(listener);
    }

    bool Accept(ByteStream& stream) const {
        return stream.Connect(reinterpret_cast<const sockaddr*>(&address), sizeof address);
    }
    // What came in one piece.
    std::string Request() const { return request; }

    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

private:
    void ReadRequest(int connection) {
        std::array<char, 4096> room{};
        for (pollfd file{connection, POLLIN, 0};
             !request.ends_with("\x03") && poll(&file, 1, 2000) > 0;) {
            const auto size = recv(connection, room.data(), room.size(), 0);
            if (size <= 0) {
                return;
            }
            request.append(room.data(), static_cast<std::size_t>(size));
            if (request.starts_with("\x16")) {
                return;  // TLS
            }
        }
    }

    sockaddr_in address{};
    const int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    std::string request;
    std::thread thread;
};

std::string Answer() {
    return Head() + Group(Base::kIppPrinterGroup) + Text("printer-name", "Acme") + End();
}

IppReply Exchange(ByteStream& stream, std::atomic<bool>* sent = nullptr) {
    return Base::ExchangeIpp(stream, {"acme.local", 631, "/ipp/print", {}}, "request\x03", kLimits,
                             sent);
}

// What comes of that answer within the time.
IppReply ReplyTo(const Server& server, std::chrono::milliseconds time = 10s) {
    ByteStream stream(ByteStream::Clock::now() + time);
    EXPECT_TRUE(server.Accept(stream));
    return Exchange(stream);
}

void ExpectOver(ByteStream::Clock::time_point begin, std::chrono::milliseconds time) {
    EXPECT_GE(ByteStream::Clock::now() - begin, time - 10ms);
    EXPECT_LT(ByteStream::Clock::now() - begin, time + kSlack);
}

TEST(ExchangeIpp, BringsAnAnswer) {
    const Server server([](const Server::Send& send) {
        send("HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(Answer().size()) + "\r\n\r\n" +
             Answer());
    });
    std::atomic<bool> sent = false;
    ByteStream stream(ByteStream::Clock::now() + 10s);
    ASSERT_TRUE(server.Accept(stream));
    const IppReply reply = Exchange(stream, &sent);
    ASSERT_TRUE(reply.message) << reply.problem;
    EXPECT_EQ(reply.message->Group(Base::kIppPrinterGroup)->Text("printer-name"), "Acme");
    EXPECT_EQ(reply.httpStatus, 200);
    EXPECT_TRUE(sent);
    EXPECT_EQ(server.Request(),
              "POST /ipp/print HTTP/1.1\r\nHost: acme.local:631\r\n"
              "Content-Type: application/ipp\r\nContent-Length: 8\r\n\r\nrequest\x03");
}

TEST(ExchangeIpp, TakesAWholeAnswerWhateverHttpSaysOfItsLength) {
    for (const char* const head : {"HTTP/1.1 200 OK\r\nContent-Length: 5000\r\n\r\n",
                                   "HTTP/1.1 200 OK\r\nConnection: keep-alive\r\n\r\n"}) {
        std::promise<void> over;
        const Server server([&](const Server::Send& send) {
            send(head + Answer());
            over.get_future().wait();
        });
        EXPECT_TRUE(ReplyTo(server).message) << head;
        over.set_value();
    }
}

TEST(ExchangeIpp, SaysWhyThereIsNoAnswer) {
    const std::array<std::pair<std::string, const char*>, 5> answers{
        std::pair{"", "the connection ended before an answer"},
        {"HTTP/1.1 404 Not Found\r\n\r\n", "HTTP status 404"},
        {"HTTP/1.1 200 OK\r\nContent-Length: 4\r\n\r\n\x02\x01zz",
         "no valid IPP answer: the answer ends in the middle, at byte 0"},
        {"HTTP/1.1 200 OK\r\n\r\n" + Head() + Group(4) + Nested(10000, false),
         "no valid IPP answer: collections nested deeper than 16 at byte "},
        {"nonsense\n", "no HTTP answer"}};
    for (const auto& [answer, problem] : answers) {
        const Server server([&text = answer](const Server::Send& send) { send(text); });
        const IppReply reply = ReplyTo(server);
        EXPECT_FALSE(reply.message);
        EXPECT_THAT(reply.problem, HasSubstr(problem));
    }
}

TEST(ExchangeIpp, EndsInTimeHoweverSlowlyAnAnswerComes) {
    for (const std::string& start : {std::string("HTTP/1.1 200 OK\r\n"),
                                     "HTTP/1.1 200 OK\r\nContent-Length: 60000\r\n\r\n" + Head() +
                                         Group(4) + "\x41" + Short(1) + "a" + Short(30000)}) {
        const Server server([&](const Server::Send& send) {
            send(start);
            while (send("\r")) {
                std::this_thread::sleep_for(5ms);
            }
        });
        const auto begin = ByteStream::Clock::now();
        const IppReply reply = ReplyTo(server, 400ms);
        EXPECT_FALSE(reply.message);
        EXPECT_EQ(reply.problem, "no answer in time");
        ExpectOver(begin, 400ms);
    }
}

TEST(ExchangeIpp, EndsAtOnceWhenAnAnswerIsEndless) {
    const std::string text = Text("", std::string(30000, 'x'));
    const Server server([&](const Server::Send& send) {
        send("HTTP/1.1 200 OK\r\n\r\n" + Head() + Group(4) + Text("a", ""));
        while (send(text)) {
        }
    });
    EXPECT_THAT(ReplyTo(server, 30s).problem, HasSubstr("more than 65536 bytes"));
}

TEST(ExchangeIpp, EndsInTimeWhenTlsBeginsSlowly) {
    const Server server([](const Server::Send& send) {
        send("\x16\x03\x03\x3f\xff");  // a record of 16 KiB
        while (send("\x02")) {
            std::this_thread::sleep_for(5ms);
        }
    });
    const auto begin = ByteStream::Clock::now();
    {
        ByteStream stream(begin + 400ms);
        ASSERT_TRUE(server.Accept(stream));
        EXPECT_FALSE(stream.StartTls("acme.local"));
        EXPECT_EQ(stream.Problem(), "no answer in time");
    }
    ExpectOver(begin, 400ms);
}

TEST(ExchangeIpp, IsBrokenOffByAnotherThread) {
    std::promise<void> over;
    const Server server([&](const Server::Send&) { over.get_future().wait(); });
    ByteStream stream(ByteStream::Clock::now() + 60s);
    ASSERT_TRUE(server.Accept(stream));
    std::thread other([&] {
        std::this_thread::sleep_for(50ms);
        stream.Cut();
    });
    const auto begin = ByteStream::Clock::now();
    EXPECT_EQ(Exchange(stream).problem, "broken off");
    EXPECT_LT(ByteStream::Clock::now() - begin, kSlack);
    EXPECT_FALSE(server.Accept(stream));
    other.join();
    over.set_value();
}

TEST(ByteStream, SaysWhyThereIsNoConnection) {
    sockaddr_in nobody{};
    nobody.sin_family = AF_INET;
    nobody.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    nobody.sin_port = htons(1);
    ByteStream stream(ByteStream::Clock::now() + 10s);
    EXPECT_FALSE(stream.Connect(reinterpret_cast<const sockaddr*>(&nobody), sizeof nobody));
    EXPECT_EQ(stream.Problem(), "Connection refused");
    EXPECT_FALSE(Exchange(stream).message);
}

TEST(IppUri, KeepsWhatAStrangerWroteInItsPlace) {
    EXPECT_EQ(Base::IppUri("ipp", {"acme.local", 631, "/ipp/print", {}}),
              "ipp://acme.local:631/ipp/print");
    EXPECT_EQ(Base::IppUri("ipps", {"a b/\r\n@", 1, "/x y\r\nHost: z?#%20\xC3", {}}),
              "ipps://a%20b%2F%0D%0A%40:1/x%20y%0D%0AHost:%20z%3F%23%20%C3");
    EXPECT_EQ(Base::IppUri("ipp", {"::1", 631, "/", {}}), "ipp://[::1]:631/");
}

}  // namespace

}  // namespace BaseTest
