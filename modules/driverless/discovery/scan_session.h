// SPDX-License-Identifier: Apache-2.0

#pragma once

// One scan for printers on the network.

#include <functional>
#include <memory>

#include "modules/driverless/common/report_gate.h"
#include "modules/driverless/common/scan.h"
#include "modules/driverless/discovery/avahi_silence.h"
#include "modules/driverless/printer/printer.h"

namespace Driverless {

class ScanSession : public Scan {
public:
    using Reporter = std::function<void(const Printer&)>;

    enum class Reach {
        Everywhere,
        NetworkOnly,  // without this host's announcements for itself, such as printers on USB
    };

    // Printers are reported on the thread that calls Run.
    explicit ScanSession(Reporter printerReporter, Reach looksWhere = Reach::Everywhere);
    ~ScanSession() override;

    // Looks for printers until it is stopped. Returns StartDeviceScan's result.
    int Run() override;

    bool Stop(std::chrono::milliseconds patience) override;

    ScanSession(const ScanSession&) = delete;
    ScanSession& operator=(const ScanSession&) = delete;

private:
    class Inbox;

    void Report(const Printer& printer);
    void SayLeftOut(const Printer& printer);

    const Reporter reporter;
    const Reach reach;
    const std::shared_ptr<Inbox> inbox;
    AvahiSilence silence;
    ReportGate gate;
    int leftOutLines = 0;
};

}  // namespace Driverless
