// SPDX-License-Identifier: Apache-2.0

#include "app/terminal/bounded_write_windows.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>

namespace {

class WriteInTime : public testing::Test {
protected:
    WriteInTime() { CreatePipe(&reader, &writer, nullptr, kSize); }
    ~WriteInTime() override {
        CloseHandle(reader);
        CloseHandle(writer);
    }

    std::string Read(DWORD most) {
        std::string bytes(most, '\0');
        DWORD length = 0;
        ReadFile(reader, bytes.data(), most, &length, nullptr);
        return bytes.substr(0, length);
    }

    static constexpr DWORD kSize = 4096;
    HANDLE reader = nullptr;
    HANDLE writer = nullptr;
};

TEST_F(WriteInTime, APipeWithRoomTakesAll) {
    App::WriteInTime(writer, "all of it");
    EXPECT_EQ(Read(100), "all of it");
}

TEST_F(WriteInTime, AReaderThatStallsIsNotAwaitedForEver) {
    const std::string filling(kSize, 'x');
    App::WriteInTime(writer, filling);
    const auto start = std::chrono::steady_clock::now();
    App::WriteInTime(writer, filling);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
    EXPECT_EQ(Read(kSize), filling);
}

}  // namespace
