#pragma once

#include <renderengine/BufferProperties.h>
#include <renderengine/DrawProperties.h>
#include <renderengine/Export.h>
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
#include <renderengine/ShaderStateProperties.h>
#include <renderengine/TaskProperties.h>
#include <renderengine/TextureImageProperties.h>
#include <renderengine/TextureProperties.h>
#include <renderengine/TextureUpdateBatchDataProperties.h>
#include <renderengine/VertexBufferProperties.h>
#include <renderengine/ViewportProperties.h>

#include <kavelor/SbMatrix.h>
#include <kavelor/SbVec.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace renderengine
{

class FramebufferParameterEventArg;
class PresentFrame;
class RenderCache;
class ReversePresentFrame;
struct ContextInfo;

/// The client's door to a renderer: creates, updates and destroys resources, takes recorded work and runs frames.
///
/// Resource operations only record. A create gives its handle at once; the object behind it is made when the recorded
/// command runs. Three lists decide when that is:
/// - the resource list runs ahead of every frame, and whenever an operation that must have its result flushes it;
/// - the head list of the current frame runs ahead of the cache that is submitted next, or first of all in the frame
///   when none follows;
/// - the tail list of the current frame runs behind everything else in it, so that what is destroyed while a frame is
///   recorded lives to the end of that frame.
///
/// Threads: one client thread at a time uses a context; no operation locks against another client thread. With a
/// render thread, recorded work runs there, and operations that wait say so. Records are copied by the call. Handles
/// own nothing: what was created is kept until it is destroyed or the context is deleted.
///
/// All operations but isValid(), init() and getContextInfo() need init() to have succeeded. Debug builds assert it
/// where an operation reaches the renderer from the client's thread.
class RENDERENGINE_API ContextInterface
{
public:
    /// Makes a context for the settings in force: KVR_RENDERENGINE_MULTITHREAD asks for a render thread,
    /// KVR_OPENGL_DEBUG for a debug device context, KVR_RENDERENGINE_RENDERER names the renderer. No device is touched
    /// before init(). The caller owns the result and deletes it on the thread that called init().
    static ContextInterface* createInstance();

    /// Runs what was asked for and stops the render thread, which frees the device objects. Without a render thread
    /// those live as long as the device contexts that share them.
    virtual ~ContextInterface() = default;

    /// Whether the renderer can put a frame on a framebuffer at all.
    virtual bool canPresent() = 0;

    /// The present step of the renderer, which keeps owning it; null when there is none.
    virtual PresentFrame* getPresentFrame() = 0;

    /// Presents the last frame on the framebuffer that is bound, on the calling thread, with the caller's own sharing
    /// context current. Returns false, and does nothing, when the renderer cannot present.
    virtual bool present() = 0;

    /// The step that reads a framebuffer back into the engine's textures, owned by the renderer; null when there is
    /// none.
    virtual ReversePresentFrame* getReversePresentFrame() = 0;

    /// Whether the device context exists.
    virtual bool isValid() = 0;

    /// Makes the device context and the renderer, and starts the render thread when one was asked for. To be called
    /// once, before any other operation but getContextInfo(). Throws std::runtime_error when no device context can be
    /// made. Leaves current on the calling thread what was current before.
    virtual void init() = 0;

    /// The facts about the device.
    virtual const ContextInfo& getContextInfo() = 0;

    /// Queues the commands of \p cache on the current frame, behind those of earlier submissions. Nothing runs yet.
    /// The cache keeps its commands and may be submitted again.
    virtual void submit(const std::shared_ptr<RenderCache>& cache) = 0;

    /// Ends the current frame and runs it, on the render thread or, without one, here. With \p wait the frame has run
    /// when this returns; otherwise it may still be running, and the next call that ends a frame waits for it. A
    /// std::runtime_error of a frame that runs here is logged, not passed on; any other exception is passed on.
    virtual void execute(bool wait) = 0;

    /// Ends the current frame and throws it away: nothing that was recorded in it runs, destroys included, whose
    /// objects stay alive. Only to be called while no earlier frame is waiting to run.
    virtual void discardFrame() = 0;

    /// Marks the end of a present step on the calling thread; the next frame waits for that step.
    virtual void presentFrameSync() = 0;

    /// Runs the resource list now and returns when it has run.
    virtual void executeResourceCommands() = 0;

    /// Draws. The two states are shared, not copied. Create and update go to the head list, destroy to the tail list.
    virtual DrawHandle createDraw(std::shared_ptr<const GfxStateProperties> gfxState,
                                  std::shared_ptr<const ShaderStateCoreProperties> shaderState) = 0;
    virtual void updateDraw(const DrawHandle& handle, std::shared_ptr<const GfxStateProperties> gfxState,
                            std::shared_ptr<const ShaderStateCoreProperties> shaderState) = 0;

    /// Applies the given state and runs a task at once, on the calling thread, without a lock and without touching
    /// which device context is current: in practice, from inside another task. With \p fixedFunctionState the
    /// fixed-function part of \p shaderState is applied too.
    virtual void renderTask(const TaskProperties& task, std::shared_ptr<const GfxStateProperties> gfxState,
                            const ShaderStateProperties& shaderState, bool fixedFunctionState) = 0;
    virtual void destroyDraw(const DrawHandle& handle) = 0;

    /// Geometry of draws: create, update and the three operations that link it to a draw go to the head list, destroy
    /// to the tail list.
    virtual DrawPropertiesHandle createDrawProperties(const DrawProperties& properties) = 0;
    virtual void updateDrawProperties(const DrawPropertiesHandle& handle, const DrawProperties& properties) = 0;
    virtual void destroyDrawProperties(const DrawPropertiesHandle& handle) = 0;
    virtual void addDrawProperties(const DrawHandle& draw, const DrawPropertiesHandle& properties) = 0;
    virtual void removeDrawProperties(const DrawHandle& draw, const DrawPropertiesHandle& properties) = 0;
    virtual void removeAllDrawProperties(const DrawHandle& draw) = 0;

    /// Buffers: create goes to the resource list, update to the head list, destroy to the tail list. The data of a
    /// create or update are copied by the call. Resize, map, unmap and copy flush the resource list: they have been
    /// carried out when they return. Sizes and offsets are in bytes.
    virtual BufferHandle createBuffer(const BufferProperties& properties) = 0;
    virtual void destroyBuffer(const BufferHandle& handle) = 0;
    virtual void resizeBuffer(const BufferHandle& handle, uint64_t size) = 0;
    virtual void updateBuffer(const BufferHandle& handle, const BufferProperties& properties) = 0;

    /// Maps a range of a buffer. \p access is 0 to read, 1 to write, 2 for both. The pointer serves any thread until
    /// the buffer is unmapped, updated, resized or destroyed; null when the buffer could not be mapped.
    virtual void* mapBuffer(const BufferHandle& handle, uint64_t offset, uint64_t length, uint32_t access) = 0;
    virtual void unmapBuffer(const BufferHandle& handle) = 0;
    virtual void copyBuffer(const BufferHandle& source, const BufferHandle& destination, uint64_t sourceOffset,
                            uint64_t destinationOffset, uint64_t length) = 0;

    /// Records a task of the client in the head list, or in the tail list. It runs on the thread that runs the frame,
    /// with the device context current. The task is shared until the frame has run.
    virtual void addTask(const TaskProperties& task) = 0;
    virtual void addEndTask(const TaskProperties& task) = 0;

    /// Views of buffers and texture images: create goes to the resource list, update to the head list, destroy to the
    /// tail list.
    virtual VertexBufferHandle createVertexBuffer(const VertexBufferProperties& properties) = 0;
    virtual void updateVertexBuffer(const VertexBufferHandle& handle, const VertexBufferProperties& properties) = 0;
    virtual void destroyVertexBuffer(const VertexBufferHandle& handle) = 0;
    virtual IndexBufferHandle createIndexBuffer(const IndexBufferProperties& properties) = 0;
    virtual void updateIndexBuffer(const IndexBufferHandle& handle, const IndexBufferProperties& properties) = 0;
    virtual void destroyIndexBuffer(const IndexBufferHandle& handle) = 0;
    virtual ShaderBufferHandle createShaderBuffer(const ShaderBufferProperties& properties) = 0;
    virtual void updateShaderBuffer(const ShaderBufferHandle& handle, const ShaderBufferProperties& properties) = 0;
    virtual void destroyShaderBuffer(const ShaderBufferHandle& handle) = 0;
    virtual TextureImageHandle createTextureImage(const TextureImageProperties& properties) = 0;
    virtual void updateTextureImage(const TextureImageHandle& handle, const TextureImageProperties& properties) = 0;
    virtual void destroyTextureImage(const TextureImageHandle& handle) = 0;

    /// Samplers: create and update go to the head list, destroy to the tail list.
    virtual SamplerHandle createSampler(const SamplerProperties& properties) = 0;
    virtual void updateSampler(const SamplerHandle& handle, const SamplerProperties& properties) = 0;
    virtual void destroySampler(const SamplerHandle& handle) = 0;

    /// Textures: create goes to the resource list and keeps the client's pixel pointers until it has run; the updates
    /// copy the pixels and go to the head list, as resize does; destroy goes to the tail list.
    virtual TextureHandle createTexture(const TextureProperties& properties) = 0;
    virtual void updateTexture(const TextureHandle& handle, const TextureProperties& properties) = 0;
    virtual void resizeTexture(const TextureHandle& handle, uint32_t width, uint32_t height, uint32_t depth) = 0;
    virtual void updateTextureBatchData(const TextureHandle& handle,
                                        const TextureUpdateBatchDataProperties& properties) = 0;

    /// Copies up to \p size bytes of what the last read-back command of the texture fetched. To be called after an
    /// operation that waited for the frame of that command.
    virtual void readbackTexture(const TextureHandle& handle, void* destination, size_t size) = 0;
    virtual void destroyTexture(const TextureHandle& handle) = 0;

    /// Render targets and viewports: create and update go to the head list, destroy to the tail list.
    virtual RenderTargetHandle createRenderTarget(const RenderTargetProperties& properties) = 0;
    virtual void destroyRenderTarget(const RenderTargetHandle& handle) = 0;
    virtual void updateRenderTarget(const RenderTargetHandle& handle, const RenderTargetProperties& properties) = 0;
    virtual ViewportHandle createViewport(const ViewportProperties& properties) = 0;
    virtual void destroyViewport(const ViewportHandle& handle) = 0;
    virtual void updateViewport(const ViewportHandle& handle, const ViewportProperties& properties) = 0;

    /// Compiles a shader stage. Flushes the resource list: the stage has been compiled when this returns, and its log
    /// can be read. Destroy goes to the tail list.
    virtual ShaderObjectHandle createShaderObject(const ShaderObjectProperties& properties) = 0;
    virtual const std::string& getShaderObjectLog(const ShaderObjectHandle& handle) = 0;
    virtual void destroyShaderObject(const ShaderObjectHandle& handle) = 0;

    /// Links a program. Flushes the resource list: the program has been linked when this returns, and its log can be
    /// read. The log of a handle that has none is empty. Destroy goes to the tail list.
    virtual ShaderProgramHandle createShaderProgram(const ShaderProgramProperties& properties) = 0;
    virtual const std::string& getShaderProgramLog(const ShaderProgramHandle& handle) = 0;
    virtual void destroyShaderProgram(const ShaderProgramHandle& handle) = 0;

    /// Shader parameters, one pair of overloads a record: create and update go to the head list, destroy to the tail
    /// list.
    virtual ShaderParameterHandle createShaderParameter(const ShaderParameterArrayProperties<SbMatrix>& properties) = 0;
    virtual ShaderParameterHandle
    createShaderParameter(const ShaderParameterArrayProperties<SbVec4i32>& properties) = 0;
    virtual ShaderParameterHandle
    createShaderParameter(const ShaderParameterArrayProperties<SbVec3i32>& properties) = 0;
    virtual ShaderParameterHandle
    createShaderParameter(const ShaderParameterArrayProperties<SbVec2i32>& properties) = 0;
    virtual ShaderParameterHandle createShaderParameter(const ShaderParameterArrayProperties<int>& properties) = 0;
    virtual ShaderParameterHandle createShaderParameter(const ShaderParameterArrayProperties<SbVec4f>& properties) = 0;
    virtual ShaderParameterHandle createShaderParameter(const ShaderParameterArrayProperties<SbVec3f>& properties) = 0;
    virtual ShaderParameterHandle createShaderParameter(const ShaderParameterArrayProperties<SbVec2f>& properties) = 0;
    virtual ShaderParameterHandle createShaderParameter(const ShaderParameterArrayProperties<float>& properties) = 0;
    virtual ShaderParameterHandle createShaderParameter(const ShaderParameterProperties<SbMatrix3>& properties) = 0;
    virtual ShaderParameterHandle createShaderParameter(const ShaderParameterProperties<SbMatrix>& properties) = 0;
    virtual ShaderParameterHandle createShaderParameter(const ShaderParameterProperties<SbVec4i32>& properties) = 0;
    virtual ShaderParameterHandle createShaderParameter(const ShaderParameterProperties<SbVec3i32>& properties) = 0;
    virtual ShaderParameterHandle createShaderParameter(const ShaderParameterProperties<SbVec2i32>& properties) = 0;
    virtual ShaderParameterHandle createShaderParameter(const ShaderParameterProperties<int>& properties) = 0;
    virtual ShaderParameterHandle createShaderParameter(const ShaderParameterProperties<SbVec4f>& properties) = 0;
    virtual ShaderParameterHandle createShaderParameter(const ShaderParameterProperties<SbVec3f>& properties) = 0;
    virtual ShaderParameterHandle createShaderParameter(const ShaderParameterProperties<SbVec2f>& properties) = 0;
    virtual ShaderParameterHandle createShaderParameter(const ShaderParameterProperties<float>& properties) = 0;
    virtual void updateShaderParameter(const ShaderParameterHandle& handle,
                                       const ShaderParameterArrayProperties<SbMatrix>& properties) = 0;
    virtual void updateShaderParameter(const ShaderParameterHandle& handle,
                                       const ShaderParameterArrayProperties<SbVec4i32>& properties) = 0;
    virtual void updateShaderParameter(const ShaderParameterHandle& handle,
                                       const ShaderParameterArrayProperties<SbVec3i32>& properties) = 0;
    virtual void updateShaderParameter(const ShaderParameterHandle& handle,
                                       const ShaderParameterArrayProperties<SbVec2i32>& properties) = 0;
    virtual void updateShaderParameter(const ShaderParameterHandle& handle,
                                       const ShaderParameterArrayProperties<int>& properties) = 0;
    virtual void updateShaderParameter(const ShaderParameterHandle& handle,
                                       const ShaderParameterArrayProperties<SbVec4f>& properties) = 0;
    virtual void updateShaderParameter(const ShaderParameterHandle& handle,
                                       const ShaderParameterArrayProperties<SbVec3f>& properties) = 0;
    virtual void updateShaderParameter(const ShaderParameterHandle& handle,
                                       const ShaderParameterArrayProperties<SbVec2f>& properties) = 0;
    virtual void updateShaderParameter(const ShaderParameterHandle& handle,
                                       const ShaderParameterArrayProperties<float>& properties) = 0;
    virtual void updateShaderParameter(const ShaderParameterHandle& handle,
                                       const ShaderParameterProperties<SbMatrix3>& properties) = 0;
    virtual void updateShaderParameter(const ShaderParameterHandle& handle,
                                       const ShaderParameterProperties<SbMatrix>& properties) = 0;
    virtual void updateShaderParameter(const ShaderParameterHandle& handle,
                                       const ShaderParameterProperties<SbVec4i32>& properties) = 0;
    virtual void updateShaderParameter(const ShaderParameterHandle& handle,
                                       const ShaderParameterProperties<SbVec3i32>& properties) = 0;
    virtual void updateShaderParameter(const ShaderParameterHandle& handle,
                                       const ShaderParameterProperties<SbVec2i32>& properties) = 0;
    virtual void updateShaderParameter(const ShaderParameterHandle& handle,
                                       const ShaderParameterProperties<int>& properties) = 0;
    virtual void updateShaderParameter(const ShaderParameterHandle& handle,
                                       const ShaderParameterProperties<SbVec4f>& properties) = 0;
    virtual void updateShaderParameter(const ShaderParameterHandle& handle,
                                       const ShaderParameterProperties<SbVec3f>& properties) = 0;
    virtual void updateShaderParameter(const ShaderParameterHandle& handle,
                                       const ShaderParameterProperties<SbVec2f>& properties) = 0;
    virtual void updateShaderParameter(const ShaderParameterHandle& handle,
                                       const ShaderParameterProperties<float>& properties) = 0;
    virtual void destroyShaderParameter(const ShaderParameterHandle& handle) = 0;

    /// Queries. \p type is 0 for samples passed, 1 any samples passed, 2 the same conservatively, 3 primitives
    /// generated, 4 transform feedback primitives written, 5 time elapsed, 6 timestamp. Create goes to the head list,
    /// destroy to the tail list. A result is 0 before a result command of that query has run, and may be asked for
    /// at any time.
    virtual QueryHandle createQuery(uint32_t type) = 0;
    virtual uint64_t getQueryResult(const QueryHandle& handle) = 0;
    virtual void destroyQuery(const QueryHandle& handle) = 0;

    /// Sets the size of the presented frame in pixels.
    virtual void setSize(uint32_t width, uint32_t height) = 0;

    /// The targets and textures that the present steps use. Invalid at first.
    virtual RenderTargetHandle getPresentRenderTarget() = 0;
    virtual RenderTargetHandle getReversePresentRenderTarget() = 0;
    virtual void setPresentRenderTarget(const RenderTargetHandle& handle) = 0;
    virtual void setReversePresentRenderTarget(const RenderTargetHandle& handle) = 0;
    virtual TextureHandle getPresentColorTexture() = 0;
    virtual void setPresentColorTexture(const TextureHandle& handle) = 0;
    virtual TextureHandle getPresentDepthTexture() = 0;
    virtual void setPresentDepthTexture(const TextureHandle& handle) = 0;

    /// Submits a cache and, with \p execute, ends the frame, runs it and returns when it has run. Exceptions of a
    /// frame that runs on the calling thread are passed on.
    virtual void flush(const std::shared_ptr<RenderCache>& cache, bool execute) = 0;

    /// Brings the argument of the present steps up to date and returns it. It belongs to the renderer; null when the
    /// renderer cannot present.
    virtual const FramebufferParameterEventArg* updatePresentEventArg() = 0;
};

} // namespace renderengine
