#pragma once

#include "commands/CommandBuffer.h"
#include "commands/CommandList.h"
#include "renderer/RingQueue.h"

#include <renderengine/BufferProperties.h>
#include <renderengine/DrawProperties.h>
#include <renderengine/GfxStateProperties.h>
#include <renderengine/Handle.h>
#include <renderengine/IndexBufferProperties.h>
#include <renderengine/RenderTargetProperties.h>
#include <renderengine/SamplerProperties.h>
#include <renderengine/ShaderBufferProperties.h>
#include <renderengine/ShaderObjectProperties.h>
#include <renderengine/ShaderParameterArrayProperties.h>
#include <renderengine/ShaderParameterProperties.h>
#include <renderengine/ShaderProgramProperties.h>
#include <renderengine/ShaderStateCoreProperties.h>
#include <renderengine/TaskProperties.h>
#include <renderengine/TextureImageProperties.h>
#include <renderengine/TextureProperties.h>
#include <renderengine/TextureUpdateBatchDataProperties.h>
#include <renderengine/VertexBufferProperties.h>
#include <renderengine/ViewportProperties.h>

#include <kavelor/SbMatrix.h>
#include <kavelor/SbVec.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>

namespace renderengine
{

class FramebufferParameterEventArg;
class Frame;
class PresentFrame;
class RenderCache;
class ReversePresentFrame;

/// The abstract renderer: one execute overload a command class, through which a command dispatches itself on the
/// renderer that runs it; the frames and resource commands that wait to run; and the wrappers that turn a resource
/// call of a context into a handle and a recorded command.
///
/// Two threads meet here. The client's thread records, submits and ends frames. The render thread, or the client's own
/// when there is none, runs execute() and executeResourceCommands(), and with them every overload. A derived renderer
/// says `using RendererBase::execute;`, so that its own overloads hide none of these.
class RendererBase
{
public:
    /// \p debug: the device context was made for debugging.
    explicit RendererBase(bool debug);
    RendererBase(const RendererBase&) = delete;
    RendererBase& operator=(const RendererBase&) = delete;

    /// Drops frames that have not run. Device objects are released by destroy(), not here.
    virtual ~RendererBase();

    /// Whether there is a present step at all.
    virtual bool canPresent();

    /// The present step, owned by the renderer; null when there is none.
    virtual PresentFrame* getPresentFrame();

    /// Runs the present step with an argument brought up to date; false, with nothing done, when there is none.
    virtual bool present();

    /// The step that reads a framebuffer back, owned by the renderer; null when there is none.
    virtual ReversePresentFrame* getReversePresentFrame();

    // One overload a command class, in the order of the list. Destroy overloads write the invalid handle into their
    // command. Only a plain task has a body here, since it is the same on every device: it runs the client's code.
#define RENDERENGINE_DECLARE_EXECUTE(COMMAND) virtual void execute(COMMAND& command) = 0;
    RENDERENGINE_COMMANDS_BEFORE_TASK(RENDERENGINE_DECLARE_EXECUTE)
    virtual void execute(CommandTask& command);
    RENDERENGINE_COMMANDS_AFTER_TASK(RENDERENGINE_DECLARE_EXECUTE)
#undef RENDERENGINE_DECLARE_EXECUTE

    /// Begins, runs the resource list and, when a frame waits, the oldest one, which it then drops and finishes. Holds
    /// the frame lock for its whole length. An exception leaves the frame waiting, and one of a resource
    /// command the resource list as well.
    virtual void execute();

    /// The memory of a buffer that a map command has mapped; null when it is not mapped. Never grows a table.
    virtual void* getMappedBufferPointer(const BufferHandle& handle) = 0;

