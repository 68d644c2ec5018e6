#pragma once

// What the entry points return. The README lists them for callers.

namespace Driverless {

constexpr int kOk = 0;

// StartDeviceScan, StartAPWifiScan
constexpr int kNoListener = 1;  // no registration, or one without a callback
constexpr int kNoBus = 2;       // the system's D-Bus cannot be reached
constexpr int kNoAvahi = 3;     // Avahi does not run
constexpr int kNoNetwork = 4;   // this host is on no network
constexpr int kNoBrowsing = 5;  // Avahi refuses, or does not answer
constexpr int kBusLost = 6;     // D-Bus ended while the scan ran

// StopDeviceScan, StopAPWifiScan
constexpr int kStillReporting = 1;  // the application has not come back from its callback

// GetDeviceConnectState, and the notifications where they say so
constexpr int kReady = 1;           // answers, and accepts jobs
constexpr int kNotReady = 2;        // answers, but is stopped or accepts no jobs
constexpr int kNoAnswer = 3;        // does not answer
constexpr int kUnknownPrinter = 4;  // neither the record nor a scan says where the printer is
constexpr int kNoPrinter = 5;       // something answers, but not as a printer does
constexpr int kOtherPrinter = 6;    // another printer answers at this address

// IsConnectCurrentWifiAP, and whatever works through the printer's own network
constexpr int kNotPrintersNetwork = 7;  // the host is joined to no network of a printer's own
constexpr int kNoWifiAnswer = 8;        // the host's Wi-Fi service does not answer
constexpr int kNotReached = 15;         // no printer that can be configured answers there

// PrinterAPNetConfigEvent
constexpr int kRefused = 10;     // the printer does not take the settings
constexpr int kNotVisible = 11;  // the printer does not see that network
constexpr int kCannotJoin = 12;  // the network does not let the printer in
constexpr int kTimedOut = 13;    // no outcome in time
constexpr int kNotAllowed = 14;  // the printer wants to know who asks, or forbids it
constexpr int kNotValid = 16;    // no name or pass phrase that could be sent; nothing was
// It took the settings and closed its own network, and nothing shows whether it joined.
constexpr int kNotConfirmed = 26;

// IsLocalAreaNetworkOK
constexpr int kNotOnNetwork = 17;  // the printer is not on the local network
constexpr int kNoIdentity = 18;    // the record has no serial number
constexpr int kNoResources = 19;   // the process has no thread or memory left

// GetDeviceInfoByUsb
constexpr int kNoAccess = 20;     // no rights to the device
constexpr int kBusy = 21;         // another program has the device
constexpr int kNoUsbAnswer = 22;  // the device does not answer, or libusb does not work

// The USB entry points
constexpr int kNoRecord = 23;  // no record, or no room for the answer

// PrinterUSBNetConfigEvent
constexpr int kNoBridge = 24;      // nothing on this host makes printers on USB reachable by IPP
constexpr int kSeveralAlike = 25;  // several printers that cannot be told apart

}  // namespace Driverless
