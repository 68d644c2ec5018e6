// SPDX-License-Identifier: Apache-2.0

#pragma once

// DEVICEDISCOVER_API marks what the library exports; nothing else is exported.

#include "platform/compiler.h"

#if defined(DEVICEDISCOVER_BUILDING)
#define DEVICEDISCOVER_API PLATFORM_EXPORT
#else
#define DEVICEDISCOVER_API PLATFORM_IMPORT
#endif
