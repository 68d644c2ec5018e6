// SPDX-License-Identifier: Apache-2.0

#pragma once

// The only header of the broker and its application libraries with code for particular compilers.

#if defined(_WIN32)
#define PLATFORM_EXPORT __declspec(dllexport)
#define PLATFORM_IMPORT __declspec(dllimport)
#else
#define PLATFORM_EXPORT __attribute__((visibility("default")))
#define PLATFORM_IMPORT __attribute__((visibility("default")))
#endif

// The text from which a log line's location is derived. MSVC's macro gives the qualified name;
// other compilers give the whole signature.
#if defined(_MSC_VER) && !defined(__clang__)
#define PLATFORM_FUNCTION_SIGNATURE __FUNCTION__
#else
#define PLATFORM_FUNCTION_SIGNATURE __PRETTY_FUNCTION__
#endif

// Catches every exception except the cancellation of a thread, which on Linux is an exception that
// must be rethrown.
#if defined(__GNUC__) && !defined(_WIN32)
#include <cxxabi.h>
#define PLATFORM_CATCH_ALL                \
    catch (const abi::__forced_unwind&) { \
        throw;                            \
    }                                     \
    catch (...)
#else
#define PLATFORM_CATCH_ALL catch (...)
#endif

// Exported classes have standard-library members: library and application must use the same
// run-time library.
#if defined(_MSC_VER) && !defined(__clang__)
#pragma warning(disable : 4251)
#endif
