#pragma once

#include <cstdint>
#include <memory>

#include <kavelor/SbVec.h>

#include <renderengine/Export.h>
#include <renderengine/RenderCache.h>

namespace renderengine
{

/// A pair of caches: one receives commands, the other holds what was recorded last, so that unchanged commands can be
/// taken over by index.
///
/// Each side has an id, which changes whenever that side is emptied. A copy shares both caches with its original. One
/// thread at a time may use an object; two objects that are swapped on different threads at the same moment can get the
/// same id.
class RENDERENGINE_API BufferedRenderCache
{
public:
    /// Makes two empty caches and gives each an id.
    BufferedRenderCache();
    BufferedRenderCache(const BufferedRenderCache& other);
    BufferedRenderCache& operator=(const BufferedRenderCache& other);
    virtual ~BufferedRenderCache();

    /// The side that receives commands; record on it and submit it.
    const std::shared_ptr<RenderCache>& getRenderCache();

    /// The id of the side that receives commands.
    uint64_t getRenderCacheId() const;

    /// The id of the side that was recorded last.
    uint64_t getBufferedRenderCacheId() const;

    /// Makes the side just recorded the previous one, and empties the other for new commands under a new id.
    void swap();

    /// Appends commands of the previous side, from index `range[0]` up to but not including `range[1]`, to the side
    /// that receives commands. The commands are shared. The range must lie inside the previous side; it is not checked.
    void copy(const SbVec2i32& range);

    /// Empties both sides and gives both new ids.
    void invalidate();

protected:
    /// The id that is given out next, shared by all objects of the class and only ever rising.
    static uint64_t s_nextId;

private:
    uint64_t getNextId();

    int32_t m_previousIndex = 0;
    int32_t m_currentIndex = 1;
    uint64_t m_ids[2];
    std::shared_ptr<RenderCache> m_caches[2];
};

} // namespace renderengine
