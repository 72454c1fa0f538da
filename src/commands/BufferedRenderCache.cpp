#include <renderengine/BufferedRenderCache.h>

namespace renderengine
{

uint64_t BufferedRenderCache::s_nextId = 0;

BufferedRenderCache::BufferedRenderCache()
{
    for (std::shared_ptr<RenderCache>& cache : m_caches)
    {
        cache = std::make_shared<RenderCache>();
    }
    m_ids[0] = getNextId();
    m_ids[1] = getNextId();
}

BufferedRenderCache::BufferedRenderCache(const BufferedRenderCache& other) = default;

BufferedRenderCache& BufferedRenderCache::operator=(const BufferedRenderCache& other) = default;

BufferedRenderCache::~BufferedRenderCache() = default;

const std::shared_ptr<RenderCache>& BufferedRenderCache::getRenderCache()
{
    return m_caches[m_currentIndex];
}

uint64_t BufferedRenderCache::getRenderCacheId() const
{
    return m_ids[m_currentIndex];
}

uint64_t BufferedRenderCache::getBufferedRenderCacheId() const
{
    return m_ids[m_previousIndex];
}

void BufferedRenderCache::swap()
{
    m_previousIndex = m_currentIndex;
    m_currentIndex = (m_previousIndex + 1) & 1;
    m_ids[m_currentIndex] = getNextId();
    m_caches[m_currentIndex]->reset();
}

void BufferedRenderCache::copy(const SbVec2i32& range)
{
    m_caches[m_currentIndex]->copy(*m_caches[m_previousIndex], range);
}

void BufferedRenderCache::invalidate()
{
    m_previousIndex = 0;
    m_currentIndex = 1;
    m_caches[m_previousIndex]->reset();
    m_caches[m_currentIndex]->reset();
    m_ids[m_previousIndex] = getNextId();
    m_ids[m_currentIndex] = getNextId();
}

uint64_t BufferedRenderCache::getNextId()
{
    // Neither locked nor atomic: objects belong to one thread at a time, and ids only tell changes apart.
    return s_nextId++;
}

} // namespace renderengine
