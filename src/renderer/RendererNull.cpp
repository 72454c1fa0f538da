#include "renderer/RendererNull.h"

namespace renderengine
{

namespace
{

constexpr uint32_t CAPACITY = 65536;

template <class HandleType, class Resource> HandleType next(ResourceTable<HandleType, Resource>& table)
{
    HandleType handle;
    return table.create(handle);
}

} // namespace

RendererNull::RendererNull(bool /*debug*/)
    : RendererBase(false), m_draws(CAPACITY), m_drawProperties(CAPACITY), m_buffers(CAPACITY),
      m_vertexBuffers(CAPACITY), m_indexBuffers(CAPACITY), m_shaderBuffers(CAPACITY), m_textureImages(CAPACITY),
      m_samplers(CAPACITY), m_textures(CAPACITY), m_renderTargets(CAPACITY), m_viewports(CAPACITY),
      m_shaderObjects(CAPACITY), m_shaderPrograms(CAPACITY), m_shaderParameters(CAPACITY), m_queries(CAPACITY)
{
}

void* RendererNull::getMappedBufferPointer(const BufferHandle& /*handle*/)
{
    return nullptr;
}

void RendererNull::begin() {}

void RendererNull::finish() {}

void RendererNull::destroy() {}

void RendererNull::readbackTexture(const TextureHandle& /*handle*/, void* /*destination*/, size_t /*size*/) {}

void RendererNull::presentFrameSync() {}

void RendererNull::finishFrame() {}

const FramebufferParameterEventArg* RendererNull::updatePresentEventArg()
{
    return nullptr;
}

DrawHandle RendererNull::generateDrawHandle()
{
    return next(m_draws);
}

DrawPropertiesHandle RendererNull::generateDrawPropertiesHandle()
{
    return next(m_drawProperties);
}

BufferHandle RendererNull::generateBufferHandle()
{
    return next(m_buffers);
}

VertexBufferHandle RendererNull::generateVertexBufferHandle()
{
    return next(m_vertexBuffers);
}

IndexBufferHandle RendererNull::generateIndexBufferHandle()
{
    return next(m_indexBuffers);
}

ShaderBufferHandle RendererNull::generateShaderBufferHandle()
{
    return next(m_shaderBuffers);
}

TextureImageHandle RendererNull::generateTextureImageHandle()
{
    return next(m_textureImages);
}

SamplerHandle RendererNull::generateSamplerHandle()
{
    return next(m_samplers);
}

TextureHandle RendererNull::generateTextureHandle()
{
    return next(m_textures);
}

RenderTargetHandle RendererNull::generateRenderTargetHandle()
{
    return next(m_renderTargets);
}

ViewportHandle RendererNull::generateViewportHandle()
{
    return next(m_viewports);
}

ShaderObjectHandle RendererNull::generateShaderObjectHandle()
{
    return next(m_shaderObjects);
}

ShaderProgramHandle RendererNull::generateShaderProgramHandle()
{
    return next(m_shaderPrograms);
}

ShaderParameterHandle RendererNull::generateShaderParameterHandle()
{
    return next(m_shaderParameters);
}

QueryHandle RendererNull::generateQueryHandle()
{
    return next(m_queries);
}

} // namespace renderengine
