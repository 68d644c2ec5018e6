#include "app/scan_command.h"

#include <cmath>
#include <memory>

#include "app/console.h"
#include "app/json_output.h"
#include "app/line_view.h"
#include "app/messages.h"
#include "app/scan_session.h"
#include "app/table_view.h"

namespace App {

namespace {

using Clock = PrinterList::Clock;

constexpr auto kTick = std::chrono::milliseconds(200);

std::unique_ptr<ScanView> ViewFor(const Settings& settings) {
    if (settings.json) {
        return std::make_unique<LineView>(PrinterJson);
    }
    // Log lines would tear a table on the same terminal.
    const bool logOnTerminal = settings.LogsToTerminal() && ErrorIsTerminal();
    if (OutputScreen() && !logOnTerminal) {
        return std::make_unique<TableView>();
    }
    return std::make_unique<LineView>(TabbedLine);
}

std::string Status(std::size_t found, const ScanOptions& options, Clock::time_point end) {
    const std::string soFar =
        found == 0 ? "Looking for printers" : CountOfPrinters(found) + " so far";
    if (options.watch) {
        return soFar + ", until Ctrl-C";
    }
    const std::chrono::duration<double> left = end - Clock::now();
    const int seconds = static_cast<int>(std::ceil(std::max(left.count(), 0.0)));
    return soFar + ", " + std::to_string(seconds) + " s left (Ctrl-C stops)";
}

// Shows the scan until its time is over or it is cancelled, and stops it.
void Run(ScanSession& session, ScanView& view, const ScanOptions& options) {
    PrinterList& list = session.Printers();
    const auto end = Clock::now() + std::chrono::duration_cast<Clock::duration>(options.time);
    const auto isOver = [&] {
        return list.IsCancelled() || (!options.watch && Clock::now() >= end);
    };
    const auto show = [&](Clock::time_point until) {
        const std::vector<Printer> news = list.WaitForNews(until);
        view.Show(news, Status(list.GetPrinters().size(), options, end));
    };
    show(Clock::now());
    while (!isOver() && !OutputReaderIsGone()) {
        const auto tick = Clock::now() + kTick;
        show(options.watch ? tick : std::min(tick, end));
    }
    session.Stop();
    show(Clock::now());
    view.Finish();
}

}  // namespace

ExitStatus Scan(const Settings& settings, const ScanOptions& options) {
    ScanSession session;
    const std::unique_ptr<ScanView> view = ViewFor(settings);
    try {
        Run(session, *view, options);
    } catch (const OutputClosed&) {
        session.Stop();
    }
    if (!session.Printers().GetPrinters().empty() || OutputReaderIsGone()) {
        return kFound;
    }
    Complain("no printer found.\n" + AdviceAfterScan());
    return kNoneFound;
}

}  // namespace App
