#pragma once

#include "commands/CommandList.h"

#include <renderengine/ContextInterface.h>

#include <cstdint>
#include <memory>
#include <string>
#include <thread>

namespace renderengine
{

class RendererBase;
class RenderLoop;

/// What all contexts share: forwards each operation to its renderer and decides whether work runs on the calling
/// thread, between makeCurrent() and doneCurrent(), or on the render thread.
///
/// A concrete context makes the device context and the renderer in init(), and calls stopRenderThread() first thing in
/// its destructor, while its makeCurrent() and doneCurrent() can still be called.
class ContextBase : public ContextInterface
{
public:
    /// \p flags: bits of ContextFlag. \p count is raised to at least 1.
    ContextBase(uint8_t flags, uint16_t count);
    ContextBase(const ContextBase&) = delete;
    ContextBase& operator=(const ContextBase&) = delete;

    /// Deletes the renderer. The render thread has to be stopped by then.
    ~ContextBase() override;

    bool canPresent() override;
    PresentFrame* getPresentFrame() override;
    bool present() override;
    ReversePresentFrame* getReversePresentFrame() override;
    void submit(const std::shared_ptr<RenderCache>& cache) override;
    void execute(bool wait) override;
    void discardFrame() override;
    void presentFrameSync() override;
    void executeResourceCommands() override;
    DrawHandle createDraw(std::shared_ptr<const GfxStateProperties> gfxState,
                          std::shared_ptr<const ShaderStateCoreProperties> shaderState) override;
    void updateDraw(const DrawHandle& handle, std::shared_ptr<const GfxStateProperties> gfxState,
                    std::shared_ptr<const ShaderStateCoreProperties> shaderState) override;
    void renderTask(const TaskProperties& task, std::shared_ptr<const GfxStateProperties> gfxState,
                    const ShaderStateProperties& shaderState, bool fixedFunctionState) override;
    void destroyDraw(const DrawHandle& handle) override;
    DrawPropertiesHandle createDrawProperties(const DrawProperties& properties) override;
    void updateDrawProperties(const DrawPropertiesHandle& handle, const DrawProperties& properties) override;
    void destroyDrawProperties(const DrawPropertiesHandle& handle) override;
    void addDrawProperties(const DrawHandle& draw, const DrawPropertiesHandle& properties) override;
    void removeDrawProperties(const DrawHandle& draw, const DrawPropertiesHandle& properties) override;
    void removeAllDrawProperties(const DrawHandle& draw) override;
    BufferHandle createBuffer(const BufferProperties& properties) override;
    void destroyBuffer(const BufferHandle& handle) override;
    void resizeBuffer(const BufferHandle& handle, uint64_t size) override;
    void updateBuffer(const BufferHandle& handle, const BufferProperties& properties) override;
    void* mapBuffer(const BufferHandle& handle, uint64_t offset, uint64_t length, uint32_t access) override;
    void unmapBuffer(const BufferHandle& handle) override;
    void copyBuffer(const BufferHandle& source, const BufferHandle& destination, uint64_t sourceOffset,
                    uint64_t destinationOffset, uint64_t length) override;
    void addTask(const TaskProperties& task) override;
    void addEndTask(const TaskProperties& task) override;
    VertexBufferHandle createVertexBuffer(const VertexBufferProperties& properties) override;
    void updateVertexBuffer(const VertexBufferHandle& handle, const VertexBufferProperties& properties) override;
    void destroyVertexBuffer(const VertexBufferHandle& handle) override;
    IndexBufferHandle createIndexBuffer(const IndexBufferProperties& properties) override;
    void updateIndexBuffer(const IndexBufferHandle& handle, const IndexBufferProperties& properties) override;
    void destroyIndexBuffer(const IndexBufferHandle& handle) override;
    ShaderBufferHandle createShaderBuffer(const ShaderBufferProperties& properties) override;
    void updateShaderBuffer(const ShaderBufferHandle& handle, const ShaderBufferProperties& properties) override;
    void destroyShaderBuffer(const ShaderBufferHandle& handle) override;
    TextureImageHandle createTextureImage(const TextureImageProperties& properties) override;
    void updateTextureImage(const TextureImageHandle& handle, const TextureImageProperties& properties) override;
    void destroyTextureImage(const TextureImageHandle& handle) override;
    SamplerHandle createSampler(const SamplerProperties& properties) override;
    void updateSampler(const SamplerHandle& handle, const SamplerProperties& properties) override;
    void destroySampler(const SamplerHandle& handle) override;
    TextureHandle createTexture(const TextureProperties& properties) override;
    void updateTexture(const TextureHandle& handle, const TextureProperties& properties) override;
    void resizeTexture(const TextureHandle& handle, uint32_t width, uint32_t height, uint32_t depth) override;
    void updateTextureBatchData(const TextureHandle& handle,
                                const TextureUpdateBatchDataProperties& properties) override;
    void readbackTexture(const TextureHandle& handle, void* destination, size_t size) override;
    void destroyTexture(const TextureHandle& handle) override;
    RenderTargetHandle createRenderTarget(const RenderTargetProperties& properties) override;
    void destroyRenderTarget(const RenderTargetHandle& handle) override;
    void updateRenderTarget(const RenderTargetHandle& handle, const RenderTargetProperties& properties) override;
    ViewportHandle createViewport(const ViewportProperties& properties) override;
    void destroyViewport(const ViewportHandle& handle) override;
    void updateViewport(const ViewportHandle& handle, const ViewportProperties& properties) override;
    ShaderObjectHandle createShaderObject(const ShaderObjectProperties& properties) override;
    const std::string& getShaderObjectLog(const ShaderObjectHandle& handle) override;
    void destroyShaderObject(const ShaderObjectHandle& handle) override;
    ShaderProgramHandle createShaderProgram(const ShaderProgramProperties& properties) override;
    const std::string& getShaderProgramLog(const ShaderProgramHandle& handle) override;
    void destroyShaderProgram(const ShaderProgramHandle& handle) override;
#define RENDERENGINE_OVERRIDE_CREATE(PROPERTIES) \
    ShaderParameterHandle createShaderParameter(const PROPERTIES& properties) override;
    RENDERENGINE_SHADER_PARAMETERS(RENDERENGINE_OVERRIDE_CREATE)
#undef RENDERENGINE_OVERRIDE_CREATE
#define RENDERENGINE_OVERRIDE_UPDATE(PROPERTIES) \
    void updateShaderParameter(const ShaderParameterHandle& handle, const PROPERTIES& properties) override;
    RENDERENGINE_SHADER_PARAMETERS(RENDERENGINE_OVERRIDE_UPDATE)
#undef RENDERENGINE_OVERRIDE_UPDATE
    void destroyShaderParameter(const ShaderParameterHandle& handle) override;
    QueryHandle createQuery(uint32_t type) override;
    uint64_t getQueryResult(const QueryHandle& handle) override;
    void destroyQuery(const QueryHandle& handle) override;
    void setSize(uint32_t width, uint32_t height) override;
    RenderTargetHandle getPresentRenderTarget() override;
    RenderTargetHandle getReversePresentRenderTarget() override;
    void setPresentRenderTarget(const RenderTargetHandle& handle) override;
    void setReversePresentRenderTarget(const RenderTargetHandle& handle) override;
    TextureHandle getPresentColorTexture() override;
    void setPresentColorTexture(const TextureHandle& handle) override;
    TextureHandle getPresentDepthTexture() override;
    void setPresentDepthTexture(const TextureHandle& handle) override;
    void flush(const std::shared_ptr<RenderCache>& cache, bool execute) override;
    const FramebufferParameterEventArg* updatePresentEventArg() override;

