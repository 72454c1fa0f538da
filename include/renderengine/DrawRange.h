#pragma once

#include <cstdint>

#include <renderengine/Handle.h>

namespace renderengine
{

/// What one draw call draws.
struct DrawRange
{
    bool operator==(const DrawRange& other) const
    {
        return indexBuffer == other.indexBuffer && primitive == other.primitive && firstVertex == other.firstVertex &&
               indexOffset == other.indexOffset && count == other.count && instanceCount == other.instanceCount &&
               baseInstance == other.baseInstance && primitiveRestart == other.primitiveRestart &&
               primitiveRestartValue == other.primitiveRestartValue;
    }
    bool operator!=(const DrawRange& other) const { return !(*this == other); }

    /// The indices; the invalid handle draws the vertices in sequence.
    IndexBufferHandle indexBuffer;
    /// 0 points, 1 lines, 2 line loop, 3 line strip, 4 triangles, 5 triangle strip, 6 triangle fan, 7 patches, 8 quads,
    /// 9 quad strip, 10 polygon.
    uint32_t primitive = 4;
    /// Not read: a range without indices starts at vertex `indexOffset` / 4.
    int32_t firstVertex = 0;
    /// Bytes from the start of the index buffer to the first index.
    uint64_t indexOffset = 0;
    /// Number of indices.
    int32_t count = 0;
    /// Number of instances.
    int32_t instanceCount = 1;
    /// First instance, as instanced attributes see it.
    uint32_t baseInstance = 0;
    /// Whether `primitiveRestartValue` ends a primitive.
    bool primitiveRestart = false;
    /// The index that ends a primitive.
    uint32_t primitiveRestartValue = 0xFFFFFFFFu;
};

} // namespace renderengine
