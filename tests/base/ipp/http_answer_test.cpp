// SPDX-License-Identifier: Apache-2.0

#include "base/ipp/http_answer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace BaseTest {

namespace {

using Base::HttpAnswer;
using State = HttpAnswer::State;
using testing::HasSubstr;

constexpr std::size_t kMaxBody = 100;

// What comes of an answer that comes at once, and of one that comes byte by byte.
void Expect(State state, int status, const std::string& body, const std::string& bytes) {
    HttpAnswer atOnce(kMaxBody);
    HttpAnswer byteByByte(kMaxBody);
    atOnce.Take(bytes);
    for (const char c : bytes) {
        byteByByte.Take({&c, 1});
    }
    for (HttpAnswer* answer : {&atOnce, &byteByByte}) {
        EXPECT_EQ(answer->Take(""), state) << bytes << answer->Problem();
        EXPECT_EQ(answer->Status(), status) << bytes;
        EXPECT_EQ(answer->Body(), body) << bytes;
    }
}

std::string RefusalOf(const std::string& bytes) {
    HttpAnswer answer(kMaxBody);
    EXPECT_EQ(answer.Take(bytes), State::Refused) << bytes;
    return answer.Problem();
}

TEST(HttpAnswer, HasABodyOfTheLengthThatItSays) {
    Expect(State::Whole, 200, "abc", "HTTP/1.1 200 OK\r\nContent-Length: 3\r\n\r\nabcdef");
    Expect(State::Whole, 200, "", "HTTP/1.0 200 \ncontent-length:0\n\n");
    Expect(State::Unfinished, 200, "ab", "HTTP/1.1 200 OK\r\nContent-Length: 3\r\n\r\nab");
}

TEST(HttpAnswer, HasABodyInChunks) {
    const std::string head = "HTTP/1.1 200 OK\r\nTransfer-Encoding: Chunked\r\n\r\n";
    Expect(State::Whole, 200, "abcde",
           head + "3\r\nabc\r\n2;name=value\r\nde\r\n0\r\nTrailer: x\r\n\r\n");
    Expect(State::Unfinished, 200, "abc", head + "3\r\nabc\r\n0\r\n");
}

TEST(HttpAnswer, HasABodyUntilTheConnectionEnds) {
    HttpAnswer answer(kMaxBody);
    answer.Take("HTTP/1.1 200 OK\r\n\r\nabc");
    EXPECT_EQ(answer.End(), State::Whole);
    EXPECT_EQ(answer.TakeBody(), "abc");
}

TEST(HttpAnswer, ComesAfterInterimOnes) {
    Expect(State::Whole, 200, "a",
           "HTTP/1.1 100 Continue\r\nContent-Length: 9\r\n\r\nHTTP/1.1 102 Processing\r\n\r\n"
           "HTTP/1.1 200 OK\r\nContent-Length: 1\r\n\r\na");
}

TEST(HttpAnswer, WithAnotherStatusIsWholeWithItsHead) {
    Expect(State::Whole, 401, "", "HTTP/1.1 401 Unauthorized\r\nContent-Length: 9000\r\n\r\nabc");
    Expect(State::Whole, 302, "", "HTTP/1.1 302 Found\r\nLocation: /\r\n\r\n");
    Expect(State::Whole, 101, "", "HTTP/1.1 101 Switching Protocols\r\n\r\n");
    Expect(State::Unfinished, 0, "", "HTTP/1.1 401 Unauthorized\r\n");
}

TEST(HttpAnswer, ThatBreaksOffIsRefused) {
    for (const char* const bytes :
         {"", "HTTP/1.1", "HTTP/1.1 200 OK\r\n", "HTTP/1.1 200 OK\r\nContent-Length: 3\r\n\r\nab",
          "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n3\r\nab"}) {
        HttpAnswer answer(kMaxBody);
        answer.Take(bytes);
        EXPECT_EQ(answer.End(), State::Refused) << bytes;
        EXPECT_THAT(answer.Problem(), HasSubstr("the connection ended")) << bytes;
    }
}

TEST(HttpAnswer, LargerThanAllowedIsRefused) {
    const std::string large(kMaxBody + 1, 'x');
    EXPECT_THAT(RefusalOf("HTTP/1.1 200 OK\r\nContent-Length: 101\r\n\r\n"),
                HasSubstr("more than 100 bytes"));
    EXPECT_THAT(RefusalOf("HTTP/1.1 200 OK\r\n\r\n" + large), HasSubstr("more than 100 bytes"));
    const std::string chunked = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n";
    EXPECT_THAT(RefusalOf(chunked + "65\r\n"), HasSubstr("more than 100 bytes"));
    EXPECT_THAT(RefusalOf(chunked + "ffffffffffffffff\r\n"), HasSubstr("more than 100 bytes"));
    std::string chunks = chunked;
    for (std::size_t i = 0; i <= kMaxBody; ++i) {
        chunks += "1\r\nx\r\n";
    }
    EXPECT_THAT(RefusalOf(chunks), HasSubstr("more than 100 bytes"));
}

// Takes `bytes` for ever; how many it took before it was refused.
std::size_t TakenOf(const std::string& start, const std::string& bytes) {
    HttpAnswer answer(kMaxBody);
    answer.Take(start);
    std::size_t taken = 0;
    while (answer.Take(bytes) == State::Unfinished && taken < (std::size_t{1} << 24U)) {
        taken += bytes.size();
    }
    return taken;
}

TEST(HttpAnswer, ThatNeverGetsToItsBodyIsRefused) {
    const std::string ok = "HTTP/1.1 200 OK\r\n";
    const std::string chunked = ok + "Transfer-Encoding: chunked\r\n\r\n";
    constexpr std::size_t kMost = HttpAnswer::kMaxHeadSize + 2 * kMaxBody;
    EXPECT_LE(TakenOf("", "x"), kMost) << "a status line without an end";
    EXPECT_LE(TakenOf(ok, "x"), kMost) << "a line without an end";
    EXPECT_LE(TakenOf(ok, "\r"), kMost) << "line ends that are none";
    EXPECT_LE(TakenOf(ok, "WWW-Authenticate: x\r\n"), kMost) << "lines without an end";
    EXPECT_LE(TakenOf("", "HTTP/1.1 100 Continue\r\n\r\n"), kMost) << "interim answers";
    EXPECT_LE(TakenOf(chunked, "1"), kMost) << "a chunk's head without an end";
    EXPECT_LE(TakenOf(chunked + "1;", "x"), kMost) << "a chunk's extension without an end";
    EXPECT_LE(TakenOf(chunked + "0\r\n", "X: y\r\n"), kMost) << "a trailer without an end";
}

TEST(HttpAnswer, ThatIsNoneIsRefused) {
    for (const char* const line :
         {"garbage", "HTTP/2 200 OK", "HTTP/1.1", "HTTP/1.1 20 OK", "HTTP/1.1 -20 OK",
          "HTTP/1.1 2000 OK", "HTTP/1.1 099 OK", "HTTP/1.1 abc", ""}) {
        EXPECT_EQ(RefusalOf(std::string(line) + "\r\n"), "no HTTP answer");
    }
    EXPECT_EQ(RefusalOf("HTTP/1.1 200 OK\r\nContent-Length: -1\r\n"), "a length that is no number");
    EXPECT_EQ(RefusalOf("HTTP/1.1 200 OK\r\nContent-Length: 99999999999999999999\r\n"),
              "a length that is no number");
    EXPECT_EQ(RefusalOf("HTTP/1.1 200 OK\r\nTransfer-Encoding: gzip\r\n"),
              "an answer in an unknown encoding");
    const std::string chunked = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n";
    EXPECT_EQ(RefusalOf(chunked + "xyz\r\n"), "a chunk without a length");
    EXPECT_EQ(RefusalOf(chunked + "\r\n"), "a chunk without a length");
    EXPECT_EQ(RefusalOf(chunked + "1\r\nabc\r\n"), "a chunk longer than it says");
}

}  // namespace

}  // namespace BaseTest
