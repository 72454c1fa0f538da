#pragma once

/// \file
/// Export macro of the base library, and the attribute that lets the compiler check printf arguments.

#if defined(_WIN32)
#if defined(KAVELOR_BUILDING)
#define KAVELOR_API __declspec(dllexport)
#else
#define KAVELOR_API __declspec(dllimport)
#endif
#else
#define KAVELOR_API __attribute__((visibility("default")))
#endif

#if defined(__MINGW_PRINTF_FORMAT)
#define KAVELOR_PRINTF(formatIndex, firstArgument) \
    __attribute__((format(__MINGW_PRINTF_FORMAT, formatIndex, firstArgument)))
#elif defined(__GNUC__)
#define KAVELOR_PRINTF(formatIndex, firstArgument) __attribute__((format(printf, formatIndex, firstArgument)))
#else
#define KAVELOR_PRINTF(formatIndex, firstArgument)
#endif
