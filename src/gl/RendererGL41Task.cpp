// What is not a draw: computes, barriers, client tasks, transform feedback and queries.

#include "gl/RendererGL41.h"

#include "gl/DebugGroup.h"
#include "gl/RendererGL41Find.h"

namespace renderengine
{

// Computes

void RendererGL41::execute(CommandCompute& command)
{
    if (!command.shaderState)
    {
        return;
    }
    const ShaderStateCoreProperties& shaderState = *command.shaderState;
    const ShaderProgramGL* program = find(m_tables.shaderPrograms, shaderState.program);
    if (program == nullptr)
    {
        return;
    }
    RENDERENGINE_DEBUG_GROUP(GL_DEBUG_SOURCE_THIRD_PARTY, "renderengine::RendererGL41::execute CommandCompute");
    // Differences only, also when draws send everything.
    if (shaderState.textures != m_currentShaderState.textures)
    {
        setupTexturesDifferential(shaderState.textures);
        m_currentShaderState.textures = shaderState.textures;
    }
    setupShaderState(shaderState, true);
    bindShaderStateBuffers(shaderState, *program);
    applyShaderParameters(shaderState, *program);
    const SbVec3i32& groups = command.properties.groups;
    glDispatchCompute(static_cast<GLuint>(groups[0]), static_cast<GLuint>(groups[1]), static_cast<GLuint>(groups[2]));
    glMemoryBarrier(GL_SHADER_STORAGE_BARRIER_BIT | GL_SHADER_IMAGE_ACCESS_BARRIER_BIT);
    if (command.properties.releaseState)
    {
        command.shaderState.reset();
    }
}

void RendererGL41::execute(CommandMemoryBarrier& command)
{
    glMemoryBarrier(static_cast<GLbitfield>(command.barriers));
}

// Tasks

void RendererGL41::execute(CommandTask& command)
{
    RendererBase::execute(command);
    // The client's code may have left another context current.
    glbinding::refreshCurrentTable();
}

void RendererGL41::execute(CommandRenderTask& command)
{
    RENDERENGINE_DEBUG_GROUP(GL_DEBUG_SOURCE_THIRD_PARTY, "renderengine::RendererGL41::execute CommandRenderTask");
    const ShaderStateProperties& shaderState = command.shaderState;
    bindRenderTarget(shaderState.renderTarget);
    applyViewport(shaderState.viewport);
    const auto gfxState = command.gfxState ? std::make_shared<GfxStateProperties>(*command.gfxState)
                                           : std::make_shared<GfxStateProperties>();
    copyViewportScale(shaderState.viewport, gfxState->rasterizer.sizeScale);
    const StateGL state(gfxState);
    state.apply();
    setupShaderState(shaderState, !command.fixedFunctionState);
    if (const ShaderProgramGL* program = find(m_tables.shaderPrograms, shaderState.program))
    {
        bindShaderBuffersByPosition(shaderState, *program);
        applyShaderParameters(shaderState, *program);
    }
    if (m_differentialState)
    {
        forgetTextures();
    }
    setupTextures(shaderState.textures);
    if (command.fixedFunctionState)
    {
        state.applyState(shaderState.transform.part1, shaderState.transform.part2);
        state.applyState(shaderState.material, shaderState.lightingFlags, shaderState.light);
        state.applyState(shaderState.texGen);
        state.applyState(shaderState.texEnv);
    }
    // All groups of attributes that GL 1 had.
    constexpr GLbitfield allAttributes = 0xFFFFF;
    glPushAttrib(allAttributes);
    try
    {
        RendererBase::execute(static_cast<CommandTask&>(command));
    }
    catch (...)
    {
        finishRenderTask(shaderState.textures);
        throw;
    }
    finishRenderTask(shaderState.textures);
}

void RendererGL41::finishRenderTask(const TextureUnitProperties& textures)
{
    // The client's code may have left another context current.
    glbinding::refreshCurrentTable();
    glPopAttrib();
    unbindTextures(textures);
    m_stateUnknown = true;
}

/// In contrast to draws, a buffer that is missing leaves its binding point unused.
void RendererGL41::bindShaderBuffersByPosition(const ShaderStateCoreProperties& shaderState,
                                               const ShaderProgramGL& program)
{
    for (size_t i = 0; i < shaderState.shaderBuffers.size(); ++i)
    {
        if (const ShaderBufferGL* buffer = find(m_tables.shaderBuffers, shaderState.shaderBuffers[i]))
        {
            bindShaderBuffer(*buffer, program, static_cast<GLuint>(i));
        }
    }
}

// Transform feedback

void RendererGL41::execute(CommandBeginTransformFeedback& command)
{
    setupShaderState(command.shaderState, true);
    ShaderProgramGL* program = find(m_tables.shaderPrograms, m_currentShaderState.program);
    if (program == nullptr)
    {
        return;
    }
    const TransformFeedbackProperties& properties = command.properties;
    program->setTransformFeedbackVaryings(properties.varyings, properties.bufferMode);
    // Varyings take effect at link only.
    program->reflect();
    for (size_t i = 0; i < properties.buffers.size(); ++i)
    {
        if (const BufferGL* buffer = find(m_tables.buffers, properties.buffers[i]))
        {
            glBindBufferBase(GL_TRANSFORM_FEEDBACK_BUFFER, static_cast<GLuint>(i), buffer->getName());
        }
        if (properties.bufferMode == 0)
        {
            break;
        }
    }
    if (properties.discard != 0)
    {
        glEnable(GL_RASTERIZER_DISCARD);
    }
    glBeginTransformFeedback(properties.primitiveMode);
}

void RendererGL41::execute(CommandEndTransformFeedback& /*command*/)
{
    glEndTransformFeedback();
    glBindBufferBase(GL_TRANSFORM_FEEDBACK_BUFFER, 0, 0);
    glBindBufferBase(GL_TRANSFORM_FEEDBACK_BUFFER, 1, 0);
    glDisable(GL_RASTERIZER_DISCARD);
}

// Queries

void RendererGL41::execute(CommandCreateQuery& command)
{
    if (command.handle.isValid())
    {
        createResource(m_tables.queries, command.handle).create(command.type);
    }
}

void RendererGL41::execute(CommandBeginQuery& command)
{
    if (const QueryGL* query = find(m_tables.queries, command.handle))
    {
        query->begin();
    }
}

void RendererGL41::execute(CommandEndQuery& command)
{
    if (const QueryGL* query = find(m_tables.queries, command.handle))
    {
        query->end();
    }
}

void RendererGL41::execute(CommandGetQueryResult& command)
{
    if (const QueryGL* query = find(m_tables.queries, command.handle))
    {
        const uint64_t result = query->getResult();
        const std::lock_guard<std::mutex> lock(m_queryMutex);
        m_queryResults[command.handle] = result;
    }
}

void RendererGL41::execute(CommandDestroyQuery& command)
{
    if (command.handle.isValid())
    {
        const std::lock_guard<std::mutex> lock(m_queryMutex);
        m_queryResults.erase(command.handle);
    }
    releaseResource(m_tables.queries, command.handle);
}

} // namespace renderengine
