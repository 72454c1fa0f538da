#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <kavelor/SbMatrix.h>
#include <kavelor/SbVec.h>

#include <renderengine/BlitProperties.h>
#include <renderengine/ClearTargetProperties.h>
#include <renderengine/ComputeProperties.h>
#include <renderengine/Export.h>
#include <renderengine/GfxStateProperties.h>
#include <renderengine/Handle.h>
#include <renderengine/RenderTargetProperties.h>
#include <renderengine/ShaderParameterArrayProperties.h>
#include <renderengine/ShaderParameterProperties.h>
#include <renderengine/ShaderStateCoreProperties.h>
#include <renderengine/ShaderStateProperties.h>
#include <renderengine/TaskProperties.h>
#include <renderengine/TextureImageProperties.h>
#include <renderengine/TextureProperties.h>
#include <renderengine/TextureUpdateBatchDataProperties.h>
#include <renderengine/TransformFeedbackProperties.h>

namespace renderengine
{

class CommandBuffer;

/// Records commands for later execution and keeps them, so that one recording can be submitted frame after frame.
///
/// Recording runs nothing and touches no device, so a cache can be filled on any thread. It has no lock: one thread at
/// a time may use it. Submitting shares the commands with the frame, so the cache may be cleared or refilled while a
/// frame that holds its commands still runs. A copy of a cache shares its lists: what is recorded on one shows on the
/// other. Records are copied into the commands, and so are pixels to be updated; invalid handles are recorded as they
/// are. A recording call that runs out of memory throws std::bad_alloc and leaves the cache as it was.
class RENDERENGINE_API RenderCache
{
public:
    /// Makes an empty cache.
    RenderCache();
    RenderCache(const RenderCache& other);
    RenderCache& operator=(const RenderCache& other);
    virtual ~RenderCache();

    /// @name Uniform values
    /// Gives a shader parameter a new value. The parameter keeps the type with which it was created.
    /// @{
    virtual void updateShaderParameter(const ShaderParameterHandle& parameter,
                                       const ShaderParameterArrayProperties<SbMatrix>& properties);
    virtual void updateShaderParameter(const ShaderParameterHandle& parameter,
                                       const ShaderParameterArrayProperties<SbVec4i32>& properties);
    virtual void updateShaderParameter(const ShaderParameterHandle& parameter,
                                       const ShaderParameterArrayProperties<SbVec3i32>& properties);
    virtual void updateShaderParameter(const ShaderParameterHandle& parameter,
                                       const ShaderParameterArrayProperties<SbVec2i32>& properties);
    virtual void updateShaderParameter(const ShaderParameterHandle& parameter,
                                       const ShaderParameterArrayProperties<int>& properties);
    virtual void updateShaderParameter(const ShaderParameterHandle& parameter,
                                       const ShaderParameterArrayProperties<SbVec4f>& properties);
    virtual void updateShaderParameter(const ShaderParameterHandle& parameter,
                                       const ShaderParameterArrayProperties<SbVec3f>& properties);
    virtual void updateShaderParameter(const ShaderParameterHandle& parameter,
                                       const ShaderParameterArrayProperties<SbVec2f>& properties);
    virtual void updateShaderParameter(const ShaderParameterHandle& parameter,
                                       const ShaderParameterArrayProperties<float>& properties);
    virtual void updateShaderParameter(const ShaderParameterHandle& parameter,
                                       const ShaderParameterProperties<SbMatrix3>& properties);
    virtual void updateShaderParameter(const ShaderParameterHandle& parameter,
                                       const ShaderParameterProperties<SbMatrix>& properties);
    virtual void updateShaderParameter(const ShaderParameterHandle& parameter,
                                       const ShaderParameterProperties<SbVec4i32>& properties);
    virtual void updateShaderParameter(const ShaderParameterHandle& parameter,
                                       const ShaderParameterProperties<SbVec3i32>& properties);
    virtual void updateShaderParameter(const ShaderParameterHandle& parameter,
                                       const ShaderParameterProperties<SbVec2i32>& properties);
    virtual void updateShaderParameter(const ShaderParameterHandle& parameter,
                                       const ShaderParameterProperties<int>& properties);
    virtual void updateShaderParameter(const ShaderParameterHandle& parameter,
                                       const ShaderParameterProperties<SbVec4f>& properties);
    virtual void updateShaderParameter(const ShaderParameterHandle& parameter,
                                       const ShaderParameterProperties<SbVec3f>& properties);
    virtual void updateShaderParameter(const ShaderParameterHandle& parameter,
                                       const ShaderParameterProperties<SbVec2f>& properties);
    virtual void updateShaderParameter(const ShaderParameterHandle& parameter,
                                       const ShaderParameterProperties<float>& properties);
    /// @}