    // A pair of overloads a parameter record, recorded in the head list.
#define RENDERENGINE_DECLARE_CREATE(PROPERTIES) \
    virtual ShaderParameterHandle createShaderParameter(const PROPERTIES& properties);
    RENDERENGINE_SHADER_PARAMETERS(RENDERENGINE_DECLARE_CREATE)
#undef RENDERENGINE_DECLARE_CREATE
#define RENDERENGINE_DECLARE_UPDATE(PROPERTIES) \
    virtual void updateShaderParameter(const ShaderParameterHandle& handle, const PROPERTIES& properties);
    RENDERENGINE_SHADER_PARAMETERS(RENDERENGINE_DECLARE_UPDATE)
#undef RENDERENGINE_DECLARE_UPDATE

    /// Called by every execute(), whether or not a frame waits.
    virtual void begin() = 0;

    /// Called by execute() behind a frame that has run.
    virtual void finish() = 0;

    /// Called once as the render thread starts, with the device context current. Never called without such a thread.
    virtual void init();

    /// Called once as the render thread ends, with the device context still current: releases what the renderer holds
    /// on the device. Never called without such a thread.
    virtual void destroy() = 0;

    /// Runs and clears the resource list under the frame lock.
    virtual void executeResourceCommands();

    /// Copies up to \p size bytes of what a read-back command fetched from the texture. Never grows a table.
    virtual void readbackTexture(const TextureHandle& handle, void* destination, size_t size) = 0;

    /// Marks the end of a present step on the thread that presents.
    virtual void presentFrameSync() = 0;

    /// Makes the thread that presents wait for the frame, on the client's thread behind each execution.
    virtual void finishFrame() = 0;

    /// Brings the argument of the present steps up to date; null when there are none.
    virtual const FramebufferParameterEventArg* updatePresentEventArg() = 0;

    /// Hands the picture of the given frame to a graphical test that asked for it.
    virtual void captureFrame(size_t frame);

    // A new number of each concept, at once and on the client's thread.
    virtual DrawHandle generateDrawHandle() = 0;
    virtual DrawPropertiesHandle generateDrawPropertiesHandle() = 0;
    virtual BufferHandle generateBufferHandle() = 0;
    virtual VertexBufferHandle generateVertexBufferHandle() = 0;
    virtual IndexBufferHandle generateIndexBufferHandle() = 0;
    virtual ShaderBufferHandle generateShaderBufferHandle() = 0;
    virtual TextureImageHandle generateTextureImageHandle() = 0;
    virtual SamplerHandle generateSamplerHandle() = 0;
    virtual TextureHandle generateTextureHandle() = 0;
    virtual RenderTargetHandle generateRenderTargetHandle() = 0;
    virtual ViewportHandle generateViewportHandle() = 0;
    virtual ShaderObjectHandle generateShaderObjectHandle() = 0;
    virtual ShaderProgramHandle generateShaderProgramHandle() = 0;
    virtual ShaderParameterHandle generateShaderParameterHandle() = 0;
    virtual QueryHandle generateQueryHandle() = 0;

    /// Dispatches each command of the list on this renderer, first to last. The list is not changed.
    void executeCommands(const CommandBuffer& commands);

    /// Queues the cache's commands on the current frame. The flush form has the same effect on the frame.
    void submit(const std::shared_ptr<RenderCache>& cache);
    void submitFlush(const std::shared_ptr<RenderCache>& cache);

    /// Moves the current frame to the back of the queue, begins a new one and returns the former. Waits while a frame
    /// is running, which is all that keeps a client from running ahead.
    std::shared_ptr<Frame> endFrame();

    /// Clears and drops the front frame of the queue, without a lock: to be called right behind endFrame(), on the same
    /// thread, with no other frame waiting.
    void discardFrame();

    /// Compile and link logs; empty for a handle that has none. To be read when the command has run.
    const std::string& getShaderObjectLog(const ShaderObjectHandle& handle) const;
    const std::string& getShaderProgramLog(const ShaderProgramHandle& handle) const;

    /// Empties the log of a handle and returns it, for the renderer to write into.
    std::string& resetShaderObjectLog(const ShaderObjectHandle& handle);
    std::string& resetShaderProgramLog(const ShaderProgramHandle& handle);

    /// The last result of a query; 0 for a query that has none.
    uint64_t getQueryResult(const QueryHandle& handle) const;

