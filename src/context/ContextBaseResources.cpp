// The resource operations of a context: each hands over to the renderer's recording wrapper; those that must have a
// result before the client can go on then flush the resource list.

#include "context/ContextBase.h"

#include "renderer/Assertion.h"
#include "renderer/RendererBase.h"

#include <utility>

namespace renderengine
{

namespace
{

constexpr const char* PATH = "src/context/ContextBase";

} // namespace

DrawHandle ContextBase::createDraw(std::shared_ptr<const GfxStateProperties> gfxState,
                                   std::shared_ptr<const ShaderStateCoreProperties> shaderState)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    return m_renderer->createDraw(std::move(gfxState), std::move(shaderState));
}

void ContextBase::updateDraw(const DrawHandle& handle, std::shared_ptr<const GfxStateProperties> gfxState,
                             std::shared_ptr<const ShaderStateCoreProperties> shaderState)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    m_renderer->updateDraw(handle, std::move(gfxState), std::move(shaderState));
}

void ContextBase::destroyDraw(const DrawHandle& handle)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    m_renderer->destroyDraw(handle);
}

DrawPropertiesHandle ContextBase::createDrawProperties(const DrawProperties& properties)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    return m_renderer->createDrawProperties(properties);
}

void ContextBase::updateDrawProperties(const DrawPropertiesHandle& handle, const DrawProperties& properties)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    m_renderer->updateDrawProperties(handle, properties);
}

void ContextBase::destroyDrawProperties(const DrawPropertiesHandle& handle)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    m_renderer->destroyDrawProperties(handle);
}

void ContextBase::addDrawProperties(const DrawHandle& draw, const DrawPropertiesHandle& properties)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    m_renderer->addDrawProperties(draw, properties);
}

void ContextBase::removeDrawProperties(const DrawHandle& draw, const DrawPropertiesHandle& properties)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    m_renderer->removeDrawProperties(draw, properties);
}

void ContextBase::removeAllDrawProperties(const DrawHandle& draw)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    m_renderer->removeAllDrawProperties(draw);
}

BufferHandle ContextBase::createBuffer(const BufferProperties& properties)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    return m_renderer->createBuffer(properties);
}

void ContextBase::destroyBuffer(const BufferHandle& handle)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    m_renderer->destroyBuffer(handle);
}

void ContextBase::resizeBuffer(const BufferHandle& handle, uint64_t size)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    m_renderer->resizeBuffer(handle, size);
    executeResourceCommands();
}

void ContextBase::updateBuffer(const BufferHandle& handle, const BufferProperties& properties)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    m_renderer->updateBuffer(handle, properties);
}

void* ContextBase::mapBuffer(const BufferHandle& handle, uint64_t offset, uint64_t length, uint32_t access)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    m_renderer->mapBuffer(handle, offset, length, access);
    executeResourceCommands();
    return m_renderer->getMappedBufferPointer(handle);
}

void ContextBase::unmapBuffer(const BufferHandle& handle)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    m_renderer->unmapBuffer(handle);
    executeResourceCommands();
}

void ContextBase::copyBuffer(const BufferHandle& source, const BufferHandle& destination, uint64_t sourceOffset,
                             uint64_t destinationOffset, uint64_t length)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    m_renderer->copyBuffer(source, destination, sourceOffset, destinationOffset, length);
    executeResourceCommands();
}

void ContextBase::addTask(const TaskProperties& task)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    m_renderer->addTask(task);
}

void ContextBase::addEndTask(const TaskProperties& task)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    m_renderer->addEndTask(task);
}

VertexBufferHandle ContextBase::createVertexBuffer(const VertexBufferProperties& properties)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    return m_renderer->createVertexBuffer(properties);
}

void ContextBase::updateVertexBuffer(const VertexBufferHandle& handle, const VertexBufferProperties& properties)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    m_renderer->updateVertexBuffer(handle, properties);
}

void ContextBase::destroyVertexBuffer(const VertexBufferHandle& handle)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    m_renderer->destroyVertexBuffer(handle);
}

IndexBufferHandle ContextBase::createIndexBuffer(const IndexBufferProperties& properties)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    return m_renderer->createIndexBuffer(properties);
}

void ContextBase::updateIndexBuffer(const IndexBufferHandle& handle, const IndexBufferProperties& properties)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    m_renderer->updateIndexBuffer(handle, properties);
}

void ContextBase::destroyIndexBuffer(const IndexBufferHandle& handle)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    m_renderer->destroyIndexBuffer(handle);
}

ShaderBufferHandle ContextBase::createShaderBuffer(const ShaderBufferProperties& properties)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    return m_renderer->createShaderBuffer(properties);
}

void ContextBase::updateShaderBuffer(const ShaderBufferHandle& handle, const ShaderBufferProperties& properties)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    m_renderer->updateShaderBuffer(handle, properties);
}

void ContextBase::destroyShaderBuffer(const ShaderBufferHandle& handle)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    m_renderer->destroyShaderBuffer(handle);
}

