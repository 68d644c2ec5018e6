// SPDX-License-Identifier: Apache-2.0

#include "modules/driverless/discovery/query_pool.h"

#include <deque>
#include <map>
#include <mutex>
#include <new>
#include <system_error>
#include <thread>
#include <utility>

#include "modules/driverless/common/diagnostics.h"
#include "modules/driverless/common/guarded.h"
#include "modules/driverless/discovery/question_budget.h"

namespace Driverless {

struct QueryPool::State {
    explicit State(Listener answerListener) : listener(std::move(answerListener)) {}

    struct Task {
        PrinterTable::Query query;
        std::shared_ptr<IppQuery> running;  // null: not enough memory
    };

    // A query that is under way until this object ends.
    class Asked {
    public:
        Asked(State& inState, PrinterTable::QueryId queryId) : state(inState), query(queryId) {}
        ~Asked() {
            const std::lock_guard lock(state.mutex);
            state.asked.erase(query);
        }

        Asked(const Asked&) = delete;
        Asked& operator=(const Asked&) = delete;

    private:
        State& state;
        const PrinterTable::QueryId query;
    };

    void Work();
    std::optional<Task> Take();
    void Ask(const Task& task);
    static IppAnswer AnswerTo(const Task& task);

    const Listener listener;
    std::mutex mutex;
    std::deque<PrinterTable::Query> waiting;
    std::map<PrinterTable::QueryId, std::shared_ptr<IppQuery>> asked;
    std::size_t threads = 0;
};

// The work of one thread, which ends when no query waits. If one query runs out of memory, neither
// the thread nor the process ends.
void QueryPool::State::Work() {
    while (const auto task = Take()) {
        try {
            Ask(*task);
        } catch (const std::exception& exception) {
            // The missing answer will soon be overdue.
            ReportExhausted(exception);
        }
    }
}

std::optional<QueryPool::State::Task> QueryPool::State::Take() {
    const std::lock_guard lock(mutex);
    if (waiting.empty()) {
        --threads;
        QuestionBudget::OfProcess().Give();
        return std::nullopt;
    }
    Task task{std::move(waiting.front()), nullptr};
    waiting.pop_front();
    try {
        const auto running = std::make_shared<IppQuery>(task.query.printer, task.query.deadline);
        asked.emplace(task.query.id, running);
        task.running = running;
    } catch (const std::bad_alloc& exception) {
        ReportExhausted(exception);
    }
    return task;
}

void QueryPool::State::Ask(const Task& task) {
    IppAnswer answer;
    try {
        answer = AnswerTo(task);
    } catch (const std::exception& exception) {
        ReportExhausted(exception);
    }
    // The answer is told first: until then Drop has the query.
    const Asked whileTold(*this, task.query.id);
    listener(task.query.id, answer);
}

IppAnswer QueryPool::State::AnswerTo(const Task& task) {
    if (task.running == nullptr) {
        return {};
    }
    IppAnswer answer = task.running->Run();
    if (answer.kind != IppAnswer::Kind::Granted) {
        const Printer& printer = task.query.printer;
        ReportDetail(
            printer.id.name + " at " + printer.address + ":" + std::to_string(printer.port) +
            " gives no attributes: " + (answer.problem.empty() ? "no answer" : answer.problem));
    }
    return answer;
}

QueryPool::QueryPool(Listener listener) : state(std::make_shared<State>(std::move(listener))) {
    QuestionBudget::OfProcess().Join();
}

QueryPool::~QueryPool() {
    QuestionBudget::OfProcess().Leave();
    const std::lock_guard lock(state->mutex);
    state->waiting.clear();
    for (const auto& [id, query] : state->asked) {
        query->Abort();
    }
}

void QueryPool::Start(const PrinterTable::Query& query) {
    const std::lock_guard lock(state->mutex);
    state->waiting.push_back(query);
    // Without another thread, the running threads take the query later.
    if (!QuestionBudget::OfProcess().Take(state->threads == 0)) {
        return;
    }
    try {
        std::thread([own = state] { own->Work(); }).detach();
        ++state->threads;
    } catch (const std::system_error& problem) {
        QuestionBudget::OfProcess().Give();
        if (state->threads == 0) {
            throw;
        }
        ReportDetail(std::string("no thread left for questions: ") + problem.what());
    }
}

std::size_t QueryPool::Room() const {
    const std::lock_guard lock(state->mutex);
    return QuestionBudget::OfProcess().RoomFor(state->threads);
}

bool QueryPool::Drop(PrinterTable::QueryId query) {
    const std::lock_guard lock(state->mutex);
    std::erase_if(state->waiting, [query](const auto& one) { return one.id == query; });
    const auto running = state->asked.find(query);
    if (running == state->asked.end()) {
        return false;
    }
    running->second->Abort();
    return running->second->IsConnected();
}

}  // namespace Driverless
