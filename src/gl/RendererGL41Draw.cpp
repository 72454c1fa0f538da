// Draws: state as far as it differs from the draw before, buffers and parameters, then the draw calls of each batch.

#include "gl/RendererGL41.h"

#include "gl/CachePrefetch.h"
#include "gl/DebugGroup.h"
#include "gl/DrawTablesGL.h"
#include "gl/RendererGL41Find.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace renderengine
{

namespace
{

const void* byteOffset(uint64_t offset)
{
    return reinterpret_cast<const void*>(static_cast<uintptr_t>(offset));
}

/// Takes addresses as long as there is room.
class HintList
{
public:
    explicit HintList(DrawGL& draw) : m_draw(draw) { m_draw.cacheHintCount = 0; }

    /// The bytes from `begin` to `end` of what lies at the address.
    void add(const void* address, size_t begin, size_t end)
    {
        for (size_t offset = begin; offset < end && m_draw.cacheHintCount < m_draw.cacheHints.size();
             offset += cacheLineSize)
        {
            m_draw.cacheHints[m_draw.cacheHintCount] = static_cast<const std::byte*>(address) + offset;
            ++m_draw.cacheHintCount;
        }
    }
    template <class Value> void add(const std::vector<Value>& values)
    {
        add(values.data(), 0, values.size() * sizeof(Value));
    }

private:
    DrawGL& m_draw;
};

bool hasBaseInstance()
{
    const GLEWContextStruct& table = *glbinding::t_table;
    return table.majorVersion > 4 || (table.majorVersion == 4 && table.minorVersion >= 2) ||
           table.kvr_common__GLEW_ARB_base_instance;
}

} // namespace

void RendererGL41::execute(CommandRender& command)
{
    DrawGL* draw = find(m_tables.draws, command.handle);
    if (draw == nullptr || draw->drawProperties.empty())
    {
        return;
    }
    RENDERENGINE_DEBUG_GROUP(GL_DEBUG_SOURCE_THIRD_PARTY, "renderengine::RendererGL41::execute CommandRender");
    // Thousands of draws do not fit into the processor's caches. Most are drawn in the order in which they were made,
    // so the next one is fetched while GL is busy with this one; a wrong guess costs nothing.
    const DrawGL* next = find(m_tables.draws, DrawHandle(command.handle.id + 1));
    if (next != nullptr)
    {
        prefetchObject(next);
    }
    const ShaderStateCoreProperties& shaderState = *draw->shaderState;
    copyViewportScale(shaderState.viewport, draw->sizeScale);
    draw->gfxState->rasterizer.sizeScale = draw->sizeScale;
    if (m_stateUnknown || !m_differentialState)
    {
        applyDrawStateInFull(*draw);
    }
    else
    {
        applyDrawStateDifferences(*draw);
    }
    if (const ShaderProgramGL* program = find(m_tables.shaderPrograms, shaderState.program))
    {
        const GLuint firstBinding = bindShaderStateBuffers(shaderState, *program);
        const RasterizerProperties& rasterizer = draw->gfxState->rasterizer;
        glUniform1f(program->getPointSizeLocation(), rasterizer.pointSize * rasterizer.sizeScale);
        applyShaderParameters(shaderState, *program);
        const bool mergeable = updateBatches(command.handle, *draw);
        for (const std::unique_ptr<Batch>& batch : draw->batches)
        {
            drawBatch(*batch, mergeable, *program, firstBinding);
        }
    }
    if (next != nullptr)
    {
        std::for_each_n(next->cacheHints.begin(), next->cacheHintCount, prefetch);
    }
    if (m_stateUnknown || !m_differentialState)
    {
        forgetTextures();
    }
}

void RendererGL41::applyDrawStateInFull(const DrawGL& draw)
{
    const ShaderStateCoreProperties& shaderState = *draw.shaderState;
    bindRenderTarget(shaderState.renderTarget);
    m_currentRenderTarget = shaderState.renderTarget;
    applyViewport(shaderState.viewport);
    m_currentViewport = shaderState.viewport;
    draw.state->apply();
    m_currentGfxState = *draw.gfxState;
    unbindTextures(m_currentShaderState.textures);
    setupTextures(shaderState.textures);
    m_currentShaderState.textures = shaderState.textures;
    setupShaderState(shaderState, true);
    m_stateUnknown = false;
}

void RendererGL41::applyDrawStateDifferences(const DrawGL& draw)
{
    const ShaderStateCoreProperties& shaderState = *draw.shaderState;
    if (shaderState.renderTarget != m_currentRenderTarget)
    {
        bindRenderTarget(shaderState.renderTarget);
        m_currentRenderTarget = shaderState.renderTarget;
    }
    if (shaderState.viewport != m_currentViewport)
    {
        applyViewport(shaderState.viewport);
        m_currentViewport = shaderState.viewport;
    }
    if (!isSameRecord(m_currentGfxState, *draw.gfxState))
    {
        draw.state->applyDifferential(m_currentGfxState);
        m_currentGfxState = *draw.gfxState;
    }
    if (m_currentShaderState.textures != shaderState.textures)
    {
        setupTexturesDifferential(shaderState.textures);
        m_currentShaderState.textures = shaderState.textures;
    }
    setupShaderState(shaderState, true);
}

/// Lists what drawing the one batch of an unmerged draw reads.
void RendererGL41::collectCacheHints(DrawGL& draw) const
{
    HintList hints(draw);
    const Batch& batch = *draw.batches.front();
    hints.add(&batch, 0, sizeof(batch));
    hints.add(batch.vertexBuffers);
    hints.add(batch.indexBuffers);
    if (!batch.firstMember)
    {
        return;
    }
    hints.add(batch.firstMember.get(), 0, sizeof(DrawProperties));
    hints.add(batch.firstMember->shaderBuffers);
    hints.add(batch.firstMember->ranges);
    // Of views, a draw reads what stands behind the part that they share with all resources.
    constexpr size_t begin = sizeof(BaseResourceGL) - sizeof(GLuint);
    const auto addView = [&hints](const auto* view)
    {
        if (view != nullptr)
        {
            hints.add(view, begin, begin + cacheLineSize);
        }
    };
    for (const ShaderBufferHandle& handle : batch.firstMember->shaderBuffers)
    {
        addView(find(m_tables.shaderBuffers, handle));
    }
    for (const VertexBufferHandle& handle : batch.vertexBuffers)
    {
        addView(find(m_tables.vertexBuffers, handle));
    }
    for (const IndexBufferHandle& handle : batch.indexBuffers)
    {
        addView(find(m_tables.indexBuffers, handle));
    }
}

/// Brings the batches up to date and returns whether they are drawn merged.
bool RendererGL41::updateBatches(const DrawHandle& handle, DrawGL& draw)
{
    const bool needRebuild = !isBatchListValid(draw);
    if (needRebuild)
    {
        releaseBatches(draw);
    }
    const bool mergeable = canMerge(draw);
    if (!mergeable && (needRebuild || draw.batches.empty()))
    {
        buildPlainBatch(draw);
        collectCacheHints(draw);
    }
    if (mergeable && needRebuild)
    {
        draw.cacheHintCount = 0;
        prepareMergeMaps(draw);
        buildBatches(draw);
        for (const std::unique_ptr<Batch>& batch : draw.batches)
        {
            buildMergedBatch(*batch);
        }
    }
    for (const std::unique_ptr<Batch>& batch : draw.batches)
    {
        mergeShaderBuffers(*batch, needRebuild);
        batch->setDirty(false);
    }
    if (needRebuild && m_explainMerging)
    {
        explainMerging(handle, draw, mergeable);
    }
    draw.batchesValid = true;
    return mergeable;
}

void RendererGL41::drawBatch(const Batch& batch, bool mergeable, const ShaderProgramGL& program, GLuint firstBinding)
{
    bindDrawShaderBuffers(batch, program, firstBinding);
    glUniform1i(program.getUseMergedShaderBuffersLocation(), batch.hasMergedShaderBuffers() ? 1 : 0);
    if (batch.drawProperties.size() == 1)
    {
        applyOverallAttributes(batch, program);
    }
    m_attributeLocations.clear();
    for (const VertexBufferHandle& handle : batch.vertexBuffers)
    {
        const VertexBufferGL* vertexBuffer = find(m_tables.vertexBuffers, handle);
        m_attributeLocations.push_back(vertexBuffer != nullptr ? vertexBuffer->bind(&program) : -1);
    }
    if (mergeable)
    {
        drawMerged(batch);
    }
    else
    {
        drawRanges(batch);
    }
    for (const GLint location : m_attributeLocations)
    {
        if (location >= 0)
        {
            glDisableVertexAttribArray(static_cast<GLuint>(location));
        }
    }
}

GLuint RendererGL41::bindDrawShaderBuffers(const Batch& batch, const ShaderProgramGL& program, GLuint firstBinding)
{
    GLuint binding = firstBinding;
    if (!batch.firstMember)
    {
        return binding;
    }
    for (const ShaderBufferHandle& handle : batch.firstMember->shaderBuffers)
    {
        if (const ShaderBufferGL* buffer = find(m_tables.shaderBuffers, handle))
        {
            bindShaderBuffer(*buffer, program, binding);
            ++binding;
        }
    }
    return binding;
}

void RendererGL41::applyOverallAttributes(const Batch& batch, const ShaderProgramGL& program)
{
    if (!batch.firstMember)
    {
        return;
    }
    for (const OverallAttribute& attribute : batch.firstMember->overallAttributes)
    {
        const GLint location = program.getAttribLocation(attribute.name);
        if (location >= 0)
        {
            applyOverallAttribute(static_cast<GLuint>(location), attribute);
        }
    }
}

void RendererGL41::drawMerged(const Batch& batch)
{
    const size_t drawCount = std::min(batch.mergedDraws.size(), batch.indexBuffers.size());
    for (size_t i = 0; i < drawCount; ++i)
    {
        const MergedDraw& draw = batch.mergedDraws[i];
        const IndexBufferGL* indexBuffer = find(m_tables.indexBuffers, batch.indexBuffers[i]);
        const GLenum* mode = gltables::primitiveModes.find(draw.primitive);
        if (indexBuffer == nullptr || indexBuffer->getBuffer() == nullptr || mode == nullptr)
        {
            continue;
        }
        setPrimitiveRestart(draw.primitiveRestart, draw.primitiveRestartValue);
        glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, indexBuffer->getBufferName());
        glMultiDrawElementsBaseVertex(*mode, draw.count.data(), indexBuffer->getType(), draw.indices.data(),
                                      static_cast<GLsizei>(draw.count.size()), draw.baseVertex.data());
        glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
    }
}

