#pragma once

// The whole exported interface.

#include "DeviceDiscover/records.h"
#include "DeviceDiscover/scan.h"
