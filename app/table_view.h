#pragma once

#include <chrono>
#include <cstddef>

#include "app/console.h"
#include "app/scan_view.h"

namespace App {

// A table on the terminal that is drawn anew as the scan goes on, with the scan's status below it.
class TableView : public ScanView {
public:
    void Show(const std::vector<Printer>& news, const std::string& status) override;
    void Finish() override;

private:
    void Draw(const std::vector<std::string>& lines);
    std::vector<std::string> Picture(const ScreenSize& screen, const std::string& status) const;

    std::vector<std::string> drawn;
    std::chrono::steady_clock::time_point lastDrawn{};
};

}  // namespace App
