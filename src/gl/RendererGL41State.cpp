// State that draws, computes, clears and render tasks share: target, viewport, textures, program, buffers, parameters.

#include "gl/RendererGL41.h"

#include "gl/DebugGroup.h"
#include "gl/RendererGL41Find.h"

#include <array>

namespace renderengine
{

namespace
{

constexpr GLuint textureUnitCount = 32;
constexpr GLuint clipPlaneCount = 8;

bool isUnitSet(const TextureUnitProperties& block, GLuint unit)
{
    return (block.mask >> unit & 1u) != 0;
}

/// Used when the texture that is bound to the unit no longer exists, so that its target is not known.
void unbindEveryTarget(GLuint unit)
{
    constexpr std::array<GLenum, 5> targets = {
        {GL_TEXTURE_1D, GL_TEXTURE_2D, GL_TEXTURE_2D_MULTISAMPLE, GL_TEXTURE_3D, GL_TEXTURE_CUBE_MAP}};
    constexpr std::array<GLenum, 4> switches = {{GL_TEXTURE_1D, GL_TEXTURE_2D, GL_TEXTURE_3D, GL_TEXTURE_CUBE_MAP}};
    glActiveTexture(GL_TEXTURE0 + unit);
    for (const GLenum target : targets)
    {
        glBindTexture(target, 0);
    }
    // In a core context these raise an error that only the debug output tells; the fixed-function path needs them.
    for (const GLenum target : switches)
    {
        glDisable(target);
    }
}

} // namespace

void RendererGL41::bindRenderTarget(const RenderTargetHandle& handle)
{
    if (RenderTargetGL* target = find(m_tables.renderTargets, handle))
    {
        target->bind();
    }
    else
    {
        glBindFramebuffer(GL_FRAMEBUFFER, 0);
    }
}

void RendererGL41::applyViewport(const ViewportHandle& handle)
{
    if (const ViewportGL* viewport = find(m_tables.viewports, handle))
    {
        viewport->apply();
    }
    else
    {
        glViewport(0, 0, 0, 0);
        glDepthRange(0.0, 1.0);
    }
}

void RendererGL41::copyViewportScale(const ViewportHandle& handle, float& sizeScale) const
{
    if (const ViewportGL* viewport = find(m_tables.viewports, handle))
    {
        sizeScale = viewport->getProperties().sizeScale;
    }
}

void RendererGL41::setupShaderState(const ShaderStateCoreProperties& shaderState, bool /*programmable*/)
{
    RENDERENGINE_DEBUG_GROUP(GL_DEBUG_SOURCE_THIRD_PARTY, "renderengine::RendererGL41::setupShaderState ");
    const ShaderProgramGL* program = find(m_tables.shaderPrograms, shaderState.program);
    if (program == nullptr)
    {
        glUseProgram(0);
        m_currentShaderState.program = ShaderProgramHandle();
        return;
    }
    const bool full = isShaderStateUnknown(shaderState);
    if (full || shaderState.patchVertices != m_currentShaderState.patchVertices)
    {
        program->use(shaderState.patchVertices);
        m_currentShaderState.program = shaderState.program;
        m_currentShaderState.patchVertices = shaderState.patchVertices;
    }
    if (full || shaderState.lightingFlags.twoSided != m_currentShaderState.lightingFlags.twoSided)
    {
        m_currentShaderState.lightingFlags = shaderState.lightingFlags;
    }
    if (full || !isSameRecord(shaderState.clipPlanes, m_currentShaderState.clipPlanes))
    {
        for (GLuint i = 0; i < clipPlaneCount; ++i)
        {
            if ((shaderState.clipPlanes.enableMask >> i & 1) != 0)
            {
                glEnable(GL_CLIP_DISTANCE0 + i);
            }
            else
            {
                glDisable(GL_CLIP_DISTANCE0 + i);
            }
        }
        m_currentShaderState.clipPlanes = shaderState.clipPlanes;
    }
}

bool RendererGL41::isShaderStateUnknown(const ShaderStateCoreProperties& shaderState) const
{
    return m_stateUnknown || shaderState.program != m_currentShaderState.program || !m_differentialState;
}

void RendererGL41::setupTextures(const TextureUnitProperties& block)
{
    RENDERENGINE_DEBUG_GROUP(GL_DEBUG_SOURCE_THIRD_PARTY, "renderengine::RendererGL41::setupTextures ");
    for (GLuint unit = 0; unit < textureUnitCount; ++unit)
    {
        if (isUnitSet(block, unit))
        {
            bindTextureUnit(unit, block);
        }
    }
    glActiveTexture(GL_TEXTURE0);
}

void RendererGL41::setupTexturesDifferential(const TextureUnitProperties& block)
{
    RENDERENGINE_DEBUG_GROUP(GL_DEBUG_SOURCE_THIRD_PARTY, "renderengine::RendererGL41::setupTexturesDifferential ");
    const TextureUnitProperties& current = m_currentShaderState.textures;
    for (GLuint unit = 0; unit < textureUnitCount; ++unit)
    {
        const bool wasSet = isUnitSet(current, unit);
        if (isUnitSet(block, unit))
        {
            if (wasSet)
            {
                makeRoomForTexture(unit, find(m_tables.textures, current.textures[unit]),
                                   find(m_tables.textures, block.textures[unit]));
            }
            bindTextureUnit(unit, block);
        }
        else if (wasSet)
        {
            unbindTextureUnit(unit, current);
        }
    }
    glActiveTexture(GL_TEXTURE0);
}

void RendererGL41::makeRoomForTexture(GLuint unit, const TextureGL* previous, const TextureGL* next)
{
    if (previous == nullptr)
    {
        unbindEveryTarget(unit);
    }
    else if (next == nullptr || previous->getTarget() != next->getTarget())
    {
        previous->bind(unit, false);
    }
}

void RendererGL41::unbindTextures(const TextureUnitProperties& block)
{
    RENDERENGINE_DEBUG_GROUP(GL_DEBUG_SOURCE_THIRD_PARTY, "renderengine::RendererGL41::unbindTextures ");
    for (GLuint unit = 0; unit < textureUnitCount; ++unit)
    {
        if (isUnitSet(block, unit))
        {
            unbindTextureUnit(unit, block);
        }
    }
    glActiveTexture(GL_TEXTURE0);
}

void RendererGL41::bindTextureUnit(GLuint unit, const TextureUnitProperties& block)
{
    if (const TextureGL* texture = find(m_tables.textures, block.textures[unit]))
    {
        texture->bind(unit, true);
    }
    else
    {
        glActiveTexture(GL_TEXTURE0 + unit);
        glBindTexture(GL_TEXTURE_2D, 0);
    }
    if (const SamplerGL* sampler = find(m_tables.samplers, block.samplers[unit]))
    {
        sampler->bind(unit);
    }
    else
    {
        glBindSampler(unit, 0);
    }
}

void RendererGL41::unbindTextureUnit(GLuint unit, const TextureUnitProperties& block)
{
    if (const TextureGL* texture = find(m_tables.textures, block.textures[unit]))
    {
        texture->bind(unit, false);
    }
    else
    {
        unbindEveryTarget(unit);
    }
    glBindSampler(unit, 0);
}

void RendererGL41::forgetTextures()
{
    unbindTextures(m_currentShaderState.textures);
    m_currentShaderState.textures = TextureUnitProperties();
}

GLuint RendererGL41::bindShaderStateBuffers(const ShaderStateCoreProperties& shaderState,
                                            const ShaderProgramGL& program)
{
    GLuint binding = 0;
    for (const ShaderBufferHandle& handle : shaderState.shaderBuffers)
    {
        if (const ShaderBufferGL* buffer = find(m_tables.shaderBuffers, handle))
        {
            bindShaderBuffer(*buffer, program, binding);
            ++binding;
        }
    }
    return binding;
}

void RendererGL41::bindShaderBuffer(const ShaderBufferGL& buffer, const ShaderProgramGL& program, GLuint binding)
{
    buffer.bind(binding);
    program.bindBlock(buffer, binding);
}

void RendererGL41::applyShaderParameters(const ShaderStateCoreProperties& shaderState, const ShaderProgramGL& program)
{
    for (const ShaderParameterHandle& handle : shaderState.shaderParameters)
    {
        if (const ShaderParameterGL* parameter = find(m_tables.shaderParameters, handle))
        {
            const GLint location = program.getUniformLocation(parameter->getName());
            if (location != -1)
            {
                parameter->apply(location);
            }
        }
    }
}

void RendererGL41::setPrimitiveRestart(bool enable, uint32_t value)
{
    if (enable != m_primitiveRestartEnabled)
    {
        if (enable)
        {
            glEnable(GL_PRIMITIVE_RESTART);
        }
        else
        {
            glDisable(GL_PRIMITIVE_RESTART);
        }
        m_primitiveRestartEnabled = enable;
    }
    if (enable)
    {
        glPrimitiveRestartIndex(value);
    }
}

} // namespace renderengine