TextureImageHandle ContextBase::createTextureImage(const TextureImageProperties& properties)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    return m_renderer->createTextureImage(properties);
}

void ContextBase::updateTextureImage(const TextureImageHandle& handle, const TextureImageProperties& properties)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    m_renderer->updateTextureImage(handle, properties);
}

void ContextBase::destroyTextureImage(const TextureImageHandle& handle)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    m_renderer->destroyTextureImage(handle);
}

SamplerHandle ContextBase::createSampler(const SamplerProperties& properties)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    return m_renderer->createSampler(properties);
}

void ContextBase::updateSampler(const SamplerHandle& handle, const SamplerProperties& properties)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    m_renderer->updateSampler(handle, properties);
}

void ContextBase::destroySampler(const SamplerHandle& handle)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    m_renderer->destroySampler(handle);
}

TextureHandle ContextBase::createTexture(const TextureProperties& properties)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    return m_renderer->createTexture(properties);
}

void ContextBase::updateTexture(const TextureHandle& handle, const TextureProperties& properties)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    m_renderer->updateTexture(handle, properties);
}

void ContextBase::resizeTexture(const TextureHandle& handle, uint32_t width, uint32_t height, uint32_t depth)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    m_renderer->resizeTexture(handle, width, height, depth);
}

void ContextBase::updateTextureBatchData(const TextureHandle& handle,
                                         const TextureUpdateBatchDataProperties& properties)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    m_renderer->updateTextureBatchData(handle, properties);
}

void ContextBase::readbackTexture(const TextureHandle& handle, void* destination, size_t size)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    m_renderer->readbackTexture(handle, destination, size);
}

void ContextBase::destroyTexture(const TextureHandle& handle)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    m_renderer->destroyTexture(handle);
}

RenderTargetHandle ContextBase::createRenderTarget(const RenderTargetProperties& properties)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    return m_renderer->createRenderTarget(properties);
}

void ContextBase::destroyRenderTarget(const RenderTargetHandle& handle)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    m_renderer->destroyRenderTarget(handle);
}

void ContextBase::updateRenderTarget(const RenderTargetHandle& handle, const RenderTargetProperties& properties)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    m_renderer->updateRenderTarget(handle, properties);
}

ViewportHandle ContextBase::createViewport(const ViewportProperties& properties)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    return m_renderer->createViewport(properties);
}

void ContextBase::destroyViewport(const ViewportHandle& handle)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    m_renderer->destroyViewport(handle);
}

void ContextBase::updateViewport(const ViewportHandle& handle, const ViewportProperties& properties)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    m_renderer->updateViewport(handle, properties);
}

ShaderObjectHandle ContextBase::createShaderObject(const ShaderObjectProperties& properties)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    const ShaderObjectHandle handle = m_renderer->createShaderObject(properties);
    executeResourceCommands();
    return handle;
}

const std::string& ContextBase::getShaderObjectLog(const ShaderObjectHandle& handle)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    return m_renderer->getShaderObjectLog(handle);
}

void ContextBase::destroyShaderObject(const ShaderObjectHandle& handle)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    m_renderer->destroyShaderObject(handle);
}

ShaderProgramHandle ContextBase::createShaderProgram(const ShaderProgramProperties& properties)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    const ShaderProgramHandle handle = m_renderer->createShaderProgram(properties);
    executeResourceCommands();
    return handle;
}

const std::string& ContextBase::getShaderProgramLog(const ShaderProgramHandle& handle)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    return m_renderer->getShaderProgramLog(handle);
}

void ContextBase::destroyShaderProgram(const ShaderProgramHandle& handle)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    m_renderer->destroyShaderProgram(handle);
}

#define RENDERENGINE_FORWARD_PARAMETER(PROPERTIES)                                                             \
    ShaderParameterHandle ContextBase::createShaderParameter(const PROPERTIES& properties)                     \
    {                                                                                                          \
        RENDERENGINE_ASSERT(m_renderer, PATH);                                                                 \
        return m_renderer->createShaderParameter(properties);                                                  \
    }                                                                                                          \
                                                                                                               \
    void ContextBase::updateShaderParameter(const ShaderParameterHandle& handle, const PROPERTIES& properties) \
    {                                                                                                          \
        RENDERENGINE_ASSERT(m_renderer, PATH);                                                                 \
        m_renderer->updateShaderParameter(handle, properties);                                                 \
    }
RENDERENGINE_SHADER_PARAMETERS(RENDERENGINE_FORWARD_PARAMETER)
#undef RENDERENGINE_FORWARD_PARAMETER

void ContextBase::destroyShaderParameter(const ShaderParameterHandle& handle)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    m_renderer->destroyShaderParameter(handle);
}

QueryHandle ContextBase::createQuery(uint32_t type)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    return m_renderer->createQuery(type);
}

uint64_t ContextBase::getQueryResult(const QueryHandle& handle)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    return m_renderer->getQueryResult(handle);
}

void ContextBase::destroyQuery(const QueryHandle& handle)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    m_renderer->destroyQuery(handle);
}

} // namespace renderengine