    RenderTargetHandle getPresentRenderTarget() const
    {
        return m_presentRenderTarget;
    }
    void setPresentRenderTarget(const RenderTargetHandle& handle)
    {
        m_presentRenderTarget = handle;
    }
    RenderTargetHandle getReversePresentRenderTarget() const
    {
        return m_reversePresentRenderTarget;
    }
    void setReversePresentRenderTarget(const RenderTargetHandle& handle)
    {
        m_reversePresentRenderTarget = handle;
    }
    TextureHandle getPresentColorTexture() const
    {
        return m_presentColorTexture;
    }
    void setPresentColorTexture(const TextureHandle& handle)
    {
        m_presentColorTexture = handle;
    }
    TextureHandle getPresentDepthTexture() const
    {
        return m_presentDepthTexture;
    }
    void setPresentDepthTexture(const TextureHandle& handle)
    {
        m_presentDepthTexture = handle;
    }

    /// Size of the presented frame in pixels; 0 by 0 at first.
    void setSize(uint32_t width, uint32_t height);

    // Tasks: addTask records in the head list, addEndTask in the tail list.
    void addTask(const TaskProperties& task);
    void addEndTask(const TaskProperties& task);

    // The recording wrappers. A destroy goes to the tail list of the current frame. The others go to its head list,
    // except where the comment names the resource list.
    DrawHandle createDraw(std::shared_ptr<const GfxStateProperties> gfxState,
                          std::shared_ptr<const ShaderStateCoreProperties> shaderState);
    void updateDraw(const DrawHandle& handle, std::shared_ptr<const GfxStateProperties> gfxState,
                    std::shared_ptr<const ShaderStateCoreProperties> shaderState);
    void destroyDraw(const DrawHandle& handle);

    DrawPropertiesHandle createDrawProperties(const DrawProperties& properties);
    void updateDrawProperties(const DrawPropertiesHandle& handle, const DrawProperties& properties);
    void destroyDrawProperties(const DrawPropertiesHandle& handle);
    void addDrawProperties(const DrawHandle& draw, const DrawPropertiesHandle& properties);
    void removeDrawProperties(const DrawHandle& draw, const DrawPropertiesHandle& properties);
    void removeAllDrawProperties(const DrawHandle& draw);

    // Resource list: create, resize, map, unmap, copy.
    BufferHandle createBuffer(const BufferProperties& properties);
    void updateBuffer(const BufferHandle& handle, const BufferProperties& properties);
    void resizeBuffer(const BufferHandle& handle, uint64_t size);
    void mapBuffer(const BufferHandle& handle, uint64_t offset, uint64_t length, uint32_t access);
    void unmapBuffer(const BufferHandle& handle);
    void copyBuffer(const BufferHandle& source, const BufferHandle& destination, uint64_t sourceOffset,
                    uint64_t destinationOffset, uint64_t length);
    void destroyBuffer(const BufferHandle& handle);

    // Resource list: create.
    VertexBufferHandle createVertexBuffer(const VertexBufferProperties& properties);
    void updateVertexBuffer(const VertexBufferHandle& handle, const VertexBufferProperties& properties);
    void destroyVertexBuffer(const VertexBufferHandle& handle);

    // Resource list: create.
    IndexBufferHandle createIndexBuffer(const IndexBufferProperties& properties);
    void updateIndexBuffer(const IndexBufferHandle& handle, const IndexBufferProperties& properties);
    void destroyIndexBuffer(const IndexBufferHandle& handle);

    // Resource list: create.
    ShaderBufferHandle createShaderBuffer(const ShaderBufferProperties& properties);
    void updateShaderBuffer(const ShaderBufferHandle& handle, const ShaderBufferProperties& properties);
    void destroyShaderBuffer(const ShaderBufferHandle& handle);

    // Resource list: create.
    TextureImageHandle createTextureImage(const TextureImageProperties& properties);
    void updateTextureImage(const TextureImageHandle& handle, const TextureImageProperties& properties);
    void destroyTextureImage(const TextureImageHandle& handle);

