// The recording wrappers of RendererBase: which command stands for a resource call, and which list it waits in.

#include "commands/BufferCommands.h"
#include "commands/BufferViewCommands.h"
#include "commands/DrawCommands.h"
#include "commands/QueryCommands.h"
#include "commands/RenderTargetCommands.h"
#include "commands/SamplerCommands.h"
#include "commands/ShaderCommands.h"
#include "commands/TaskCommands.h"
#include "commands/TextureCommands.h"
#include "renderer/Frame.h"
#include "renderer/RendererBase.h"

#include <utility>

namespace renderengine
{

template <class Command, class... Arguments> void RendererBase::recordResource(Arguments&&... arguments)
{
    // Filled aside and appended whole, so that the render thread never sees a command before its arguments, and never
    // waits for a client that copies its data.
    class Recording
    {
    public:
        explicit Recording(CommandBuffer& commands) : m_commands(commands) {}
        ~Recording() { m_commands.clear(); }
        Recording(const Recording&) = delete;
        Recording& operator=(const Recording&) = delete;

    private:
        CommandBuffer& m_commands;
    };
    const Recording recording(m_recordedResourceCommand);
    m_recordedResourceCommand.record<Command>(std::forward<Arguments>(arguments)...);
    const std::lock_guard<std::mutex> lock(m_resourceMutex);
    m_resourceCommands.append(m_recordedResourceCommand);
}

template <class Command, class... Arguments> void RendererBase::recordHead(Arguments&&... arguments)
{
    m_frame->getHeadCommands().record<Command>(std::forward<Arguments>(arguments)...);
}

template <class Command, class... Arguments> void RendererBase::recordTail(Arguments&&... arguments)
{
    m_frame->getTailCommands().record<Command>(std::forward<Arguments>(arguments)...);
}

void RendererBase::addTask(const TaskProperties& task)
{
    recordHead<CommandTask>(task);
}

void RendererBase::addEndTask(const TaskProperties& task)
{
    recordTail<CommandTask>(task);
}

DrawHandle RendererBase::createDraw(std::shared_ptr<const GfxStateProperties> gfxState,
                                    std::shared_ptr<const ShaderStateCoreProperties> shaderState)
{
    const DrawHandle handle = generateDrawHandle();
    recordHead<CommandCreateDraw>(handle, std::move(gfxState), std::move(shaderState));
    return handle;
}

void RendererBase::updateDraw(const DrawHandle& handle, std::shared_ptr<const GfxStateProperties> gfxState,
                              std::shared_ptr<const ShaderStateCoreProperties> shaderState)
{
    recordHead<CommandUpdateDraw>(handle, std::move(gfxState), std::move(shaderState));
}

void RendererBase::destroyDraw(const DrawHandle& handle)
{
    recordTail<CommandDestroyDraw>(handle);
}

DrawPropertiesHandle RendererBase::createDrawProperties(const DrawProperties& properties)
{
    const DrawPropertiesHandle handle = generateDrawPropertiesHandle();
    recordHead<CommandCreateDrawProperties>(handle, properties);
    return handle;
}

void RendererBase::updateDrawProperties(const DrawPropertiesHandle& handle, const DrawProperties& properties)
{
    recordHead<CommandUpdateDrawProperties>(handle, properties);
}

void RendererBase::destroyDrawProperties(const DrawPropertiesHandle& handle)
{
    recordTail<CommandDestroyDrawProperties>(handle);
}

void RendererBase::addDrawProperties(const DrawHandle& draw, const DrawPropertiesHandle& properties)
{
    recordHead<CommandAddDrawProperties>(draw, properties);
}

void RendererBase::removeDrawProperties(const DrawHandle& draw, const DrawPropertiesHandle& properties)
{
    recordHead<CommandRemoveDrawProperties>(draw, properties);
}

void RendererBase::removeAllDrawProperties(const DrawHandle& draw)
{
    recordHead<CommandRemoveAllDrawProperties>(draw);
}

BufferHandle RendererBase::createBuffer(const BufferProperties& properties)
{
    const BufferHandle handle = generateBufferHandle();
    recordResource<CommandCreateBuffer>(handle, properties);
    return handle;
}

void RendererBase::updateBuffer(const BufferHandle& handle, const BufferProperties& properties)
{
    recordHead<CommandUpdateBuffer>(handle, properties);
}

void RendererBase::resizeBuffer(const BufferHandle& handle, uint64_t size)
{
    recordResource<CommandResizeBuffer>(handle, size);
}

void RendererBase::mapBuffer(const BufferHandle& handle, uint64_t offset, uint64_t length, uint32_t access)
{
    recordResource<CommandMapBuffer>(handle, offset, length, access);
}

void RendererBase::unmapBuffer(const BufferHandle& handle)
{
    recordResource<CommandUnmapBuffer>(handle);
}

void RendererBase::copyBuffer(const BufferHandle& source, const BufferHandle& destination, uint64_t sourceOffset,
                              uint64_t destinationOffset, uint64_t length)
{
    recordResource<CommandCopyBuffer>(source, destination, sourceOffset, destinationOffset, length);
}

void RendererBase::destroyBuffer(const BufferHandle& handle)
{
    recordTail<CommandDestroyBuffer>(handle);
}

VertexBufferHandle RendererBase::createVertexBuffer(const VertexBufferProperties& properties)
{
    const VertexBufferHandle handle = generateVertexBufferHandle();
    recordResource<CommandCreateVertexBuffer>(handle, properties);
    return handle;
}

void RendererBase::updateVertexBuffer(const VertexBufferHandle& handle, const VertexBufferProperties& properties)
{
    recordHead<CommandUpdateVertexBuffer>(handle, properties);
}

void RendererBase::destroyVertexBuffer(const VertexBufferHandle& handle)
{
    recordTail<CommandDestroyVertexBuffer>(handle);
}

IndexBufferHandle RendererBase::createIndexBuffer(const IndexBufferProperties& properties)
{
    const IndexBufferHandle handle = generateIndexBufferHandle();
    recordResource<CommandCreateIndexBuffer>(handle, properties);
    return handle;
}

void RendererBase::updateIndexBuffer(const IndexBufferHandle& handle, const IndexBufferProperties& properties)
{
    recordHead<CommandUpdateIndexBuffer>(handle, properties);
}

void RendererBase::destroyIndexBuffer(const IndexBufferHandle& handle)
{
    recordTail<CommandDestroyIndexBuffer>(handle);
}

ShaderBufferHandle RendererBase::createShaderBuffer(const ShaderBufferProperties& properties)
{
    const ShaderBufferHandle handle = generateShaderBufferHandle();
    recordResource<CommandCreateShaderBuffer>(handle, properties);
    return handle;
}

void RendererBase::updateShaderBuffer(const ShaderBufferHandle& handle, const ShaderBufferProperties& properties)
{
    recordHead<CommandUpdateShaderBuffer>(handle, properties);
}

void RendererBase::destroyShaderBuffer(const ShaderBufferHandle& handle)
{
    recordTail<CommandDestroyShaderBuffer>(handle);
}

TextureImageHandle RendererBase::createTextureImage(const TextureImageProperties& properties)
{
    const TextureImageHandle handle = generateTextureImageHandle();
    recordResource<CommandCreateTextureImage>(handle, properties);
    return handle;
}

void RendererBase::updateTextureImage(const TextureImageHandle& handle, const TextureImageProperties& properties)
{
    recordHead<CommandUpdateTextureImage>(handle, properties);
}

void RendererBase::destroyTextureImage(const TextureImageHandle& handle)
{
    recordTail<CommandDestroyTextureImage>(handle);
}

SamplerHandle RendererBase::createSampler(const SamplerProperties& properties)
{
    const SamplerHandle handle = generateSamplerHandle();
    recordHead<CommandCreateSampler>(handle, properties);
    return handle;
}

void RendererBase::updateSampler(const SamplerHandle& handle, const SamplerProperties& properties)
{
    recordHead<CommandUpdateSampler>(handle, properties);
}

void RendererBase::destroySampler(const SamplerHandle& handle)
{
    recordTail<CommandDestroySampler>(handle);
}

TextureHandle RendererBase::createTexture(const TextureProperties& properties)
{
    const TextureHandle handle = generateTextureHandle();
    recordResource<CommandCreateTexture>(handle, properties);
    return handle;
}

void RendererBase::resizeTexture(const TextureHandle& handle, uint32_t width, uint32_t height, uint32_t depth)
{
    recordHead<CommandResizeTexture>(handle, width, height, depth);
}

void RendererBase::updateTexture(const TextureHandle& handle, const TextureProperties& properties)
{
    recordHead<CommandUpdateTexture>(handle, properties);
}

void RendererBase::updateTextureBatchData(const TextureHandle& handle,
                                          const TextureUpdateBatchDataProperties& properties)
{
    recordHead<CommandUpdateTextureBatchData>(handle, properties);
}

void RendererBase::destroyTexture(const TextureHandle& handle)
{
    recordTail<CommandDestroyTexture>(handle);
}

RenderTargetHandle RendererBase::createRenderTarget(const RenderTargetProperties& properties)
{
    const RenderTargetHandle handle = generateRenderTargetHandle();
    recordHead<CommandCreateRenderTarget>(handle, properties);
    return handle;
}

void RendererBase::updateRenderTarget(const RenderTargetHandle& handle, const RenderTargetProperties& properties)
{
    recordHead<CommandUpdateRenderTarget>(handle, properties);
}

void RendererBase::destroyRenderTarget(const RenderTargetHandle& handle)
{
    recordTail<CommandDestroyRenderTarget>(handle);
}

ViewportHandle RendererBase::createViewport(const ViewportProperties& properties)
{
    const ViewportHandle handle = generateViewportHandle();
    recordHead<CommandCreateViewport>(handle, properties);
    return handle;
}

void RendererBase::updateViewport(const ViewportHandle& handle, const ViewportProperties& properties)
{
    recordHead<CommandUpdateViewport>(handle, properties);
}

void RendererBase::destroyViewport(const ViewportHandle& handle)
{
    recordTail<CommandDestroyViewport>(handle);
}

ShaderObjectHandle RendererBase::createShaderObject(const ShaderObjectProperties& properties)
{
    const ShaderObjectHandle handle = generateShaderObjectHandle();
    recordResource<CommandCreateShaderObject>(handle, properties);
    return handle;
}

void RendererBase::destroyShaderObject(const ShaderObjectHandle& handle)
{
    recordTail<CommandDestroyShaderObject>(handle);
}

ShaderProgramHandle RendererBase::createShaderProgram(const ShaderProgramProperties& properties)
{
    const ShaderProgramHandle handle = generateShaderProgramHandle();
    recordResource<CommandCreateShaderProgram>(handle, properties);
    return handle;
}

void RendererBase::destroyShaderProgram(const ShaderProgramHandle& handle)
{
    recordTail<CommandDestroyShaderProgram>(handle);
}

#define RENDERENGINE_RECORD_PARAMETER(PROPERTIES)                                                               \
    ShaderParameterHandle RendererBase::createShaderParameter(const PROPERTIES& properties)                     \
    {                                                                                                           \
        const ShaderParameterHandle handle = generateShaderParameterHandle();                                   \
        recordHead<CommandCreateShaderParameter<PROPERTIES>>(handle, properties);                               \
        return handle;                                                                                          \
    }                                                                                                           \
                                                                                                                \
    void RendererBase::updateShaderParameter(const ShaderParameterHandle& handle, const PROPERTIES& properties) \
    {                                                                                                           \
        recordHead<CommandUpdateShaderParameter<PROPERTIES>>(handle, properties);                               \
    }
RENDERENGINE_SHADER_PARAMETERS(RENDERENGINE_RECORD_PARAMETER)
#undef RENDERENGINE_RECORD_PARAMETER

void RendererBase::destroyShaderParameter(const ShaderParameterHandle& handle)
{
    recordTail<CommandDestroyShaderParameter>(handle);
}

QueryHandle RendererBase::createQuery(uint32_t type)
{
    const QueryHandle handle = generateQueryHandle();
    recordHead<CommandCreateQuery>(handle, type);
    return handle;
}

void RendererBase::destroyQuery(const QueryHandle& handle)
{
    recordTail<CommandDestroyQuery>(handle);
}

} // namespace renderengine