    /// Makes the device context current on the calling thread; false when that fails.
    virtual bool makeCurrent() = 0;

    /// Releases the device context on the calling thread.
    virtual void doneCurrent() = 0;

    /// Whether frames run on a thread of their own.
    bool isRenderThreaded() const
    {
        return m_renderLoop != nullptr;
    }

    /// The renderer, owned by the context; null before init().
    RendererBase* getRenderer() const
    {
        return m_renderer;
    }

protected:
    /// The renderer without a device that the setting KVR_RENDERENGINE_RENDERER asks for, owned by the caller; null
    /// when it asks for another one.
    RendererBase* createDebugRenderer() const;

    /// Starts the render thread, named "KVR_RenderThread_" and its id. To be called at the end of init(). Throws
    /// std::system_error when the system has no thread to give; the context then has none.
    void startRenderThread();

    /// Runs what was asked for, ends the render thread and joins it. Does nothing without one. To be called once.
    void stopRenderThread();

    bool m_multithread;
    bool m_shareContext;
    bool m_debug;
    uint16_t m_count;
    RendererBase* m_renderer; // owned
    std::unique_ptr<RenderLoop> m_renderLoop;
    std::unique_ptr<std::thread> m_renderThread;

private:
    void runFrame(bool wait);
};

} // namespace renderengine
