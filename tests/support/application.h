#pragma once

#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "DeviceDiscover/DeviceDiscover.h"

// The application's side of a scan: a callback that keeps what it is given.
namespace Application {

struct Report {
    std::string bytes;
    const void* address;
    std::thread::id thread;
};

int OnDevice(const PrinterDeviceDiscoverSdk::DeviceInfo* device);

// A second callback, which keeps its reports apart.
int OnOtherDevice(const PrinterDeviceDiscoverSdk::DeviceInfo* device);

std::vector<Report> Reports();
std::vector<Report> OtherReports();

// What OnDevice returns, from now on, for each device; 0 at first. Called on the reporting thread
// after the device has been kept.
void AnswerWith(std::function<int(const PrinterDeviceDiscoverSdk::DeviceInfo&)> answer);

}  // namespace Application
