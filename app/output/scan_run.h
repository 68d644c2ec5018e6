// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <chrono>
#include <cmath>
#include <memory>
#include <string>

#include "app/items/item_list.h"
#include "app/output/line_view.h"
#include "app/output/table_view.h"
#include "app/program/messages.h"
#include "app/program/settings.h"
#include "app/running/stopping.h"
#include "app/terminal/console.h"

namespace App {

struct ScanOptions {
    std::chrono::duration<double> time{5};
    bool watch = false;  // until interrupted, whatever `time` says
};

// A view as a table on a terminal, as lines elsewhere, as `json` lines on request.
template <class Item>
std::unique_ptr<ScanView<Item>> ViewFor(typename LineView<Item>::Format& json) {
    if (WritesJson()) {
        return std::make_unique<LineView<Item>>(json);
    }
    if (DrawsOnTerminal()) {
        return std::make_unique<TableView<Item>>();
    }
    return std::make_unique<LineView<Item>>(TabbedLine<Item>);
}

// The status of a scan that ends at `end`.
template <class Item>
std::string ScanStatus(std::size_t found, bool watch,
                       const typename ItemList<Item>::Clock::time_point& end) {
    const std::string soFar =
        found == 0 ? std::string("Looking for ") + Item::kMany : CountOf<Item>(found) + " so far";
    if (watch) {
        return soFar + ", until Ctrl-C";
    }
    const std::chrono::duration<double> left = end - ItemList<Item>::Clock::now();
    const int seconds = static_cast<int>(std::ceil(std::max(left.count(), 0.0)));
    return soFar + ", " + std::to_string(seconds) + " s left (Ctrl-C stops)";
}

// Whether the session has ended; false for a session that does not tell.
template <class Session>
bool HasEnded(Session& session) {
    if constexpr (requires { session.HasEnded(); }) {
        return session.HasEnded();
    }
    return false;
}

template <class Item, class Session>
void ShowRemarks(Session& session, ScanView<Item>& view) {
    if constexpr (requires { session.TakeRemarks(); }) {
        for (const std::string& remark : session.TakeRemarks()) {
            view.Remark(remark);
        }
    }
}

// Shows the running scan until its time is over, it has ended or it is cancelled; then stops it.
template <class Item, class Session>
void ShowScan(Session& session, ScanView<Item>& view, const ScanOptions& options) {
    using ListClock = typename ItemList<Item>::Clock;
    constexpr auto tick = std::chrono::milliseconds(200);
    ItemList<Item>& list = ItemList<Item>::GetInstance();
    const auto end =
        ListClock::now() + std::chrono::duration_cast<typename ListClock::duration>(options.time);
    const auto isOver = [&] {
        return list.IsCancelled() || HasEnded(session) ||
               (!options.watch && ListClock::now() >= end);
    };
    const auto show = [&](typename ListClock::time_point until) {
        const std::vector<Item> news = list.WaitForNews(until);
        view.Show(news, ScanStatus<Item>(list.GetItems().size(), options.watch, end));
        ShowRemarks(session, view);
    };
    show(ListClock::now());
    while (!isOver() && !OutputReaderIsGone()) {
        const auto next = ListClock::now() + tick;
        show(options.watch ? next : std::min(next, end));
    }
    session.Stop([&] { view.Show({}, StoppingText()); });
    show(ListClock::now());
    view.Finish();
}

// ShowScan. Returns whether an item was found. Throws OutputClosed, after the session has stopped,
// when the reader of the output has gone.
template <class Item, class Session>
bool RunScan(Session& session, ScanView<Item>& view, const ScanOptions& options) {
    try {
        ShowScan(session, view, options);
    } catch (const OutputClosed&) {
        session.Stop();
        throw;
    }
    if (OutputReaderIsGone()) {
        throw OutputClosed();
    }
    return !ItemList<Item>::GetInstance().GetItems().empty();
}

}  // namespace App
