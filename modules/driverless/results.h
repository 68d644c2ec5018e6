#pragma once

// What the entry points return. The README lists them for callers.

namespace Driverless {

constexpr int kOk = 0;

// StartDeviceScan
constexpr int kNoListener = 1;  // no registration, or one without a callback
constexpr int kNoBus = 2;       // the system's D-Bus cannot be reached
constexpr int kNoAvahi = 3;     // Avahi does not run
constexpr int kNoNetwork = 4;   // this host is on no network
constexpr int kNoBrowsing = 5;  // Avahi refuses, or does not answer
constexpr int kBusLost = 6;     // D-Bus ended while the scan ran

// StopDeviceScan
constexpr int kStillReporting = 1;  // the application has not come back from its callback

// GetDeviceConnectState, and the notifications where they say so
constexpr int kReady = 1;           // answers, and accepts jobs
constexpr int kNotReady = 2;        // answers, but is stopped or accepts no jobs
constexpr int kNoAnswer = 3;        // does not answer
constexpr int kUnknownPrinter = 4;  // neither the record nor a scan says where the printer is
constexpr int kNoPrinter = 5;       // something answers, but not as a printer does
constexpr int kOtherPrinter = 6;    // another printer answers at this address

}  // namespace Driverless
