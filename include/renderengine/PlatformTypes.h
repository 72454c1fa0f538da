#pragma once

/// \file
/// The window system's handle types that appear in exported signatures: `HGLRC`, `HDC`, `HWND` and
/// `PIXELFORMATDESCRIPTOR`. On Windows they are the system's own. Elsewhere they are opaque equivalents: an `HGLRC` is
/// an `EGLContext` (a host casts the context that it made itself), an `HDC` is a record of an EGL display, a
/// configuration and two surfaces that the engine keeps, and an `HWND` is the record of a window without a screen.

#ifdef _WIN32

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#else

#include <cstdint>

// The structures behind the handles. Each is known to the engine only.
struct HGLRC__;
struct HDC__;
struct HWND__;

using HGLRC = HGLRC__*;
using HDC = HDC__*;
using HWND = HWND__*;

/// Description of a pixel format, with the layout and the field names that it has on Windows.
struct PIXELFORMATDESCRIPTOR
{
    uint16_t nSize;
    uint16_t nVersion;
    uint32_t dwFlags;
    uint8_t iPixelType;
    uint8_t cColorBits;
    uint8_t cRedBits;
    uint8_t cRedShift;
    uint8_t cGreenBits;
    uint8_t cGreenShift;
    uint8_t cBlueBits;
    uint8_t cBlueShift;
    uint8_t cAlphaBits;
    uint8_t cAlphaShift;
    uint8_t cAccumBits;
    uint8_t cAccumRedBits;
    uint8_t cAccumGreenBits;
    uint8_t cAccumBlueBits;
    uint8_t cAccumAlphaBits;
    uint8_t cDepthBits;
    uint8_t cStencilBits;
    uint8_t cAuxBuffers;
    uint8_t iLayerType;
    uint8_t bReserved;
    uint32_t dwLayerMask;
    uint32_t dwVisibleMask;
    uint32_t dwDamageMask;
};

#endif

static_assert(sizeof(PIXELFORMATDESCRIPTOR) == 40, "a pixel format descriptor has 40 bytes on every platform");
