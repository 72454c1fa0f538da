#pragma once

/// Marks what the shared library exports. RENDERENGINE_BUILDING is defined while the library itself is compiled.
#if defined(_WIN32)
#if defined(RENDERENGINE_BUILDING)
#define RENDERENGINE_API __declspec(dllexport)
#else
#define RENDERENGINE_API __declspec(dllimport)
#endif
#else
#define RENDERENGINE_API __attribute__((visibility("default")))
#endif
