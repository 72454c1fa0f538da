#include "CommandStream.h"

#include <renderengine/TaskInterface.h>
#include <renderengine/TaskProperties.h>

#include <iterator>
#include <new>
#include <utility>

namespace renderengine::fuzz
{

namespace
{

/// Commands that lists may share in one input. More would only take time.
constexpr uint64_t MOST_WORK = 1 << 16;

struct EmptyTask final : TaskInterface
{
    void run() override {}
};

TaskProperties makeTask()
{
    TaskProperties properties;
    properties.task = std::make_shared<EmptyTask>();
    return properties;
}

} // namespace

CommandStream::CommandStream(ContextInterface& context, bool threaded, ByteReader& reader, const Limits& limits)
    : m_context(context), m_reader(reader), m_records(reader, limits), m_threaded(threaded)
{
    for (Cache& cache : m_caches)
    {
        cache.cache = std::make_shared<RenderCache>();
    }
}

void CommandStream::run()
{
    while (!m_reader.empty() && m_work < MOST_WORK)
    {
        try
        {
            step();
        }
        catch (const std::bad_alloc&)
        {
            // What recording answers to a size that no heap can give.
        }
    }
    m_context.execute(true);
}

void CommandStream::step()
{
    static constexpr Operation OPERATIONS[] = {
        &CommandStream::submit,
        &CommandStream::submit,
        &CommandStream::execute,
        &CommandStream::executeResourceCommands,
        &CommandStream::discardFrame,
        &CommandStream::flush,
        &CommandStream::present,
        &CommandStream::setPresentTargets,
        &CommandStream::addTask,
        &CommandStream::renderTask,
        &CommandStream::drawOperation,
        &CommandStream::drawPropertiesOperation,
        &CommandStream::membersOfDraw,
        &CommandStream::bufferOperation,
        &CommandStream::bufferMemoryOperation,
        &CommandStream::vertexBufferOperation,
        &CommandStream::indexBufferOperation,
        &CommandStream::shaderBufferOperation,
        &CommandStream::textureImageOperation,
        &CommandStream::samplerOperation,
        &CommandStream::textureOperation,
        &CommandStream::texturePixelsOperation,
        &CommandStream::renderTargetOperation,
        &CommandStream::viewportOperation,
        &CommandStream::shaderObjectOperation,
        &CommandStream::shaderProgramOperation,
        &CommandStream::shaderParameterOperation,
        &CommandStream::queryOperation,
        &CommandStream::recordDraws,
        &CommandStream::recordUpdateDraw,
        &CommandStream::recordParameter,
        &CommandStream::recordTarget,
        &CommandStream::recordTexture,
        &CommandStream::recordCompute,
        &CommandStream::recordTask,
        &CommandStream::recordQuery,
        &CommandStream::recordTransformFeedback,
        &CommandStream::recordMarkers,
        &CommandStream::cacheLists,
        &CommandStream::cacheCopy,
        &CommandStream::bufferedCache,
    };
    (this->*OPERATIONS[m_reader.below(static_cast<uint32_t>(std::size(OPERATIONS)))])();
}

RenderCache& CommandStream::pickRenderCache()
{
    return *pickCache().cache;
}

SbVec2i32 CommandStream::pickRange(uint64_t size)
{
    const uint64_t first = m_reader.number() % (size + 1);
    const uint64_t last = first + m_reader.number() % (size - first + 1);
    return SbVec2i32(static_cast<int32_t>(first), static_cast<int32_t>(last));
}

bool CommandStream::countWork(uint64_t commands)
{
    m_work += commands + 1;
    return m_work < MOST_WORK;
}

void CommandStream::submit()
{
    const Cache& cache = pickCache();
    if (countWork(cache.cache->getCommandBufferSize()))
    {
        m_context.submit(cache.cache);
    }
}

void CommandStream::execute()
{
    const bool wait = m_reader.flag();
    m_context.execute(wait);
    m_frameMayWait = m_threaded && !wait;
}

void CommandStream::executeResourceCommands()
{
    m_context.executeResourceCommands();
}

void CommandStream::discardFrame()
{
    if (m_frameMayWait)
    {
        m_context.execute(true);
        m_frameMayWait = false;
    }
    m_context.discardFrame();
}

void CommandStream::flush()
{
    const Cache& cache = pickCache();
    if (countWork(cache.cache->getCommandBufferSize()))
    {
        const bool executes = m_reader.flag();
        m_context.flush(cache.cache, executes);
        m_frameMayWait = m_frameMayWait && !executes;
    }
}

void CommandStream::present()
{
    if (m_frameMayWait)
    {
        m_context.execute(true);
        m_frameMayWait = false;
    }
    switch (m_reader.below(4))
    {
    case 0:
        m_context.canPresent();
        m_context.getPresentFrame();
        m_context.getReversePresentFrame();
        break;
    case 1:
        m_context.present();
        break;
    case 2:
        m_context.presentFrameSync();
        break;
    default:
        m_context.updatePresentEventArg();
        break;
    }
}

void CommandStream::setPresentTargets()
{
    m_context.setPresentRenderTarget(m_records.pick<RenderTargetHandle>());
    m_context.setReversePresentRenderTarget(m_records.pick<RenderTargetHandle>());
    m_context.setPresentColorTexture(m_records.pick<TextureHandle>());
    m_context.setPresentDepthTexture(m_records.pick<TextureHandle>());
    const uint32_t width = m_reader.number();
    m_context.setSize(width, m_reader.number());
}

void CommandStream::addTask()
{
    if (m_reader.flag())
    {
        m_context.addTask(makeTask());
    }
    else
    {
        m_context.addEndTask(makeTask());
    }
}

void CommandStream::renderTask()
{
    // It runs at once on the calling thread, so no frame may be running.
    if (m_frameMayWait)
    {
        m_context.execute(true);
        m_frameMayWait = false;
    }
    std::shared_ptr<const GfxStateProperties> gfxState = m_records.gfxState();
    const ShaderStateProperties shaderState = m_records.shaderState();
    m_context.renderTask(makeTask(), std::move(gfxState), shaderState, m_reader.flag());
}

void CommandStream::recordDraws()
{
    RenderCache& cache = pickRenderCache();
    for (uint32_t i = m_reader.below(16); i > 0; --i)
    {
        cache.draw(m_records.pick<DrawHandle>());
    }
}

void CommandStream::recordUpdateDraw()
{
    const DrawHandle draw = m_records.pick<DrawHandle>();
    std::shared_ptr<const GfxStateProperties> gfxState = m_records.gfxState();
    pickRenderCache().updateDraw(draw, std::move(gfxState), m_records.shaderStateCore());
}

void CommandStream::recordTarget()
{
    RenderCache& cache = pickRenderCache();
    const RenderTargetHandle target = m_records.pick<RenderTargetHandle>();
    switch (m_reader.below(3))
    {
    case 0:
        cache.clearRenderTarget(target, m_records.clearTarget());
        break;
    case 1:
        cache.updateRenderTarget(target, m_records.renderTarget());
        break;
    default:
    {
        const RenderTargetHandle destination = m_records.pick<RenderTargetHandle>();
        cache.blit(target, destination, m_records.blit());
        break;
    }
    }
}

void CommandStream::recordTexture()
{
    RenderCache& cache = pickRenderCache();
    TextureHandle texture = m_records.pick<TextureHandle>();
    switch (m_reader.below(5))
    {
    case 0:
        cache.updateTexture(texture, m_records.texture());
        break;
    case 1:
        cache.updateTextureBatchData(texture, m_records.textureBatch());
        break;
    case 2:
        cache.generateMipmap(texture);
        break;
    case 3:
        cache.readbackTexture(texture);
        break;
    default:
    {
        const TextureImageHandle textureImage = m_records.pick<TextureImageHandle>();
        cache.updateTextureImage(textureImage, m_records.textureImage());
        break;
    }
    }
}

void CommandStream::recordCompute()
{
    RenderCache& cache = pickRenderCache();
    if (m_reader.flag())
    {
        const std::shared_ptr<const ShaderStateCoreProperties> state = m_records.shaderStateCore();
        cache.compute(state, m_records.compute());
    }
    else
    {
        cache.memoryBarrier(m_reader.integer());
    }
}

void CommandStream::recordTask()
{
    RenderCache& cache = pickRenderCache();
    if (m_reader.flag())
    {
        cache.task(makeTask());
    }
    else
    {
        std::shared_ptr<const GfxStateProperties> gfxState = m_records.gfxState();
        const ShaderStateProperties shaderState = m_records.shaderState();
        cache.renderTask(makeTask(), std::move(gfxState), shaderState, m_reader.flag());
    }
}

void CommandStream::recordQuery()
{
    RenderCache& cache = pickRenderCache();
    const QueryHandle query = m_records.pick<QueryHandle>();
    switch (m_reader.below(3))
    {
    case 0:
        cache.beginQuery(query);
        break;
    case 1:
        cache.endQuery(query);
        break;
    default:
        cache.askQueryResult(query);
        break;
    }
}

void CommandStream::recordTransformFeedback()
{
    RenderCache& cache = pickRenderCache();
    if (m_reader.flag())
    {
        const TransformFeedbackProperties properties = m_records.transformFeedback();
        cache.beginTransformFeedback(properties, m_records.shaderState());
    }
    else
    {
        cache.endTransformFeedback();
    }
}

void CommandStream::recordMarkers()
{
    RenderCache& cache = pickRenderCache();
    cache.pushDebugMarker(m_reader.text());
    cache.popDebugMarker();
}

void CommandStream::cacheLists()
{
    Cache& cache = pickCache();
    switch (m_reader.below(5))
    {
    case 0:
        cache.lists = m_reader.below(5);
        cache.cache->beginBufferList(cache.lists);
        break;
    case 1:
        if (cache.lists != 0)
        {
            cache.cache->setBufferListIndex(m_reader.byte() % cache.lists);
        }
        break;
    case 2:
        // The lists are at most as large as everything shared so far and recorded since.
        if (countWork(cache.lists * cache.cache->getCommandBufferSize()))
        {
            cache.cache->endBufferList();
            cache.lists = 0;
        }
        break;
    case 3:
        cache.cache->reset();
        break;
    default:
        // A copy shares its lists with the original.
        Cache& other = pickCache();
        other.cache = std::make_shared<RenderCache>(*cache.cache);
        other.lists = cache.lists;
        break;
    }
}

void CommandStream::cacheCopy()
{
    RenderCache& target = pickRenderCache();
    RenderCache& source = pickRenderCache();
    const SbVec2i32 range = pickRange(source.getCommandBufferSize());
    if (countWork(static_cast<uint64_t>(range[1] - range[0])))
    {
        target.copy(source, range);
    }
}

void CommandStream::bufferedCache()
{
    const std::shared_ptr<RenderCache>& current = m_buffered.getRenderCache();
    switch (m_reader.below(5))
    {
    case 0:
        m_buffered.swap();
        break;
    case 1:
        m_buffered.invalidate();
        break;
    case 2:
        current->draw(m_records.pick<DrawHandle>());
        break;
    case 3:
        if (countWork(current->getCommandBufferSize()))
        {
            m_context.submit(current);
        }
        break;
    default:
    {
        // The other side's size shows when it is the current one.
        const uint64_t size = current->getCommandBufferSize();
        const SbVec2i32 range = pickRange(size);
        m_buffered.swap();
        if (countWork(size))
        {
            m_buffered.copy(range);
        }
        break;
    }
    }
}

} // namespace renderengine::fuzz
