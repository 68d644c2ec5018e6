#pragma once

// DEVICEDISCOVER_API marks what the library exports; nothing else leaves it.

#include "platform/compiler.h"

#if defined(DEVICEDISCOVER_BUILDING)
#define DEVICEDISCOVER_API PLATFORM_EXPORT
#else
#define DEVICEDISCOVER_API PLATFORM_IMPORT
#endif

#if defined(_MSC_VER)
// Exported classes have standard-library members: both sides are built with the same run-time
// library.
#pragma warning(disable : 4251)
#endif
