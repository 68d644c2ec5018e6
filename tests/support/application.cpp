#include "tests/support/application.h"

#include <mutex>

namespace {

struct State {
    std::mutex mutex;
    std::vector<Application::Report> reports;
    std::vector<Application::Report> otherReports;
    std::function<int(const PrinterDeviceDiscoverSdk::DeviceInfo&)> answer;
};

// Never destroyed: vendors report while the process ends.
State& TheState() {
    static State& state = *new State;
    return state;
}

Application::Report ReportOf(const PrinterDeviceDiscoverSdk::DeviceInfo& device) {
    return {std::string(reinterpret_cast<const char*>(&device), sizeof device), &device,
            std::this_thread::get_id()};
}

}  // namespace

namespace Application {

int OnDevice(const PrinterDeviceDiscoverSdk::DeviceInfo* device) {
    State& state = TheState();
    std::unique_lock lock(state.mutex);
    state.reports.push_back(ReportOf(*device));
    const auto answer = state.answer;
    lock.unlock();
    return answer ? answer(*device) : 0;
}

int OnOtherDevice(const PrinterDeviceDiscoverSdk::DeviceInfo* device) {
    State& state = TheState();
    const std::lock_guard lock(state.mutex);
    state.otherReports.push_back(ReportOf(*device));
    return 0;
}

std::vector<Report> Reports() {
    State& state = TheState();
    const std::lock_guard lock(state.mutex);
    return state.reports;
}

std::vector<Report> OtherReports() {
    State& state = TheState();
    const std::lock_guard lock(state.mutex);
    return state.otherReports;
}

void AnswerWith(std::function<int(const PrinterDeviceDiscoverSdk::DeviceInfo&)> answer) {
    State& state = TheState();
    const std::lock_guard lock(state.mutex);
    state.answer = std::move(answer);
}

}  // namespace Application
