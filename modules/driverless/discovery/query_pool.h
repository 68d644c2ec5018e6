#pragma once

// Asks several printers at once, each on a thread that can be left behind: no printer that hangs
// keeps the others, or the end of the scan, waiting.

#include <functional>
#include <memory>

#include "modules/driverless/discovery/printer_table.h"
#include "modules/driverless/ipp/ipp_query.h"

namespace Driverless {

class QueryPool {
public:
    // Called on the pool's threads, several at once, and possibly still after the destructor.
    using Listener = std::function<void(PrinterTable::QueryId, const IppAnswer&)>;

    explicit QueryPool(Listener listener);
    ~QueryPool();

    void Start(const PrinterTable::Query& query);

    // Whether what was asked has accepted the connection, and only kept silent since.
    bool Drop(PrinterTable::QueryId query);

    // How many questions may be under way at once, with what other pools have under way.
    std::size_t Room() const;

    QueryPool(const QueryPool&) = delete;
    QueryPool& operator=(const QueryPool&) = delete;

private:
    struct State;
    const std::shared_ptr<State> state;
};

}  // namespace Driverless
