// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "platform/compiler.h"

#if defined(PRINTERDISCOVERAPI_BUILDING)
#define PRINTERDISCOVERAPI_API PLATFORM_EXPORT
#else
#define PRINTERDISCOVERAPI_API PLATFORM_IMPORT
#endif
