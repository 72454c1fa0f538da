#pragma once

#include "commands/ResourceTable.h"
#include "renderer/RendererBase.h"

namespace renderengine
{

/// The renderer without a device and without output. Everything is recorded and dispatched as on any other renderer,
/// and then dropped, so that the cost of recording and dispatch can be measured alone. Handles are given out; their
/// numbers only rise, since nothing gives one back. Tasks are not run.
class RendererNull : public RendererBase
{
public:
    /// \p debug is not used: this renderer always runs without the debug flag.
    explicit RendererNull(bool debug);

    using RendererBase::execute;
#define RENDERENGINE_EMPTY_EXECUTE(COMMAND) \
    void execute(COMMAND&) override {}
    RENDERENGINE_COMMANDS(RENDERENGINE_EMPTY_EXECUTE)
#undef RENDERENGINE_EMPTY_EXECUTE

    /// Null: a client has to cope with a buffer that cannot be mapped.
    void* getMappedBufferPointer(const BufferHandle& handle) override;

    void begin() override;
    void finish() override;
    void destroy() override;

    /// Leaves \p destination as it was.
    void readbackTexture(const TextureHandle& handle, void* destination, size_t size) override;

    void presentFrameSync() override;
    void finishFrame() override;
    const FramebufferParameterEventArg* updatePresentEventArg() override;

    DrawHandle generateDrawHandle() override;
    DrawPropertiesHandle generateDrawPropertiesHandle() override;
    BufferHandle generateBufferHandle() override;
    VertexBufferHandle generateVertexBufferHandle() override;
    IndexBufferHandle generateIndexBufferHandle() override;
    ShaderBufferHandle generateShaderBufferHandle() override;
    TextureImageHandle generateTextureImageHandle() override;
    SamplerHandle generateSamplerHandle() override;
    TextureHandle generateTextureHandle() override;
    RenderTargetHandle generateRenderTargetHandle() override;
    ViewportHandle generateViewportHandle() override;
    ShaderObjectHandle generateShaderObjectHandle() override;
    ShaderProgramHandle generateShaderProgramHandle() override;
    ShaderParameterHandle generateShaderParameterHandle() override;
    QueryHandle generateQueryHandle() override;

private:
    // What would stand in a slot. None is ever made: the tables only give out numbers.
    struct NoResource
    {
    };
    template <class HandleType> using NumberTable = ResourceTable<HandleType, NoResource>;

    NumberTable<DrawHandle> m_draws;
    NumberTable<DrawPropertiesHandle> m_drawProperties;
    NumberTable<BufferHandle> m_buffers;
    NumberTable<VertexBufferHandle> m_vertexBuffers;
    NumberTable<IndexBufferHandle> m_indexBuffers;
    NumberTable<ShaderBufferHandle> m_shaderBuffers;
    NumberTable<TextureImageHandle> m_textureImages;
    NumberTable<SamplerHandle> m_samplers;
    NumberTable<TextureHandle> m_textures;
    NumberTable<RenderTargetHandle> m_renderTargets;
    NumberTable<ViewportHandle> m_viewports;
    NumberTable<ShaderObjectHandle> m_shaderObjects;
    NumberTable<ShaderProgramHandle> m_shaderPrograms;
    NumberTable<ShaderParameterHandle> m_shaderParameters;
    NumberTable<QueryHandle> m_queries;
};

} // namespace renderengine
