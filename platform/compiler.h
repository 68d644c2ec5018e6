#pragma once

// The only header of the broker and its application libraries that knows a compiler.

#if defined(_WIN32)
#define PLATFORM_EXPORT __declspec(dllexport)
#define PLATFORM_IMPORT __declspec(dllimport)
#else
#define PLATFORM_EXPORT __attribute__((visibility("default")))
#define PLATFORM_IMPORT __attribute__((visibility("default")))
#endif

// The text from which a log line's location is derived. MSVC's macro is the qualified name already;
// the others give the whole signature.
#if defined(_MSC_VER) && !defined(__clang__)
#define PLATFORM_FUNCTION_SIGNATURE __FUNCTION__
#else
#define PLATFORM_FUNCTION_SIGNATURE __PRETTY_FUNCTION__
#endif

// Catches whatever is thrown, but for the end of a thread that is cancelled: on Linux that comes as
// an exception which everybody has to let pass.
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

// Exported classes have standard-library members: both sides are built with the same run-time
// library.
#if defined(_MSC_VER) && !defined(__clang__)
#pragma warning(disable : 4251)
#endif
