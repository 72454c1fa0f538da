#include "Recorder.h"

#include <renderengine/TextureProperties.h>

#include <algorithm>
#include <utility>

namespace renderengine::testing
{

void RecordingQueue::push(Recording recording)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_recordings.push_back(std::move(recording));
    m_pushed.notify_one();
}

Recording RecordingQueue::pop()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_pushed.wait(lock, [this] { return !m_recordings.empty(); });
    Recording recording = std::move(m_recordings.front());
    m_recordings.pop_front();
    return recording;
}

Recorder::Recorder(uint32_t seed, RecordingQueue& ready)
    : m_kept(std::make_shared<RenderCache>()), m_ready(ready), m_random(seed * 2654435761u + 1)
{
    for (std::shared_ptr<RenderCache>& cache : m_caches)
    {
        cache = std::make_shared<RenderCache>();
        Recording empty;
        empty.cache = cache;
        m_free.push(empty);
    }
    m_thread = std::thread([this] { run(); });
}

Recorder::~Recorder()
{
    m_free.push(Recording());
    m_thread.join();
}

bool Recorder::owns(const std::shared_ptr<RenderCache>& cache) const
{
    return std::find(std::begin(m_caches), std::end(m_caches), cache) != std::end(m_caches);
}

void Recorder::run()
{
    for (;;)
    {
        Recording recording = m_free.pop();
        if (!recording.cache)
        {
            return;
        }
        fill(recording);
        m_ready.push(std::move(recording));
    }
}

void Recorder::fill(Recording& recording)
{
    RenderCache& cache = *recording.cache;
    recording.draws = 0;
    recording.sum = 0;
    recording.pixelSum = 0;
    cache.reset();
    const bool usesLists = (m_random >> 8) % 4 == 0;
    if (usesLists)
    {
        cache.beginBufferList(2);
        cache.setBufferListIndex(1);
    }
    const uint32_t count = 1 + (m_random >> 16) % 16;
    for (uint32_t i = 0; i < count; ++i)
    {
        m_random = m_random * 1664525u + 1013904223u;
        const uint32_t id = (m_random >> 8) % 1000;
        cache.draw(DrawHandle(id));
        recording.sum += id;
        ++recording.draws;
    }
    ShaderParameterArrayProperties<float> parameter;
    parameter.name = "a name too long to be kept inside the string itself";
    parameter.value.assign(count, 1.0f);
    cache.updateShaderParameter(ShaderParameterHandle(count), parameter);

    // Pixels on this stack, which recording copies.
    const uint8_t pixel[4] = {static_cast<uint8_t>(count), 0, 0, 0};
    TextureProperties texture;
    texture.data = {pixel};
    cache.updateTexture(TextureHandle(count), texture);
    recording.pixelSum += pixel[0];

    // Commands of an earlier filling, which frames, this cache and the kept one then share.
    cache.copy(*m_kept, SbVec2i32(0, static_cast<int32_t>(m_keptDraws)));
    recording.draws += m_keptDraws;
    recording.sum += m_keptSum;
    if (usesLists)
    {
        cache.endBufferList();
    }
    if (count % 5 == 0)
    {
        m_kept->reset();
        m_kept->draw(DrawHandle(count));
        m_keptDraws = 1;
        m_keptSum = count;
    }
}

} // namespace renderengine::testing
