// SPDX-License-Identifier: Apache-2.0

#pragma once

// Queries several printers at once, each on a thread that can be abandoned, so that a printer that
// hangs delays neither the others nor the end of the scan.

#include <functional>
#include <memory>

#include "modules/driverless/discovery/printer_table.h"
#include "modules/driverless/ipp/ipp_query.h"

namespace Driverless {

class QueryPool {
public:
    // Called on the pool's threads, on several at once, possibly even after the destructor.
    using Listener = std::function<void(PrinterTable::QueryId, const IppAnswer&)>;

    explicit QueryPool(Listener listener);
    ~QueryPool();

    void Start(const PrinterTable::Query& query);

    // Whether what was asked has accepted the connection, and only kept silent since.
    bool Drop(PrinterTable::QueryId query);

    // How many queries this pool may run at once, given the running queries of other pools.
    std::size_t Room() const;

    QueryPool(const QueryPool&) = delete;
    QueryPool& operator=(const QueryPool&) = delete;

private:
    struct State;
    const std::shared_ptr<State> state;
};

}  // namespace Driverless
