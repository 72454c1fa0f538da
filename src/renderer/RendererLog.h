#pragma once

#include "commands/ResourceTable.h"
#include "renderer/LogResources.h"
#include "renderer/RendererBase.h"

namespace renderengine
{

/// The renderer that touches no device and writes one line at trace level for each operation that has one, so that a
/// run of the engine can be read, or compared, as a text. Tasks are not run.
///
/// Nine concepts have numbers and a shadow object each. Handles of buffers, shader buffers, texture images, shader
/// objects, shader programs and shader parameters are always invalid here. A command on a number without an object is
/// skipped.
class RendererLog : public RendererBase
{
public:
    explicit RendererLog(bool debug);
    ~RendererLog() override;

    using RendererBase::execute;

    void execute(CommandDestroyQuery& command) override;
    void execute(CommandGetQueryResult& command) override;
    void execute(CommandEndQuery& command) override;
    void execute(CommandBeginQuery& command) override;
    void execute(CommandCreateQuery& command) override;
    void execute(CommandCompute& command) override;
    void execute(CommandRender& command) override;
    void execute(CommandDestroyViewport& command) override;
    void execute(CommandUpdateViewport& command) override;
    void execute(CommandCreateViewport& command) override;
    void execute(CommandDestroyRenderTarget& command) override;
    void execute(CommandCreateRenderTarget& command) override;
    void execute(CommandGenerateMipmap& command) override;
    void execute(CommandDestroyTexture& command) override;
    void execute(CommandUpdateTexture& command) override;
    void execute(CommandResizeTexture& command) override;
    void execute(CommandCreateTexture& command) override;
    void execute(CommandDestroySampler& command) override;
    void execute(CommandCreateSampler& command) override;
    void execute(CommandDestroyIndexBuffer& command) override;
    void execute(CommandUpdateIndexBuffer& command) override;
    void execute(CommandCreateIndexBuffer& command) override;
    void execute(CommandDestroyVertexBuffer& command) override;
    void execute(CommandUpdateVertexBuffer& command) override;
    void execute(CommandCreateVertexBuffer& command) override;
    void execute(CommandDestroyDraw& command) override;
    void execute(CommandUpdateDraw& command) override;
    void execute(CommandRemoveAllDrawProperties& command) override;
    void execute(CommandRemoveDrawProperties& command) override;
    void execute(CommandAddDrawProperties& command) override;
    void execute(CommandDestroyDrawProperties& command) override;
    void execute(CommandUpdateDrawProperties& command) override;
    void execute(CommandCreateDrawProperties& command) override;
    void execute(CommandCreateDraw& command) override;
    void execute(CommandClearRT& command) override;

    // These have no line.
    void execute(CommandBlit&) override {}
    void execute(CommandPopDebugMarker&) override {}
    void execute(CommandPushDebugMarker&) override {}
    void execute(CommandEndTransformFeedback&) override {}
    void execute(CommandBeginTransformFeedback&) override {}
    void execute(CommandTask&) override {}
    void execute(CommandRenderTask&) override {}
    void execute(CommandDestroyShaderParameter&) override {}
    void execute(CommandDestroyShaderProgram&) override {}
    void execute(CommandCreateShaderProgram&) override {}
    void execute(CommandDestroyShaderObject&) override {}
    void execute(CommandCreateShaderObject&) override {}
    void execute(CommandMemoryBarrier&) override {}
    void execute(CommandUpdateRenderTarget&) override {}
    void execute(CommandUpdateTextureBatchData&) override {}
    void execute(CommandReadbackTexture&) override {}
    void execute(CommandUpdateSampler&) override {}
    void execute(CommandDestroyTextureImage&) override {}
    void execute(CommandUpdateTextureImage&) override {}
    void execute(CommandCreateTextureImage&) override {}
    void execute(CommandDestroyShaderBuffer&) override {}
    void execute(CommandUpdateShaderBuffer&) override {}
    void execute(CommandCreateShaderBuffer&) override {}
    void execute(CommandDestroyBuffer&) override {}
    void execute(CommandCopyBuffer&) override {}
    void execute(CommandUnmapBuffer&) override {}
    void execute(CommandMapBuffer&) override {}
    void execute(CommandUpdateBuffer&) override {}
    void execute(CommandResizeBuffer&) override {}
    void execute(CommandCreateBuffer&) override {}
#define RENDERENGINE_SILENT_PARAMETER(PROPERTIES)                       \
    void execute(CommandUpdateShaderParameter<PROPERTIES>&) override {} \
    void execute(CommandCreateShaderParameter<PROPERTIES>&) override {}
    RENDERENGINE_SHADER_PARAMETERS(RENDERENGINE_SILENT_PARAMETER)
#undef RENDERENGINE_SILENT_PARAMETER

    void* getMappedBufferPointer(const BufferHandle&) override
    {
        return nullptr;
    }
    void begin() override;
    void finish() override;
    void destroy() override {}
    void readbackTexture(const TextureHandle&, void*, size_t) override {}
    void presentFrameSync() override {}
    void finishFrame() override;
    const FramebufferParameterEventArg* updatePresentEventArg() override
    {
        return nullptr;
    }

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
    ResourceTable<IndexBufferHandle, IndexBufferLog> m_indexBuffers;
    ResourceTable<VertexBufferHandle, VertexBufferLog> m_vertexBuffers;
    ResourceTable<SamplerHandle, SamplerLog> m_samplers;
    ResourceTable<TextureHandle, TextureLog> m_textures;
    ResourceTable<RenderTargetHandle, RenderTargetLog> m_renderTargets;
    ResourceTable<ViewportHandle, ViewportLog> m_viewports;
    ResourceTable<QueryHandle, QueryLog> m_queries;
    ResourceTable<DrawHandle, DrawLog> m_draws;
    ResourceTable<DrawPropertiesHandle, DrawPropertiesLog> m_drawProperties;
};

} // namespace renderengine
