// SPDX-License-Identifier: Apache-2.0

#include "tests/support/application.h"

#include <mutex>

namespace {

template <class Record>
struct Kept {
    std::vector<Application::Report> reports;
    std::vector<Application::Report> otherReports;
    std::function<int(const Record&)> answer;
};

struct State {
    std::mutex mutex;
    Kept<PrinterDeviceDiscoverSdk::DeviceInfo> devices;
    Kept<PrinterDeviceDiscoverSdk::WifiConfigInfo> networks;
};

// Never destroyed: vendors report while the process ends.
State& TheState() {
    static State& state = *new State;
    return state;
}

template <class Record>
Application::Report ReportOf(const Record& record) {
    return {std::string(reinterpret_cast<const char*>(&record), sizeof record), &record,
            std::this_thread::get_id()};
}

template <class Record>
int Keep(Kept<Record>& kept, const Record& record) {
    std::unique_lock lock(TheState().mutex);
    kept.reports.push_back(ReportOf(record));
    const auto answer = kept.answer;
    lock.unlock();
    return answer ? answer(record) : 0;
}

template <class Record>
int KeepApart(Kept<Record>& kept, const Record& record) {
    const std::lock_guard lock(TheState().mutex);
    kept.otherReports.push_back(ReportOf(record));
    return 0;
}

// A copy, made while nobody adds to it.
std::vector<Application::Report> Copy(const std::vector<Application::Report>& reports) {
    const std::lock_guard lock(TheState().mutex);
    return reports;
}

}  // namespace

namespace Application {

int OnDevice(const PrinterDeviceDiscoverSdk::DeviceInfo* device) {
    return Keep(TheState().devices, *device);
}

int OnOtherDevice(const PrinterDeviceDiscoverSdk::DeviceInfo* device) {
    return KeepApart(TheState().devices, *device);
}

std::vector<Report> Reports() {
    return Copy(TheState().devices.reports);
}

std::vector<Report> OtherReports() {
    return Copy(TheState().devices.otherReports);
}

int OnNetwork(const PrinterDeviceDiscoverSdk::WifiConfigInfo* network) {
    return Keep(TheState().networks, *network);
}

int OnOtherNetwork(const PrinterDeviceDiscoverSdk::WifiConfigInfo* network) {
    return KeepApart(TheState().networks, *network);
}

std::vector<Report> NetworkReports() {
    return Copy(TheState().networks.reports);
}

std::vector<Report> OtherNetworkReports() {
    return Copy(TheState().networks.otherReports);
}

void AnswerWith(std::function<int(const PrinterDeviceDiscoverSdk::DeviceInfo&)> answer) {
    const std::lock_guard lock(TheState().mutex);
    TheState().devices.answer = std::move(answer);
}

void AnswerNetworksWith(
    std::function<int(const PrinterDeviceDiscoverSdk::WifiConfigInfo&)> answer) {
    const std::lock_guard lock(TheState().mutex);
    TheState().networks.answer = std::move(answer);
}

}  // namespace Application
