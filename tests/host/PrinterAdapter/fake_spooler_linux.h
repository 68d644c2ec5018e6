// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <atomic>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>

namespace PrinterAdapterTest {

// A socket that takes connections as a spooler does, and does with each what the test says. The
// process's spooler for as long as the object lives.
class FakeSpooler {
public:
    // `serve` gets the connection and says, now and then, whether it is still wanted.
    using Serve = std::function<void(int connection, const std::atomic<bool>& isOver)>;
    explicit FakeSpooler(Serve serve);
    ~FakeSpooler();
    FakeSpooler(const FakeSpooler&) = delete;
    FakeSpooler& operator=(const FakeSpooler&) = delete;

private:
    void Accept();

    const Serve serve;
    std::filesystem::path folder;
    int listener;
    std::atomic<bool> isOver = false;
    std::thread thread;
};

// Reads the request as far as it has come, and sends `text`.
std::string ReadRequest(int connection);
void Send(int connection, const std::string& text);

}  // namespace PrinterAdapterTest
