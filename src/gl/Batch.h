#pragma once

#include "gl/BaseResourceGL.h"
#include "gl/MergedDraw.h"
#include "gl/ShaderBufferIndices.h"

#include <renderengine/DrawProperties.h>
#include <renderengine/Handle.h>

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

namespace renderengine
{

/// A group of draw properties that are drawn together, from shared buffers when there is more than one.
///
/// The handles name ordinary entries of the renderer's tables. A batch cannot free them: `RendererGL41::releaseBatch`
/// does. As a resource it depends on its merged buffers, so that a change of any source marks it dirty.
class Batch : public BaseResourceGL
{
public:
    /// True when at least one of the two merged shader buffers exists, which the shader is told by
    /// "KvrUseMergedShaderBuffers".
    bool hasMergedShaderBuffers() const { return mergedShaderBuffers[0].isValid() || mergedShaderBuffers[1].isValid(); }

    /// Every buffer made for this batch, in the order of creation.
    std::vector<BufferHandle> rawBuffers;

    /// The vertex buffers that a draw binds: merged ones when `merged` is set, else those of the first member.
    std::vector<VertexBufferHandle> vertexBuffers;

    /// One for each merged draw, or one for each range when the batch is not merged.
    std::vector<IndexBufferHandle> indexBuffers;

    /// Slot 0: transform buffers, slot 1: material buffers.
    std::array<ShaderBufferIndices, 2> shaderBufferIndices;
    std::array<ShaderBufferHandle, 2> indirectShaderBuffers;
    std::array<ShaderBufferHandle, 2> mergedShaderBuffers;

    /// One for each primitive type in use, aligned with `indexBuffers`.
    std::vector<MergedDraw> mergedDraws;

    /// The members, in draw order.
    std::vector<DrawPropertiesHandle> drawProperties;

    /// The record of the first member as it was when the batch was made, null when it had none: a draw takes its shader
    /// buffers, and those of a batch of one member also its constant attributes and its ranges. Held here since a
    /// member may leave the draw, and its handle come back for another one, while the batch is still drawn.
    std::shared_ptr<const DrawProperties> firstMember;

    /// Merged draws exist; the batch is torn down before it is built again.
    bool built = false;

    /// The batch holds more than one draw properties, so that it owns its vertex buffers.
    bool merged = false;

    /// The index buffers that were made for this batch.
    std::vector<IndexBufferHandle> ownedIndexBuffers;
};

} // namespace renderengine
