#pragma once

// What stands behind HDC and HGLRC, declared without the platform's headers. The names are the same on every platform
// (see <renderengine/PlatformTypes.h>).
struct HDC__;
struct HGLRC__;

namespace renderengine::glbinding
{
using DisplayHandle = HDC__*;
using ContextHandle = HGLRC__*;
} // namespace renderengine::glbinding
