// SPDX-License-Identifier: Apache-2.0

#include "app/library/usb/usb_watch_session.h"

#include <utility>

#include "app/library/usb/host_usb_problem.h"
#include "app/library/usb/usb_arrivals.h"
#include "app/library/usb/usb_device.h"
#include "app/program/messages.h"
#include "app/program/settings.h"
#include "app/running/awaiting.h"

namespace App {

UsbWatchSession::UsbWatchSession() : before(PortsPluggedIn()) {
    WarnOfAll(RequireUsbVendors("GetDeviceInfoByUsb", {}));
    const std::function<int()> work = [patience = AnswerLimitOr(kAnswerLimit)] {
        UsbArrivals::GetInstance().Start(patience);
        return 0;
    };
    Await("Asking for what is plugged in", work);
    watch.emplace("watch", "the device manager has not stopped its reports",
                  [] { return UsbArrivals::GetInstance().Stop(); });
    UsbArrivals::GetInstance().Compare(before, PortsPluggedIn());
}

std::vector<std::string> UsbWatchSession::TakeRemarks() {
    std::string now = UsbMonitorProblem();
    const bool isNews = !now.empty() && now != trouble;
    trouble = std::move(now);
    std::vector<std::string> remarks = UsbArrivals::GetInstance().TakeRemarks();
    if (isNews) {
        remarks.push_back(trouble);
    }
    return remarks;
}

std::vector<std::string> UsbWatchSession::Unreported() const {
    return UsbArrivals::GetInstance().Unreported(before, PortsPluggedInAtLast());
}

std::vector<std::string> UsbWatchSession::Unanswered(bool alsoRemarked) const {
    return UsbArrivals::GetInstance().Unanswered(alsoRemarked);
}

}  // namespace App
