// SPDX-License-Identifier: Apache-2.0

#pragma once

// The whole exported interface.

#include "DeviceDiscover/hostnet.h"
#include "DeviceDiscover/netconn.h"
#include "DeviceDiscover/printer_sdk.h"
#include "DeviceDiscover/records.h"
#include "DeviceDiscover/results.h"
#include "DeviceDiscover/scan.h"
#include "DeviceDiscover/usb.h"
#include "DeviceDiscover/vendor_activity.h"
#include "DeviceDiscover/xml.h"
