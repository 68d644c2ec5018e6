// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "platform/compiler.h"

#if defined(PRINTERUTIL_BUILDING)
#define PRINTERUTIL_API PLATFORM_EXPORT
#else
#define PRINTERUTIL_API PLATFORM_IMPORT
#endif
