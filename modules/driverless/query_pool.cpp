#include "query_pool.h"

#include <deque>
#include <map>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

#include "diagnostics.h"
#include "ipp_query.h"

namespace Driverless {

namespace {

// Printers answer in milliseconds; those that hang hold a thread for seconds.
constexpr std::size_t kMaxThreads = 32;

}  // namespace

struct QueryPool::State {
    explicit State(Listener answerListener) : listener(std::move(answerListener)) {}

    void Work();
    bool Take(PrinterTable::Query& query, std::shared_ptr<IppQuery>& running);

    const Listener listener;
    std::mutex mutex;
    std::deque<PrinterTable::Query> waiting;
    std::map<PrinterTable::QueryId, std::shared_ptr<IppQuery>> asked;
    std::size_t threads = 0;
};

// One thread's work: it ends when nothing waits any more.
void QueryPool::State::Work() {
    PrinterTable::Query query{};
    std::shared_ptr<IppQuery> running;
    while (Take(query, running)) {
        const IppAnswer answer = running->Run();
        const bool answered = answer.kind == IppAnswer::Kind::Granted;
        if (!answered) {
            ReportDetail(query.printer.id.name + " at " + query.printer.address + ":" +
                         std::to_string(query.printer.port) + " gives no attributes: " +
                         (answer.problem.empty() ? "no answer" : answer.problem));
        }
        {
            const std::lock_guard lock(mutex);
            asked.erase(query.id);
        }
        listener(query.id, answered ? std::optional(answer.attributes) : std::nullopt);
    }
}

bool QueryPool::State::Take(PrinterTable::Query& query, std::shared_ptr<IppQuery>& running) {
    const std::lock_guard lock(mutex);
    if (waiting.empty()) {
        --threads;
        return false;
    }
    query = std::move(waiting.front());
    waiting.pop_front();
    running = std::make_shared<IppQuery>(query.printer, query.deadline);
    asked.emplace(query.id, running);
    return true;
}

QueryPool::QueryPool(Listener listener) : state(std::make_shared<State>(std::move(listener))) {}

QueryPool::~QueryPool() {
    const std::lock_guard lock(state->mutex);
    state->waiting.clear();
    for (const auto& [id, query] : state->asked) {
        query->Abort();
    }
}

void QueryPool::Start(const PrinterTable::Query& query) {
    const std::lock_guard lock(state->mutex);
    state->waiting.push_back(query);
    if (state->threads == kMaxThreads) {
        return;
    }
    try {
        std::thread([own = state] { own->Work(); }).detach();
        ++state->threads;
    } catch (const std::system_error& problem) {
        // The threads that run take the query in their turn.
        if (state->threads == 0) {
            throw;
        }
        ReportDetail(std::string("no further thread for questions: ") + problem.what());
    }
}

void QueryPool::Drop(PrinterTable::QueryId query) {
    const std::lock_guard lock(state->mutex);
    std::erase_if(state->waiting, [query](const auto& one) { return one.id == query; });
    const auto running = state->asked.find(query);
    if (running != state->asked.end()) {
        running->second->Abort();
    }
}

}  // namespace Driverless
