#pragma once

#include <algorithm>
#include <cstdint>
#include <iterator>

#include <kavelor/SbVec.h>

namespace renderengine
{

/// Describes the clear of a render target (glClearBuffer).
struct ClearTargetProperties
{
    bool operator==(const ClearTargetProperties& other) const
    {
        return std::equal(std::begin(colors), std::end(colors), std::begin(other.colors)) && depth == other.depth &&
               stencil == other.stencil && flags == other.flags &&
               std::equal(std::begin(colorMask), std::end(colorMask), std::begin(other.colorMask)) &&
               depthWrite == other.depthWrite && stencilWriteMask == other.stencilWriteMask;
    }
    bool operator!=(const ClearTargetProperties& other) const { return !(*this == other); }

    /// Red, green, blue and alpha for each colour attachment.
    SbVec4f colors[8];
    /// Depth in window coordinates.
    float depth = 1.0f;
    /// Stencil value.
    int32_t stencil = 0;
    /// What is cleared: bit 0 colour, bit 1 depth, bit 2 stencil.
    uint8_t flags = 7;
    /// Whether red, green, blue and alpha are written.
    bool colorMask[4] = {true, true, true, true};
    /// Whether depth is written.
    bool depthWrite = true;
    /// Stencil bits that are written.
    uint32_t stencilWriteMask = 0xFFFFFFFFu;
};

} // namespace renderengine
