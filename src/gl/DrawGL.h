#pragma once

#include "gl/Batch.h"
#include "gl/PlainDraw.h"
#include "gl/StateGL.h"

#include <renderengine/GfxStateProperties.h>
#include <renderengine/Handle.h>
#include <renderengine/ShaderStateCoreProperties.h>

#include <array>
#include <cstddef>
#include <memory>
#include <vector>

namespace renderengine
{

/// State records and what applies them, one for all draws whose records are equal, so that a frame of such draws finds
/// them in the processor's cache. It remembers the latest few; others live as long as a draw uses them.
class GfxStateSharing
{
public:
    struct Entry
    {
        std::shared_ptr<GfxStateProperties> gfxState;
        std::shared_ptr<const StateGL> state;
    };

    /// The entry of a record, whose size scale does not count: that is the draw's own.
    const Entry& share(const GfxStateProperties& record);

private:
    std::array<Entry, 4> m_entries;
    size_t m_next = 0;
};

/// What stands behind a draw handle: the members, the state they are drawn with, and the batches made from them.
class DrawGL
{
public:
    /// Takes the two records of a create or update command. Null stands for the default record. The fixed-function
    /// record is copied, as the client may change what it gave.
    void setState(const std::shared_ptr<const GfxStateProperties>& newGfxState,
                  std::shared_ptr<const ShaderStateCoreProperties> newShaderState, GfxStateSharing& sharing);

    // What every frame reads stands first and close together.

    /// The batches exist and hold what `drawProperties` holds. A batch may still be dirty by itself.
    bool batchesValid = false;

    /// There is one batch, which is drawn range by range. Nothing makes such a batch dirty.
    bool isPlain = false;

    /// The scale of points and lines: that of the client's record until a viewport gives another.
    float sizeScale = 1.0f;

    /// In the order in which they were added.
    std::vector<DrawPropertiesHandle> drawProperties;

    std::shared_ptr<const ShaderStateCoreProperties> shaderState;

    /// Applies `gfxState`.
    std::shared_ptr<const StateGL> state;

    /// A copy of the client's record, never null after `setState`. Draws of equal records share it, so each writes its
    /// `sizeScale` into it before it is used.
    std::shared_ptr<GfxStateProperties> gfxState;

    /// What the batch sends when `isPlain` is set.
    PlainDraw plainDraw;

    /// In draw order. By pointer, since the dependency graph links batches by address.
    std::vector<std::unique_ptr<Batch>> batches;

    /// Slot 0: transform buffers, slot 1: material buffers. Used by `RendererGL46` only.
    std::array<ShaderBufferIndices, 2> shaderBufferIndices;
};

} // namespace renderengine
