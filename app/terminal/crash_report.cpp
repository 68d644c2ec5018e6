// SPDX-License-Identifier: Apache-2.0

#include "app/terminal/crash_report.h"

#include <array>
#include <atomic>
#include <cstdlib>
#include <string_view>

#include "DeviceDiscover/vendor_activity.h"
#include "app/outcome/exit_status.h"
#include "app/terminal/console.h"
#include "app/terminal/crash_system.h"
#include "app/terminal/crash_text.h"
#include "app/terminal/interrupt.h"

namespace App {

namespace {

std::atomic<bool> endIsOwn = false;
std::atomic<bool> isForJson = false;

void OnExit() {
    if (!endIsOwn && IsOwnProcess()) {
        ReportEnd("the program was ended by a call of exit()");
        EndProcess(kCouldNotRun);
    }
}

}  // namespace

void ReportCrashes() {
    CatchCrashes();
    std::atexit(OnExit);
    CatchOtherExits(OnExit);
    ReportCrashesOfThisThread();
    PrinterDeviceDiscoverSdk::PrepareVendorThreads(ReportCrashesOfThisThread);
}

void ReportCrashesInJson() {
    isForJson = true;
}

namespace {

void WriteToReader(std::string_view text) {
    constexpr std::string_view lead = R"({"problem":")";
    constexpr std::string_view end = "\"}\n";
    if (!isForJson) {
        return;
    }
    std::array<char, 2048 + lead.size() + end.size()> line;  // each character may need two
    std::size_t length = lead.copy(line.data(), lead.size());
    for (const char character : text.substr(0, 1024)) {
        if (character == '"' || character == '\\') {
            line[length++] = '\\';
        }
        line[length++] = character;
    }
    length += end.copy(line.data() + length, end.size());
    WriteLastLine({line.data(), length});
}

}  // namespace

void ReportEnd(const char* what) {
    const CrashText text(what);
    if (WriteEnd(text.View())) {
        WriteToReader(text.View());
    }
}

void EndIsOwn() {
    endIsOwn = true;
}

}  // namespace App
