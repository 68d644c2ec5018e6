// SPDX-License-Identifier: Apache-2.0

#pragma once

// The results of the entry points. The README explains them to callers.

namespace Driverless {

constexpr int kOk = 0;

// StartDeviceScan, StartAPWifiScan
constexpr int kNoListener = 1;  // no registration, or no callback in it
constexpr int kNoBus = 2;       // the system's D-Bus cannot be reached
constexpr int kNoAvahi = 3;     // Avahi does not run
constexpr int kNoNetwork = 4;   // this host is on no network
constexpr int kNoBrowsing = 5;  // Avahi refuses, or does not answer
constexpr int kBusLost = 6;     // D-Bus ended while the scan ran

// StopDeviceScan, StopAPWifiScan
constexpr int kStillReporting = 1;  // the application's callback has not returned

// GetDeviceConnectState, and some of them the notifications
constexpr int kReady = 1;           // answers, and accepts jobs
constexpr int kNotReady = 2;        // answers, but is stopped or accepts no jobs
constexpr int kNoAnswer = 3;        // does not answer
constexpr int kUnknownPrinter = 4;  // neither the record nor a scan gives an address
constexpr int kNoPrinter = 5;       // the peer that answers is not a printer
constexpr int kOtherPrinter = 6;    // another printer answers at this address

// IsConnectCurrentWifiAP, and the operations through the printer's own network
constexpr int kNotPrintersNetwork = 7;  // the host is not joined to a printer's own network
constexpr int kNoWifiAnswer = 8;        // the host's Wi-Fi service does not answer
constexpr int kNotReached = 15;         // no printer that can be configured answers there

// PrinterAPNetConfigEvent
constexpr int kRefused = 10;     // the printer does not accept the settings
constexpr int kNotVisible = 11;  // the printer does not see that network
constexpr int kCannotJoin = 12;  // the network refuses the printer
constexpr int kTimedOut = 13;    // no outcome in time
constexpr int kNotAllowed = 14;  // the printer requires a password, or forbids it
constexpr int kNotValid = 16;    // name or pass phrase is not valid; nothing was sent
// The printer accepted the settings and closed its own network; nothing shows whether it joined.
constexpr int kNotConfirmed = 26;

// IsLocalAreaNetworkOK
constexpr int kNotOnNetwork = 17;  // the printer is not on the local network
constexpr int kNoIdentity = 18;    // the record has no serial number
constexpr int kNoResources = 19;   // the process has no thread or memory left

// GetDeviceInfoByUsb
constexpr int kNoAccess = 20;     // no permission for the device
constexpr int kBusy = 21;         // another program has the device
constexpr int kNoUsbAnswer = 22;  // the device does not answer, or libusb does not work

// The USB entry points
constexpr int kNoRecord = 23;  // no record, or no room for the answer

// PrinterUSBNetConfigEvent
constexpr int kNoBridge = 24;      // no program on this host offers printers on USB over IPP
constexpr int kSeveralAlike = 25;  // several printers that cannot be distinguished

}  // namespace Driverless
