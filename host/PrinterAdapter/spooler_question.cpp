// SPDX-License-Identifier: Apache-2.0

#include <condition_variable>
#include <exception>
#include <memory>
#include <mutex>
#include <thread>

#include "host/PrinterAdapter/spooler.h"
#include "platform/os_calls.h"

namespace PrinterAdapter {

namespace {

struct Question {
    bool isAnswered = false;
    SpoolerAnswer answer;
};

// The request in progress; there is at most one.
struct Desk {
    std::mutex mutex;
    std::condition_variable changed;
    std::shared_ptr<Question> current;
};

// Never destroyed: a request may outlast the process's last destructor.
Desk& TheDesk() {
    static Desk& desk = *new Desk;
    return desk;
}

SpoolerAnswer Answer() noexcept {
    SpoolerAnswer answer;
    try {
        return AskSpooler();
    } catch (const std::exception& error) {
        answer.problem = error.what();
    }
    return answer;
}

void Ask(Desk& desk, const std::shared_ptr<Question>& question) {
    SpoolerAnswer answer = Answer();
    const std::lock_guard lock(desk.mutex);
    question->answer = std::move(answer);
    question->isAnswered = true;
    desk.current = nullptr;
    desk.changed.notify_all();
}

}  // namespace

SpoolerAnswer AskSpoolerInTime() {
    const auto deadline = std::chrono::steady_clock::now() + kSpoolerTime;
    SpoolerAnswer late{{}, "the print spooler has not answered in time", {}};
    Desk& desk = TheDesk();
    std::unique_lock lock(desk.mutex);
    if (!desk.changed.wait_until(lock, deadline, [&desk] { return !desk.current; })) {
        return late;
    }
    // An abandoned thread returns into this library.
    KeepLoaded(reinterpret_cast<const void*>(&AskSpoolerInTime));
    const auto question = std::make_shared<Question>();
    std::thread asker([&desk, question] { Ask(desk, question); });
    desk.current = question;
    if (!desk.changed.wait_until(lock, deadline, [&question] { return question->isAnswered; })) {
        asker.detach();
        return late;
    }
    lock.unlock();
    asker.join();
    return std::move(question->answer);
}

}  // namespace PrinterAdapter
