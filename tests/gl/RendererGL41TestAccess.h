#pragma once

#include "gl/DrawGL.h"
#include "gl/RendererGL41.h"
#include "support/VirtualSlot.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace renderengine
{

/// Reaches what no other class may call.
struct RendererGL41TestAccess
{
    static void drainDebugLog(const RendererGL41& renderer) { renderer.drainDebugLog(); }

    static void mergeShaderBuffers(RendererGL41& renderer, const DrawHandle& draw, bool needRebuild)
    {
        for (const auto& batch : renderer.m_tables.draws.find(draw)->batches)
        {
            renderer.mergeShaderBuffers(*batch, needRebuild);
        }
    }

    /// How many batches of the draw own merged buffers; 0 when it is drawn range by range.
    static std::size_t countMergedBatches(const RendererGL41& renderer, const DrawHandle& draw)
    {
        const auto& batches = renderer.m_tables.draws.find(draw)->batches;
        return static_cast<std::size_t>(
            std::count_if(batches.begin(), batches.end(), [](const auto& batch) { return batch->built; }));
    }

    /// The slots of the operations that this renderer adds to those of its base, in their order.
    static std::vector<std::size_t> getOwnSlots()
    {
        using testing::slotOf;
        return {slotOf(&RendererGL41::setupShaderState), slotOf(&RendererGL41::bindDrawShaderBuffers),
                slotOf(&RendererGL41::mergeShaderBuffers), slotOf(&RendererGL41::prepareMergeMaps),
                slotOf(&RendererGL41::buildBatches)};
    }
};

} // namespace renderengine
