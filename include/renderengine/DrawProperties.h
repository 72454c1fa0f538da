#pragma once

#include <vector>

#include <renderengine/DrawRange.h>
#include <renderengine/Handle.h>
#include <renderengine/OverallAttribute.h>

namespace renderengine
{

/// The geometry of a draw: what is bound and which ranges of it are drawn.
struct DrawProperties
{
    bool operator==(const DrawProperties& other) const
    {
        return vertexBuffers == other.vertexBuffers && shaderBuffers == other.shaderBuffers && ranges == other.ranges &&
               overallAttributes == other.overallAttributes;
    }
    bool operator!=(const DrawProperties& other) const { return !(*this == other); }

    /// The vertex attributes.
    std::vector<VertexBufferHandle> vertexBuffers;
    /// The blocks of the shader; entry 1 holds the transform and entry 2 the material of merged draws.
    std::vector<ShaderBufferHandle> shaderBuffers;
    /// The draw calls, in order.
    std::vector<DrawRange> ranges;
    /// Attributes that are constant over all vertices.
    std::vector<OverallAttribute> overallAttributes;
};

} // namespace renderengine
