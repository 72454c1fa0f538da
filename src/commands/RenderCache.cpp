#include <renderengine/RenderCache.h>

#include <utility>

#include <kavelor/SoPreferences.h>

#include "commands/CommandBuffer.h"
#include "commands/CommandList.h"

namespace renderengine
{

RenderCache::RenderCache() : m_commandBuffer(std::make_shared<CommandBuffer>()) {}

RenderCache::RenderCache(const RenderCache& other) = default;

RenderCache& RenderCache::operator=(const RenderCache& other) = default;

RenderCache::~RenderCache() = default;

#define RENDERENGINE_UPDATE_SHADER_PARAMETER(PROPERTIES)                                                          \
    void RenderCache::updateShaderParameter(const ShaderParameterHandle& parameter, const PROPERTIES& properties) \
    {                                                                                                             \
        currentBuffer().record<CommandUpdateShaderParameter<PROPERTIES>>(parameter, properties);                  \
    }
RENDERENGINE_SHADER_PARAMETERS(RENDERENGINE_UPDATE_SHADER_PARAMETER)
#undef RENDERENGINE_UPDATE_SHADER_PARAMETER

void RenderCache::updateDraw(const DrawHandle& draw, std::shared_ptr<const GfxStateProperties> gfxState,
                             std::shared_ptr<const ShaderStateCoreProperties> shaderState)
{
    currentBuffer().record<CommandUpdateDraw>(draw, std::move(gfxState), std::move(shaderState));
}

void RenderCache::clearRenderTarget(const RenderTargetHandle& renderTarget, const ClearTargetProperties& properties)
{
    currentBuffer().record<CommandClearRT>(renderTarget, properties);
}

void RenderCache::updateRenderTarget(const RenderTargetHandle& renderTarget, const RenderTargetProperties& properties)
{
    currentBuffer().record<CommandUpdateRenderTarget>(renderTarget, properties);
}

void RenderCache::updateTexture(const TextureHandle& texture, const TextureProperties& properties)
{
    currentBuffer().record<CommandUpdateTexture>(texture, properties);
}

void RenderCache::updateTextureBatchData(const TextureHandle& texture,
                                         const TextureUpdateBatchDataProperties& properties)
{
    currentBuffer().record<CommandUpdateTextureBatchData>(texture, properties);
}

void RenderCache::generateMipmap(TextureHandle& texture)
{
    currentBuffer().record<CommandGenerateMipmap>(texture);
}

void RenderCache::readbackTexture(TextureHandle& texture)
{
    currentBuffer().record<CommandReadbackTexture>(texture);
}

void RenderCache::updateTextureImage(const TextureImageHandle& textureImage, const TextureImageProperties& properties)
{
    currentBuffer().record<CommandUpdateTextureImage>(textureImage, properties);
}

void RenderCache::draw(const DrawHandle& draw)
{
    currentBuffer().record<CommandRender>(draw);
}

void RenderCache::compute(const std::shared_ptr<const ShaderStateCoreProperties>& shaderState,
                          const ComputeProperties& properties)
{
    currentBuffer().record<CommandCompute>(shaderState, properties);
}

void RenderCache::task(const TaskProperties& properties)
{
    currentBuffer().record<CommandTask>(properties);
}

void RenderCache::renderTask(const TaskProperties& properties, std::shared_ptr<const GfxStateProperties> gfxState,
                             const ShaderStateProperties& shaderState, bool fixedFunctionState)
{
    currentBuffer().record<CommandRenderTask>(properties, std::move(gfxState), shaderState, fixedFunctionState);
}

void RenderCache::memoryBarrier(int32_t barriers)
{
    currentBuffer().record<CommandMemoryBarrier>(barriers);
}

void RenderCache::beginQuery(const QueryHandle& query)
{
    currentBuffer().record<CommandBeginQuery>(query);
}

void RenderCache::endQuery(const QueryHandle& query)
{
    currentBuffer().record<CommandEndQuery>(query);
}

void RenderCache::askQueryResult(const QueryHandle& query)
{
    currentBuffer().record<CommandGetQueryResult>(query);
}

void RenderCache::beginTransformFeedback(const TransformFeedbackProperties& properties,
                                         const ShaderStateProperties& shaderState)
{
    currentBuffer().record<CommandBeginTransformFeedback>(properties, shaderState);
}

void RenderCache::endTransformFeedback()
{
    currentBuffer().record<CommandEndTransformFeedback>();
}

void RenderCache::pushDebugMarker(const std::string& text)
{
    static const bool s_enabled = SoPreferences::getBool("KVR_DEBUG_GROUP", false);
    if (s_enabled)
    {
        currentBuffer().record<CommandPushDebugMarker>(text);
    }
}

void RenderCache::popDebugMarker()
{
    static const bool s_enabled = SoPreferences::getBool("KVR_DEBUG_GROUP", false);
    if (s_enabled)
    {
        currentBuffer().record<CommandPopDebugMarker>();
    }
}

void RenderCache::blit(const RenderTargetHandle& source, const RenderTargetHandle& destination,
                       const BlitProperties& properties)
{
    currentBuffer().record<CommandBlit>(source, destination, properties);
}

std::shared_ptr<CommandBuffer> RenderCache::getCommandBuffer() const
{
    return m_bufferList.empty() ? m_commandBuffer : m_bufferList[m_bufferListIndex];
}

// Recording uses the list without touching its reference count, which is an atomic operation in a threaded process.
CommandBuffer& RenderCache::currentBuffer() const
{
    return m_bufferList.empty() ? *m_commandBuffer : *m_bufferList[m_bufferListIndex];
}

uint64_t RenderCache::getCommandBufferSize() const
{
    return currentBuffer().size();
}

void RenderCache::beginBufferList(unsigned count)
{
    // Made aside, so that an exhausted allocator leaves the cache as it was.
    std::vector<std::shared_ptr<CommandBuffer>> list(count);
    for (std::shared_ptr<CommandBuffer>& buffer : list)
    {
        buffer = std::make_shared<CommandBuffer>();
    }
    m_bufferList = std::move(list);
    m_bufferListIndex = 0;
}

void RenderCache::setBufferListIndex(unsigned index)
{
    m_bufferListIndex = index;
}

void RenderCache::endBufferList()
{
    // At once, so that an exhausted allocator leaves the lists as they were.
    uint64_t count = 0;
    for (const std::shared_ptr<CommandBuffer>& buffer : m_bufferList)
    {
        count += buffer->size();
    }
    m_commandBuffer->reserve(count);
    for (const std::shared_ptr<CommandBuffer>& buffer : m_bufferList)
    {
        m_commandBuffer->append(*buffer);
    }
    m_bufferList.clear();
}

void RenderCache::copy(RenderCache& source, const SbVec2i32& range)
{
    currentBuffer().append(source.currentBuffer(), range);
}

void RenderCache::reset()
{
    currentBuffer().clear();
}

} // namespace renderengine
