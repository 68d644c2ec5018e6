// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "DeviceDiscover/records.h"
#include "broker/log/log_line.h"
#include "broker/records/field_text.h"

namespace Broker {

// Logs the two lines with which a facade names the device of a call.
inline void LogDevice(const PrinterDeviceDiscoverSdk::DeviceInfo& device, const Location& where) {
    Log(LOG_LEVEL_DEBUG, where, "deviceSN", FieldText(device, device.deviceSN));
    Log(LOG_LEVEL_DEBUG, where, "modelID", FieldText(device, device.modelID));
}

}  // namespace Broker
