#pragma once

#include "commands/CommandList.h"
#include "gl/Batch.h"
#include "gl/DrawGL.h"
#include "gl/FenceGL.h"
#include "gl/ResourceTablesGL.h"
#include "renderer/RendererBase.h"

#include <renderengine/FramebufferParameterGLEventArg.h>
#include <renderengine/GfxStateProperties.h>
#include <renderengine/Handle.h>
#include <renderengine/PresentFrameGL_GL.h>
#include <renderengine/ReversePresentFrameGL_GL.h>
#include <renderengine/ShaderStateCoreProperties.h>

#include <glbinding/gl.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace renderengine
{

/// The renderer for OpenGL 4.1 and above.
///
/// It needs no context to be constructed, only settings and tables. Everything else runs on the thread that has the
/// context current, except the handle generators, and the three look-ups that a client may make after a blocking
/// operation: `readbackTexture`, `getMappedBufferPointer` and `updatePresentEventArg`.
///
/// An invalid handle is never fatal: the command reports one line, or nothing, and is skipped. GL errors are not
/// tested; they surface through the debug output.
class RendererGL41 : public RendererBase
{
public:
    explicit RendererGL41(bool debug);
    ~RendererGL41() override;

    RendererGL41(const RendererGL41&) = delete;
    RendererGL41& operator=(const RendererGL41&) = delete;

    // Present

    bool canPresent() override { return true; }
    PresentFrame* getPresentFrame() override { return m_presentFrame.get(); }
    ReversePresentFrame* getReversePresentFrame() override { return m_reversePresentFrame.get(); }

    // Commands

    using RendererBase::execute;

    void execute(CommandBlit& command) override;
    void execute(CommandPopDebugMarker& command) override;
    void execute(CommandPushDebugMarker& command) override;
    void execute(CommandDestroyQuery& command) override;
    void execute(CommandGetQueryResult& command) override;
    void execute(CommandEndQuery& command) override;
    void execute(CommandBeginQuery& command) override;
    void execute(CommandCreateQuery& command) override;
    void execute(CommandEndTransformFeedback& command) override;
    void execute(CommandBeginTransformFeedback& command) override;
    void execute(CommandTask& command) override;
    void execute(CommandRenderTask& command) override;
    void execute(CommandCompute& command) override;
    void execute(CommandRender& command) override;

    void execute(CommandDestroyShaderParameter& command) override;
#define SHADER_PARAMETER_OVERLOADS(RECORD)                                \
    void execute(CommandUpdateShaderParameter<RECORD>& command) override; \
    void execute(CommandCreateShaderParameter<RECORD>& command) override;
    RENDERENGINE_SHADER_PARAMETERS(SHADER_PARAMETER_OVERLOADS)
#undef SHADER_PARAMETER_OVERLOADS

    void execute(CommandDestroyShaderProgram& command) override;
    void execute(CommandCreateShaderProgram& command) override;
    void execute(CommandDestroyShaderObject& command) override;
    void execute(CommandCreateShaderObject& command) override;
    void execute(CommandMemoryBarrier& command) override;
    void execute(CommandDestroyViewport& command) override;
    void execute(CommandUpdateViewport& command) override;
    void execute(CommandCreateViewport& command) override;
    void execute(CommandDestroyRenderTarget& command) override;
    void execute(CommandUpdateRenderTarget& command) override;
    void execute(CommandCreateRenderTarget& command) override;
    void execute(CommandGenerateMipmap& command) override;
    void execute(CommandDestroyTexture& command) override;
    void execute(CommandUpdateTextureBatchData& command) override;
    void execute(CommandReadbackTexture& command) override;
    void execute(CommandUpdateTexture& command) override;
    void execute(CommandResizeTexture& command) override;
    void execute(CommandCreateTexture& command) override;
    void execute(CommandDestroySampler& command) override;
    void execute(CommandUpdateSampler& command) override;
    void execute(CommandCreateSampler& command) override;
    void execute(CommandDestroyTextureImage& command) override;
    void execute(CommandUpdateTextureImage& command) override;
    void execute(CommandCreateTextureImage& command) override;
    void execute(CommandDestroyShaderBuffer& command) override;
    void execute(CommandUpdateShaderBuffer& command) override;
    void execute(CommandCreateShaderBuffer& command) override;
    void execute(CommandDestroyIndexBuffer& command) override;
    void execute(CommandUpdateIndexBuffer& command) override;
    void execute(CommandCreateIndexBuffer& command) override;
    void execute(CommandDestroyVertexBuffer& command) override;
    void execute(CommandUpdateVertexBuffer& command) override;
    void execute(CommandCreateVertexBuffer& command) override;
    void execute(CommandDestroyBuffer& command) override;
    void execute(CommandCopyBuffer& command) override;
    void execute(CommandUnmapBuffer& command) override;
    void execute(CommandMapBuffer& command) override;
    void execute(CommandUpdateBuffer& command) override;
    void execute(CommandResizeBuffer& command) override;
    void execute(CommandCreateBuffer& command) override;
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

    // Frame

    /// Runs one frame: `begin`, the queued resource commands, the oldest queued frame if there is one, and then
    /// `finish`.
    void execute() override;

    /// The memory of a mapping, null when the buffer does not exist or is not mapped.
    void* getMappedBufferPointer(const BufferHandle& handle) override;

    void begin() override;
    void finish() override;

    /// Installs the debug callback when the renderer was made for debugging.
    void init() override;

    /// Frees the GL objects. The context must be current.
    void destroy() override;

    void executeResourceCommands() override;

    /// Copies at most `size` bytes of what the last read-back of the texture stored.
    void readbackTexture(const TextureHandle& handle, void* destination, size_t size) override;

    /// Fences the caller's present, so that the next frame waits for it. Skipped without a current context.
    void presentFrameSync() override;

    /// Waits, on the GPU, for the last finished frame. Skipped without a current context.
    void finishFrame() override;

    /// The names of the present textures and the size of the output. Owned by the renderer.
    const FramebufferParameterEventArg* updatePresentEventArg() override;

    /// Hands the present target's pixels to the test harness when it asked for this frame.
    void captureFrame(size_t frame) override;

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

protected:
    // What RendererGL46 does differently

    /// Puts program, patch vertices and clip planes into effect, as far as they differ from the current ones. The flag
    /// is false only for render tasks of the fixed-function path and has no effect here.
    virtual void setupShaderState(const ShaderStateCoreProperties& shaderState, bool programmable);

    /// Binds the shader buffers of the batch's first member and returns the next free binding point.
    virtual GLuint bindDrawShaderBuffers(const Batch& batch, const ShaderProgramGL& program, GLuint firstBinding);

    /// Gathers the shader buffers of the batch's members. Nothing to do here.
    virtual void mergeShaderBuffers(Batch& batch, bool needRebuild);

    /// Numbers the distinct shader buffers of the draw. Nothing to do here.
    virtual void prepareMergeMaps(DrawGL& draw);

    /// Replaces the draw's batches by one that holds all of its members.
    virtual void buildBatches(DrawGL& draw);

    // Shared with RendererGL46

    /// The resource of a handle, null when the handle is invalid or its slot empty. Never grows the table.
    template <class Handle, class Resource>
    static Resource* find(const ResourceTable<Handle, Resource>& table, const Handle& handle);

    /// Puts a new resource into the slot of a valid handle.
    template <class Handle, class Resource, class... Arguments>
    static Resource& createResource(ResourceTable<Handle, Resource>& table, const Handle& handle,
                                    Arguments&&... arguments);

    /// Destroys the resource if there is one, takes its number back and makes the handle invalid.
    template <class Handle, class Resource>
    static void releaseResource(ResourceTable<Handle, Resource>& table, Handle& handle);

    /// Merging visits more objects than the processor's caches hold, so it asks for those of the members ahead: first
    /// for the view, and for its buffer once the view is there.
    static constexpr size_t prefetchedViews = 12;
    static constexpr size_t prefetchedBuffers = 6;
    template <class Handle, class View>
    static void prefetchView(const ResourceTable<Handle, View>& table, const Handle& handle);
    template <class Handle, class View>
    static void prefetchBuffer(const ResourceTable<Handle, View>& table, const Handle& handle);

    /// True when the next shader state must be sent whatever the current one is.
    bool isShaderStateUnknown(const ShaderStateCoreProperties& shaderState) const;

    /// Binds a buffer to a binding point and connects its block in the program.
    static void bindShaderBuffer(const ShaderBufferGL& buffer, const ShaderProgramGL& program, GLuint binding);

    /// Tears the draw's merged batches down and empties the list.
    void releaseBatches(DrawGL& draw);

    /// Appends a batch that holds all members of the draw.
    static void appendWholeDraw(DrawGL& draw);

    /// The records of the batch's members, without those that are gone.
    std::vector<const DrawProperties*> getMembers(const Batch& batch) const;

    /// Makes a buffer that the batch owns.
    BufferHandle createInternalBuffer(Batch& batch, uint8_t kind, uint64_t size, const void* data);

    ResourceTablesGL m_tables;

    // Cached state: valid while m_stateUnknown is false.
    bool m_differentialState;
    bool m_stateUnknown = true;
    bool m_primitiveRestartEnabled = false;
    std::optional<RenderTargetHandle> m_currentRenderTarget; // empty: not known, which differs from every handle
    std::optional<ViewportHandle> m_currentViewport;         // likewise
    GfxStateProperties m_currentGfxState;
    ShaderStateCoreProperties m_currentShaderState;

private:
    friend struct RendererGL41TestAccess;

    // State
    void bindRenderTarget(const RenderTargetHandle& handle);
    void applyViewport(const ViewportHandle& handle);
    void setupTextures(const TextureUnitProperties& block);
    void setupTexturesDifferential(const TextureUnitProperties& block);
    void unbindTextures(const TextureUnitProperties& block);
    void bindTextureUnit(GLuint unit, const TextureUnitProperties& block);
    void unbindTextureUnit(GLuint unit, const TextureUnitProperties& block);
    static void makeRoomForTexture(GLuint unit, const TextureGL* previous, const TextureGL* next);
    void forgetTextures();
    GLuint bindShaderStateBuffers(const ShaderStateCoreProperties& shaderState, const ShaderProgramGL& program);
    void bindShaderBuffersByPosition(const ShaderStateCoreProperties& shaderState, const ShaderProgramGL& program);
    void applyShaderParameters(const ShaderStateCoreProperties& shaderState, const ShaderProgramGL& program);
    void setPrimitiveRestart(bool enable, uint32_t value);
    void copyViewportScale(const ViewportHandle& handle, float& sizeScale) const;

    // Draw
    void applyDrawStateInFull(const DrawGL& draw);
    void applyDrawStateDifferences(const DrawGL& draw);
    bool updateBatches(const DrawHandle& handle, DrawGL& draw);
    void drawBatches(const DrawGL& draw, const ShaderProgramGL& program, GLuint firstBinding);
    void drawMerged(const Batch& batch);
    void drawPlain(DrawGL& draw, const ShaderProgramGL& program, GLuint firstBinding);
    void gatherPlainDraw(PlainDraw& plainDraw, const Batch& batch, const ShaderProgramGL& program) const;
    void drawRange(const PlainDraw::Range& range, const std::vector<VertexAttribute>& attributes);
    void applyOverallAttributes(const Batch& batch, const ShaderProgramGL& program);

    // Clear
    struct ClearMasks;
    ClearMasks getCachedClearMasks() const;
    ClearMasks queryClearMasks() const;
    void clearColors(const ClearTargetProperties& properties, const RenderTargetGL& target, const ClearMasks& masks);
    void sendColorMask(GLuint buffer, const ClearTargetProperties& properties);
    void clearDepthAndStencil(const ClearTargetProperties& properties, const RenderTargetGL& target);

    // Merging
    static constexpr size_t primitiveTypeCount = 11;
    struct PrimitiveUse;
    bool isBatchListValid(const DrawGL& draw) const;
    bool canMerge(const DrawGL& draw) const;
    const char* findReasonAgainstMerging(const DrawGL& draw) const;
    void explainMerging(const DrawHandle& handle, const DrawGL& draw, bool mergeable) const;
    void releaseBatch(Batch& batch);
    void buildPlainBatch(DrawGL& draw);
    void holdFirstMember(Batch& batch) const;
    void buildMergedBatch(Batch& batch);
    uint64_t getElementCount(const VertexBufferHandle& handle) const;
    uint64_t getLargestElementCount(const DrawProperties& properties) const;

    void prefetchMembers(const std::vector<const DrawProperties*>& members, size_t current) const;
    bool mergeVertexBuffers(Batch& batch);
    void dependOnVertexBuffers(Batch& batch, const std::vector<const DrawProperties*>& members);
    void mergeVertexBuffer(Batch& batch, const std::vector<const DrawProperties*>& members, size_t position,
                           const std::vector<uint64_t>& offsetElements, uint64_t elementCount);
    void appendDrawIndices(Batch& batch, const std::vector<uint64_t>& offsetElements, uint64_t elementCount);
    VertexBufferGL& appendVertexBuffer(Batch& batch, const VertexBufferProperties& properties);
    void mergeOverallAttributes(Batch& batch);
    void mergeOverallAttribute(Batch& batch, const std::vector<const DrawProperties*>& members, size_t position,
                               uint64_t elementCount);

    void mergeIndexBuffers(Batch& batch);
    std::array<PrimitiveUse, primitiveTypeCount>
    gatherPrimitiveUses(const Batch& batch, const std::vector<const DrawProperties*>& members) const;
    bool isDrawable(const DrawRange& range) const;
    void appendDrawOfOwnIndices(Batch& batch, const std::vector<const DrawProperties*>& members,
                                const PrimitiveUse& use);
    void appendDrawOfMergedIndices(Batch& batch, const std::vector<const DrawProperties*>& members,
                                   const PrimitiveUse& use);
    void copyIndices(const DrawProperties& member, const PrimitiveUse& use, IndexBufferGL& merged, MergedDraw& draw,
                     uint64_t& writeOffset, uint64_t vertexOffset);
    IndexBufferHandle getSequenceIndexBuffer(uint32_t elementCount);
    bool fillSequence(BufferGL& buffer);

    // Resources
    template <class Handle, class Resource> static Handle createHandle(ResourceTable<Handle, Resource>& table);
    template <class Handle, class Resource>
    static Resource* findOrReport(const ResourceTable<Handle, Resource>& table, const Handle& handle,
                                  const char* message);
    template <class Handle, class Resource>
    static void destroyResource(ResourceTable<Handle, Resource>& table, Handle& handle, const char* message);
    template <class Table, class Command> void createView(Table& table, const Command& command);
    template <class Table, class Command> void updateView(Table& table, const Command& command);
    template <class Record> void createShaderParameterResource(CommandCreateShaderParameter<Record>& command);
    template <class Record> void updateShaderParameterResource(CommandUpdateShaderParameter<Record>& command);
    void invalidateBatches(const DrawPropertiesGL& drawProperties);
    void unlistDraw(const DrawPropertiesHandle& properties, const DrawHandle& draw);
    void forgetViewport(const ViewportHandle& handle);
    void forgetDirtyRenderTarget();
    void finishRenderTask(const TextureUnitProperties& textures);

    // Debug
    void drainDebugLog() const;

    std::unique_ptr<FramebufferParameterGLEventArg> m_framebufferEventArg;
    std::unique_ptr<PresentFrameGL_GL> m_presentFrame;
    std::unique_ptr<ReversePresentFrameGL_GL> m_reversePresentFrame;
    GfxStateSharing m_gfxStateSharing;
    bool m_explainMerging;
    bool m_useFence;
    FenceGL m_frameFence;
    FenceGL m_presentFence;
    GLuint m_vao = 0; ///< bound from the first frame to the end
    uint32_t m_maxShaderCompilerThreads;

    /// Attribute locations of the batch being drawn, kept so that a draw allocates nothing.
    std::vector<GLint> m_attributeLocations;
};

} // namespace renderengine