    /// Gives a draw new state. The records are shared and must not be changed afterwards.
    virtual void updateDraw(const DrawHandle& draw, std::shared_ptr<const GfxStateProperties> gfxState,
                            std::shared_ptr<const ShaderStateCoreProperties> shaderState);

    /// Clears attachments of a render target.
    void clearRenderTarget(const RenderTargetHandle& renderTarget, const ClearTargetProperties& properties);

    /// Gives a render target new attachments.
    void updateRenderTarget(const RenderTargetHandle& renderTarget, const RenderTargetProperties& properties);

    /// Replaces the description and the pixels of a texture. The pixels are copied before the call returns; of a
    /// compressed texture only the first level.
    void updateTexture(const TextureHandle& texture, const TextureProperties& properties);

    /// Replaces boxes of pixels of a texture. The pixels of entries with bit 0 of their flags are copied before the
    /// call returns; those of the others must stay valid as long as the command can run.
    void updateTextureBatchData(const TextureHandle& texture, const TextureUpdateBatchDataProperties& properties);

    /// Computes the mipmap levels of a texture from its first (glGenerateMipmap).
    void generateMipmap(TextureHandle& texture);

    /// Reads the pixels of a texture into memory of the engine, from where the context's readbackTexture copies them.
    void readbackTexture(TextureHandle& texture);

    /// Gives an image-unit binding a new description.
    void updateTextureImage(const TextureImageHandle& textureImage, const TextureImageProperties& properties);

    /// Draws.
    void draw(const DrawHandle& draw);

    /// Dispatches compute work. The record is shared and must not be changed afterwards.
    void compute(const std::shared_ptr<const ShaderStateCoreProperties>& shaderState,
                 const ComputeProperties& properties);

    /// Runs a task as it stands.
    void task(const TaskProperties& properties);

    /// Applies the given state and then runs a task that draws. With `fixedFunctionState` the fixed-function records
    /// are applied too.
    void renderTask(const TaskProperties& properties, std::shared_ptr<const GfxStateProperties> gfxState,
                    const ShaderStateProperties& shaderState, bool fixedFunctionState);

    /// Orders memory accesses; the bits are GL's own (glMemoryBarrier), -1 stands for all.
    void memoryBarrier(int32_t barriers);

    /// Starts a query (glBeginQuery).
    void beginQuery(const QueryHandle& query);

    /// Ends a query (glEndQuery).
    void endQuery(const QueryHandle& query);

    /// Fetches the result of a query, which waits for the device; the context's getQueryResult then gives it.
    void askQueryResult(const QueryHandle& query);

    /// Starts to capture the outputs of the vertex-processing stages.
    void beginTransformFeedback(const TransformFeedbackProperties& properties,
                                const ShaderStateProperties& shaderState);

    /// Ends the capture.
    void endTransformFeedback();

    /// Opens a named group in the trace of a graphics debugger. Records nothing unless the setting KVR_DEBUG_GROUP was
    /// true when this operation was first called in the process.
    void pushDebugMarker(const std::string& text);

    /// Closes the group. Records nothing unless the setting KVR_DEBUG_GROUP was true when this operation was first
    /// called in the process.
    void popDebugMarker();

    /// Copies a rectangle of pixels between two render targets.
    void blit(const RenderTargetHandle& source, const RenderTargetHandle& destination,
              const BlitProperties& properties);

    /// The list that receives commands now.
    std::shared_ptr<CommandBuffer> getCommandBuffer() const;

    /// The number of commands in that list.
    uint64_t getCommandBufferSize() const;

    /// Starts recording into `count` lists of their own, the first of them at first. Lists of an earlier call are
    /// dropped with what they hold. With a count of 0 recording goes on as before.
    void beginBufferList(unsigned count);

    /// Chooses the list that receives commands. The index must be below the count given to beginBufferList; it is not
    /// checked.
    void setBufferListIndex(unsigned index);

    /// Appends the lists to the main one, in the order of their indices, and goes back to recording into the main one.
    void endBufferList();

    /// Appends commands of the list that `source` records into, from index `range[0]` up to but not including
    /// `range[1]`. The commands are shared. The range must lie inside that list; it is not checked.
    void copy(RenderCache& source, const SbVec2i32& range);

    /// Empties the list that receives commands now, and no other.
    void reset();

private:
    CommandBuffer& currentBuffer() const;

    std::shared_ptr<CommandBuffer> m_commandBuffer;
    uint32_t m_bufferListIndex = 0;
    std::vector<std::shared_ptr<CommandBuffer>> m_bufferList;
};

} // namespace renderengine
