// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "DeviceDiscover/DeviceDiscover.h"

// The application's side of a scan, of printers or of Wi-Fi networks: callbacks that keep what they
// are given.
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

int OnNetwork(const PrinterDeviceDiscoverSdk::WifiConfigInfo* network);
int OnOtherNetwork(const PrinterDeviceDiscoverSdk::WifiConfigInfo* network);

std::vector<Report> NetworkReports();
std::vector<Report> OtherNetworkReports();

// What OnDevice returns, from now on, for each device; 0 at first. Called on the reporting thread
// after the device has been kept.
void AnswerWith(std::function<int(const PrinterDeviceDiscoverSdk::DeviceInfo&)> answer);

// The same for OnNetwork.
void AnswerNetworksWith(std::function<int(const PrinterDeviceDiscoverSdk::WifiConfigInfo&)> answer);

}  // namespace Application
