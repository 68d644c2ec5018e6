#pragma once

#include "DeviceDiscover/records.h"
#include "records/field_text.h"
#include "records/log_line.h"

namespace Broker {

// The two lines with which a facade says what device it was called for.
inline void LogDevice(const PrinterDeviceDiscoverSdk::DeviceInfo& device, const Location& where) {
    Log(LOG_LEVEL_DEBUG, where, "deviceSN", FieldText(device, device.deviceSN));
    Log(LOG_LEVEL_DEBUG, where, "modelID", FieldText(device, device.modelID));
}

}  // namespace Broker
