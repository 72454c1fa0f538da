#pragma once

#include "gl/Batch.h"
#include "gl/StateGL.h"

#include <renderengine/GfxStateProperties.h>
#include <renderengine/Handle.h>
#include <renderengine/ShaderStateCoreProperties.h>

#include <array>
#include <memory>
#include <vector>

namespace renderengine
{

/// What stands behind a draw handle: the members, the state they are drawn with, and the batches made from them.
class DrawGL
{
public:
    /// Takes the two records of a create or update command. Null stands for the default record.
    ///
    /// The fixed-function record is copied: each draw writes the scale of its viewport into its own copy, and the
    /// client may give one record to many draws.
    void setState(const std::shared_ptr<const GfxStateProperties>& newGfxState,
                  std::shared_ptr<const ShaderStateCoreProperties> newShaderState);

    /// Slot 0: transform buffers, slot 1: material buffers. Used by `RendererGL46` only.
    std::array<ShaderBufferIndices, 2> shaderBufferIndices;

    /// In draw order. By pointer, since the dependency graph links batches by address.
    std::vector<std::unique_ptr<Batch>> batches;

    /// The batches exist and hold what `drawProperties` holds. A batch may still be dirty by itself.
    bool batchesValid = false;

    /// In the order in which they were added.
    std::vector<DrawPropertiesHandle> drawProperties;

    std::shared_ptr<const ShaderStateCoreProperties> shaderState;

    /// Applies `gfxState`.
    std::unique_ptr<StateGL> state;

    /// This draw's own copy of the client's record, never null after `setState`.
    std::shared_ptr<GfxStateProperties> gfxState;
};

} // namespace renderengine
