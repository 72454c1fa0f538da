#pragma once

#include <kavelor/SbVec.h>

namespace renderengine
{

/// Describes a viewport (glViewport, glDepthRange).
struct ViewportProperties
{
    bool operator==(const ViewportProperties& other) const
    {
        return rectangle == other.rectangle && depthRange == other.depthRange && sizeScale == other.sizeScale;
    }
    bool operator!=(const ViewportProperties& other) const { return !(*this == other); }

    /// x, y, width and height in pixels; the origin is the lower left corner.
    SbVec4i32 rectangle{0, 0, 0, 0};
    /// Depth of the near and of the far plane in window coordinates.
    SbVec2f depthRange{0.0f, 1.0f};
    /// Factor on the line widths and point sizes of what is drawn through this viewport.
    float sizeScale = 1.0f;
};

} // namespace renderengine
