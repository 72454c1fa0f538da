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

PlainDraw::Range makePlainRange(const DrawRange& range, GLenum mode, const IndexBufferGL& indexBuffer)
{
    PlainDraw::Range result;
    result.mode = mode;
    result.indexBuffer = indexBuffer.getBufferName();
    result.indexType = indexBuffer.getType();
    result.count = range.count;
    result.instanceCount = range.instanceCount;
    result.baseInstance = range.baseInstance;
    result.primitiveRestartValue = range.primitiveRestartValue;
    result.primitiveRestart = range.primitiveRestart;
    result.indexOffset = range.indexOffset;
    return result;
}

bool hasBaseInstance()
{
    const GLEWContextStruct& table = *glbinding::t_table;
    return table.majorVersion > 4 || (table.majorVersion == 4 && table.minorVersion >= 2) ||
           table.kvr_common__GLEW_ARB_base_instance;
}

/// Stands in for the base instance where GL has none: attributes that advance by instance start later in their buffer.
void moveInstancedAttributes(const std::vector<VertexAttribute>& attributes, uint32_t baseInstance)
{
    for (const VertexAttribute& attribute : attributes)
    {
        if (attribute.location >= 0 && attribute.divisor != 0)
        {
            attribute.moveTo(baseInstance);
        }
    }
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
    // so the next ones are fetched while GL is busy with this one; a wrong guess costs nothing.
    const DrawGL* next = find(m_tables.draws, DrawHandle(command.handle.id + 1));
    if (const DrawGL* afterNext = find(m_tables.draws, DrawHandle(command.handle.id + 2)))
    {
        prefetchObject(afterNext);
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
        const bool isPlain = updateBatches(command.handle, *draw);
        if (next != nullptr)
        {
            next->plainDraw.prefetch();
        }
        if (isPlain)
        {
            drawPlain(*draw, *program, firstBinding);
        }
        else
        {
            drawBatches(*draw, *program, firstBinding);
        }
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

/// Brings the batches up to date and returns whether there is a plain one.
bool RendererGL41::updateBatches(const DrawHandle& handle, DrawGL& draw)
{
    if (draw.batchesValid && draw.isPlain)
    {
        return true;
    }
    const bool needRebuild = !isBatchListValid(draw);
    if (needRebuild)
    {
        releaseBatches(draw);
    }
    const bool mergeable = canMerge(draw);
    if (!mergeable && (needRebuild || draw.batches.empty()))
    {
        buildPlainBatch(draw);
    }
    if (mergeable && needRebuild)
    {
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
    return draw.isPlain;
}

void RendererGL41::drawBatches(const DrawGL& draw, const ShaderProgramGL& program, GLuint firstBinding)
{
    for (const std::unique_ptr<Batch>& batch : draw.batches)
    {
        bindDrawShaderBuffers(*batch, program, firstBinding);
        glUniform1i(program.getUseMergedShaderBuffersLocation(), batch->hasMergedShaderBuffers() ? 1 : 0);
        if (batch->drawProperties.size() == 1)
        {
            applyOverallAttributes(*batch, program);
        }
        m_attributeLocations.clear();
        for (const VertexBufferHandle& handle : batch->vertexBuffers)
        {
            const VertexBufferGL* vertexBuffer = find(m_tables.vertexBuffers, handle);
            m_attributeLocations.push_back(vertexBuffer != nullptr ? vertexBuffer->bind(&program) : -1);
        }
        drawMerged(*batch);
        for (const GLint location : m_attributeLocations)
        {
            if (location >= 0)
            {
                glDisableVertexAttribArray(static_cast<GLuint>(location));
            }
        }
    }
}

void RendererGL41::drawPlain(DrawGL& draw, const ShaderProgramGL& program, GLuint firstBinding)
{
    PlainDraw& plainDraw = draw.plainDraw;
    if (!plainDraw.isCurrent(program))
    {
        plainDraw.clear();
        gatherPlainDraw(plainDraw, *draw.batches.front(), program);
        plainDraw.setCurrent(program);
    }
    GLuint binding = firstBinding;
    for (const PlainDraw::Block& block : plainDraw.blocks)
    {
        glBindBufferBase(block.target, binding, block.buffer);
        program.bindBlock(block.target, block.index, binding);
        ++binding;
    }
    glUniform1i(program.getUseMergedShaderBuffersLocation(), 0);
    if (plainDraw.hasOverallAttributes)
    {
        applyOverallAttributes(*draw.batches.front(), program);
    }
    for (const VertexAttribute& attribute : plainDraw.attributes)
    {
        attribute.bind();
    }
    for (const PlainDraw::Range& range : plainDraw.ranges)
    {
        drawRange(range, plainDraw.attributes);
    }
    for (const VertexAttribute& attribute : plainDraw.attributes)
    {
        attribute.unbind();
    }
}

/// Views without a buffer and ranges that cannot be drawn are left out.
void RendererGL41::gatherPlainDraw(PlainDraw& plainDraw, const Batch& batch, const ShaderProgramGL& program) const
{
    plainDraw.hasOverallAttributes = batch.firstMember && !batch.firstMember->overallAttributes.empty();
    if (!batch.firstMember)
    {
        return;
    }
    const std::vector<DrawRange>& ranges = batch.firstMember->ranges;
    plainDraw.blocks.reserve(batch.firstMember->shaderBuffers.size());
    plainDraw.attributes.reserve(batch.vertexBuffers.size());
    plainDraw.ranges.reserve(ranges.size());
    for (const ShaderBufferHandle& handle : batch.firstMember->shaderBuffers)
    {
        if (const ShaderBufferGL* buffer = find(m_tables.shaderBuffers, handle))
        {
            plainDraw.blocks.push_back({buffer->getTarget(), buffer->getBufferName(), buffer->findBlock(program)});
        }
    }
    for (const VertexBufferHandle& handle : batch.vertexBuffers)
    {
        const VertexBufferGL* vertexBuffer = find(m_tables.vertexBuffers, handle);
        if (vertexBuffer != nullptr && vertexBuffer->getBuffer() != nullptr)
        {
            plainDraw.attributes.push_back(vertexBuffer->getAttribute(program));
        }
    }
    for (size_t i = 0; i < std::min(ranges.size(), batch.indexBuffers.size()); ++i)
    {
        const IndexBufferGL* indexBuffer = find(m_tables.indexBuffers, batch.indexBuffers[i]);
        const GLenum* mode = gltables::primitiveModes.find(ranges[i].primitive);
        if (indexBuffer != nullptr && indexBuffer->getBuffer() != nullptr && mode != nullptr)
        {
            plainDraw.ranges.push_back(makePlainRange(ranges[i], *mode, *indexBuffer));
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

void RendererGL41::drawRange(const PlainDraw::Range& range, const std::vector<VertexAttribute>& attributes)
{
    setPrimitiveRestart(range.primitiveRestart, range.primitiveRestartValue);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, range.indexBuffer);
    const void* indices = byteOffset(range.indexOffset);
    if (hasBaseInstance())
    {
        glDrawElementsInstancedBaseInstance(range.mode, range.count, range.indexType, indices, range.instanceCount,
                                            range.baseInstance);
    }
    else
    {
        if (range.baseInstance != 0)
        {
            moveInstancedAttributes(attributes, range.baseInstance);
        }
        glDrawElementsInstanced(range.mode, range.count, range.indexType, indices, range.instanceCount);
        if (range.baseInstance != 0)
        {
            moveInstancedAttributes(attributes, 0);
        }
    }
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
}

} // namespace renderengine
