// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <stdexcept>
#include <string>

#include "DeviceDiscover/records.h"
#include "VendorSdk/records.h"
#include "platform/LogHelper/KzLogger.h"
#include "platform/PrinterUtil/VendorDllMgr.h"
#include "platform/os_calls.h"

// What the benchmark programs share.

namespace Bench {

// The file of the vendor module that all of them use.
std::string VendorModule();

// The same module, but for its answer: the host is not joined to its access point.
std::string VendorModuleElsewhere();

// A vendor named `productId` whose scan module is the file at `path`.
VendorInfo Vendor(const std::string& productId, const std::string& path);

// The function that the module at `path` exports as `name`.
FARPROC Symbol(const std::string& path, const char* name);

// A filled record that goes to the vendor "bench".
PrinterDeviceDiscoverSdk::DeviceInfo ExampleDevice();

// One log line as anyone would write it: one insertion after the other into a stream.
template <class... Values>
void LogByHand(LOG_MESSAGE_LEVEL level, const char* function, const char* message,
               const Values&... values) {
    std::wstringstream line;
    line << message;
    ((line << values), ...);
    line << L"(" << function << L")";
    KzLogger::GetInstance().Log(level, line);
}

// What everything that logs pays for one line: an empty stream, made and destroyed.
void MakeEmptyLine();

// Throws unless both write the same lines: then what is compared does the same work.
void RequireSameLines(const std::function<void()>& one, const std::function<void()>& other);

// Runs the benchmarks that the program has registered. `prepare` comes first; what it throws ends
// the program with status 1.
int Run(int argc, char** argv, const std::function<void()>& prepare);

}  // namespace Bench