    SamplerHandle createSampler(const SamplerProperties& properties);
    void updateSampler(const SamplerHandle& handle, const SamplerProperties& properties);
    void destroySampler(const SamplerHandle& handle);

    // Resource list: create.
    TextureHandle createTexture(const TextureProperties& properties);
    void resizeTexture(const TextureHandle& handle, uint32_t width, uint32_t height, uint32_t depth);
    void updateTexture(const TextureHandle& handle, const TextureProperties& properties);
    void updateTextureBatchData(const TextureHandle& handle, const TextureUpdateBatchDataProperties& properties);
    void destroyTexture(const TextureHandle& handle);

    RenderTargetHandle createRenderTarget(const RenderTargetProperties& properties);
    void updateRenderTarget(const RenderTargetHandle& handle, const RenderTargetProperties& properties);
    void destroyRenderTarget(const RenderTargetHandle& handle);

    ViewportHandle createViewport(const ViewportProperties& properties);
    void updateViewport(const ViewportHandle& handle, const ViewportProperties& properties);
    void destroyViewport(const ViewportHandle& handle);

    // Resource list: create.
    ShaderObjectHandle createShaderObject(const ShaderObjectProperties& properties);
    void destroyShaderObject(const ShaderObjectHandle& handle);

    // Resource list: create.
    ShaderProgramHandle createShaderProgram(const ShaderProgramProperties& properties);
    void destroyShaderProgram(const ShaderProgramHandle& handle);

    void destroyShaderParameter(const ShaderParameterHandle& handle);

    QueryHandle createQuery(uint32_t type);
    void destroyQuery(const QueryHandle& handle);

protected:
    bool m_debug;
    CommandBuffer m_resourceCommands; // ahead of every frame; guarded by m_resourceMutex
    RingQueue<std::shared_ptr<Frame>> m_frameQueue;
    std::shared_ptr<Frame> m_frame; // the frame being recorded, never null
    std::mutex m_mutex;             // the frame lock: m_frameQueue, the swap of m_frame, and the running of commands

    RenderTargetHandle m_presentRenderTarget;
    RenderTargetHandle m_reversePresentRenderTarget;
    TextureHandle m_presentColorTexture;
    TextureHandle m_presentDepthTexture;
    TextureHandle m_reversePresentColorTexture; // nothing reads or sets it
    TextureHandle m_reversePresentDepthTexture; // likewise

    // Atomic because setSize() may run while the render thread reads them.
    std::atomic<uint32_t> m_width;
    std::atomic<uint32_t> m_height;

    // Each holds, under the invalid handle, what a handle without an entry answers.
    std::unordered_map<ShaderObjectHandle, std::string> m_shaderObjectLogs;
    std::unordered_map<ShaderProgramHandle, std::string> m_shaderProgramLogs;
    std::unordered_map<QueryHandle, uint64_t> m_queryResults; // guarded by m_queryMutex
    mutable std::mutex m_queryMutex;

    // The shared index buffer 0, 1, 2 and so on, through which ranges without indices are drawn.
    BufferHandle m_sequenceBuffer;
    IndexBufferHandle m_sequenceIndexBuffer;
    uint32_t m_sequenceCount; // indices it holds

    uint64_t m_frameNumber; // frames finished so far; counted by renderers that capture frames

private:
    class TakenResourceCommands;

    template <class Command, class... Arguments> void recordResource(Arguments&&... arguments);
    template <class Command, class... Arguments> void recordHead(Arguments&&... arguments);
    template <class Command, class... Arguments> void recordTail(Arguments&&... arguments);

    void runResourceCommands();

    // A leaf lock for appending to the resource list and for taking its content out. Without it a client that creates
    // a resource would race with a frame that runs, since the list is not part of the frame.
    std::mutex m_resourceMutex;
    CommandBuffer m_recordedResourceCommand; // the client's, empty between its calls; kept for its memory
    CommandBuffer m_takenResourceCommands;   // content of the resource list while it runs; kept for its memory
};

} // namespace renderengine
