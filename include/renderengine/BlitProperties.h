#pragma once

#include <cstdint>

#include <kavelor/SbVec.h>

namespace renderengine
{

/// Describes a copy between two render targets (glBlitFramebuffer).
struct BlitProperties
{
    bool operator==(const BlitProperties& other) const
    {
        return source == other.source && destination == other.destination && flags == other.flags &&
               filter == other.filter;
    }
    bool operator!=(const BlitProperties& other) const { return !(*this == other); }

    /// Corners x0, y0, x1, y1 in the source, in pixels.
    SbVec4i32 source{0, 0, 0, 0};
    /// Corners x0, y0, x1, y1 in the destination, in pixels.
    SbVec4i32 destination{0, 0, 0, 0};
    /// What is copied: bit 0 colour, bit 1 depth, bit 2 stencil.
    uint8_t flags = 1;
    /// 2 linear, anything else nearest.
    uint32_t filter = 1;
};

} // namespace renderengine
