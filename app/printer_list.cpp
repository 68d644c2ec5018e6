#include "app/printer_list.h"

#include <algorithm>
#include <utility>

namespace App {

PrinterList& PrinterList::GetInstance() {
    static PrinterList& list = *new PrinterList;
    return list;
}

void PrinterList::Add(const Printer& printer) {
    const std::lock_guard lock(mutex);
    const auto known = std::find_if(printers.begin(), printers.end(), [&](const Printer& other) {
        return other.IsSameDevice(printer);
    });
    const auto index = static_cast<std::size_t>(known - printers.begin());
    if (known == printers.end()) {
        printers.push_back(printer);
    } else if (*known == printer) {
        return;
    } else {
        *known = printer;
    }
    news.insert(index);
    changed.notify_all();
}

void PrinterList::Cancel() {
    const std::lock_guard lock(mutex);
    cancelled = true;
    changed.notify_all();
}

bool PrinterList::IsCancelled() const {
    const std::lock_guard lock(mutex);
    return cancelled;
}

std::vector<Printer> PrinterList::WaitForNews(Clock::time_point until) {
    std::unique_lock lock(mutex);
    changed.wait_until(lock, until, [this] { return cancelled || !news.empty(); });
    std::vector<Printer> found;
    for (const std::size_t index : std::exchange(news, {})) {
        found.push_back(printers[index]);
    }
    return found;
}

std::vector<Printer> PrinterList::GetPrinters() const {
    const std::lock_guard lock(mutex);
    return printers;
}

}  // namespace App