void RendererGL41::drawRanges(const Batch& batch)
{
    if (!batch.firstMember)
    {
        return;
    }
    const std::vector<DrawRange>& ranges = batch.firstMember->ranges;
    const size_t rangeCount = std::min(ranges.size(), batch.indexBuffers.size());
    for (size_t i = 0; i < rangeCount; ++i)
    {
        const IndexBufferGL* indexBuffer = find(m_tables.indexBuffers, batch.indexBuffers[i]);
        if (indexBuffer != nullptr && indexBuffer->getBuffer() != nullptr)
        {
            drawRange(ranges[i], *indexBuffer, batch);
        }
    }
}

void RendererGL41::drawRange(const DrawRange& range, const IndexBufferGL& indexBuffer, const Batch& batch)
{
    const GLenum* mode = gltables::primitiveModes.find(range.primitive);
    if (mode == nullptr)
    {
        return;
    }
    setPrimitiveRestart(range.primitiveRestart, range.primitiveRestartValue);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, indexBuffer.getBufferName());
    const void* indices = byteOffset(range.indexOffset);
    if (hasBaseInstance())
    {
        glDrawElementsInstancedBaseInstance(*mode, range.count, indexBuffer.getType(), indices, range.instanceCount,
                                            range.baseInstance);
    }
    else
    {
        if (range.baseInstance != 0)
        {
            moveInstancedAttributes(batch, range.baseInstance);
        }
        glDrawElementsInstanced(*mode, range.count, indexBuffer.getType(), indices, range.instanceCount);
        if (range.baseInstance != 0)
        {
            moveInstancedAttributes(batch, 0);
        }
    }
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
}

/// Stands in for the base instance where GL has none: attributes that advance by instance start later in their buffer.
void RendererGL41::moveInstancedAttributes(const Batch& batch, uint32_t baseInstance)
{
    for (size_t i = 0; i < m_attributeLocations.size(); ++i)
    {
        const VertexBufferGL* vertexBuffer = find(m_tables.vertexBuffers, batch.vertexBuffers[i]);
        if (vertexBuffer == nullptr || m_attributeLocations[i] < 0 || vertexBuffer->getDivisor() == 0)
        {
            continue;
        }
        const VertexBufferProperties& properties = vertexBuffer->getProperties();
        const uint64_t stride =
            properties.stride != 0 ? properties.stride : properties.componentCount * properties.dataType.getSize();
        glBindBuffer(GL_ARRAY_BUFFER, vertexBuffer->getBufferName());
        glVertexAttribPointer(static_cast<GLuint>(m_attributeLocations[i]), vertexBuffer->getComponentCount(),
                              vertexBuffer->getType(), vertexBuffer->getNormalized(), vertexBuffer->getStride(),
                              byteOffset(vertexBuffer->getOffset() + baseInstance * stride));
    }
}

} // namespace renderengine
