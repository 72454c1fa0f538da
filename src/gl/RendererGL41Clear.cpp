// Clears of a render target and copies between two.

#include "gl/RendererGL41.h"

#include "gl/DebugGroup.h"
#include "gl/RendererGL41Find.h"

#include <array>

namespace renderengine
{

namespace
{

constexpr GLuint colorBufferCount = 8;

// The bits of a clear's and a blit's flags.
constexpr uint8_t colorBit = 1;
constexpr uint8_t depthBit = 2;
constexpr uint8_t stencilBit = 4;

} // namespace

/// What decides which buffers a clear writes, as it stood before the clear.
struct RendererGL41::ClearMasks
{
    struct Color
    {
        bool red;
        bool green;
        bool blue;
        bool alpha;

        bool equals(const bool (&mask)[4]) const
        {
            return red == mask[0] && green == mask[1] && blue == mask[2] && alpha == mask[3];
        }
    };

    bool scissorTest = false;
    bool depthTest = false;
    bool depthWrite = false;
    bool stencilTest = false;
    uint32_t stencilReadMask = 0; ///< 0 when the stencil test is off
    uint32_t stencilWriteMask = 0;
    std::array<Color, colorBufferCount> colors{};
};

void RendererGL41::execute(CommandClearRT& command)
{
    const RenderTargetGL* target = find(m_tables.renderTargets, command.handle);
    if (target == nullptr)
    {
        return;
    }
    RENDERENGINE_DEBUG_GROUP(GL_DEBUG_SOURCE_THIRD_PARTY, "renderengine::RendererGL41::execute CommandClearRT");
    // A task may have bound a target of its own behind the cached handle.
    if (m_stateUnknown || command.handle != m_currentRenderTarget)
    {
        bindRenderTarget(command.handle);
        m_currentRenderTarget = command.handle;
    }
    const ClearTargetProperties& properties = command.properties;
    const ClearMasks masks = m_stateUnknown ? queryClearMasks() : getCachedClearMasks();
    if (masks.scissorTest)
    {
        // The next draw's differences switch it on again.
        glDisable(GL_SCISSOR_TEST);
        m_currentGfxState.scissor.enable = false;
    }
    if ((properties.flags & colorBit) != 0)
    {
        clearColors(properties, *target, masks);
    }
    const bool depthMask = properties.depthWrite || masks.depthTest;
    if (depthMask != masks.depthWrite)
    {
        glDepthMask(static_cast<GLboolean>(depthMask));
    }
    const uint32_t stencilMask = masks.stencilReadMask | properties.stencilWriteMask;
    if (stencilMask != masks.stencilWriteMask)
    {
        glStencilMaskSeparate(GL_FRONT_AND_BACK, stencilMask);
    }
    clearDepthAndStencil(properties, *target);

    // The masks end as the command says, not as they were found.
    for (GLuint i = 0; i < colorBufferCount; ++i)
    {
        if (!masks.colors[i].equals(properties.colorMask))
        {
            sendColorMask(i, properties);
        }
    }
    if (depthMask != properties.depthWrite)
    {
        glDepthMask(static_cast<GLboolean>(properties.depthWrite));
    }
    m_currentGfxState.depthStencil.depthWrite = properties.depthWrite;
    if (stencilMask != properties.stencilWriteMask)
    {
        glStencilMaskSeparate(GL_FRONT_AND_BACK, properties.stencilWriteMask);
    }
    m_currentGfxState.depthStencil.front.writeMask = properties.stencilWriteMask;
    m_currentGfxState.depthStencil.back.writeMask = properties.stencilWriteMask;
}

RendererGL41::ClearMasks RendererGL41::getCachedClearMasks() const
{
    const DepthStencilProperties& depthStencil = m_currentGfxState.depthStencil;
    ClearMasks masks;
    masks.scissorTest = m_currentGfxState.scissor.enable;
    masks.depthTest = depthStencil.depthTest;
    masks.depthWrite = depthStencil.depthWrite;
    masks.stencilTest = depthStencil.stencilTest;
    masks.stencilReadMask = masks.stencilTest ? depthStencil.front.readMask : 0;
    masks.stencilWriteMask = depthStencil.front.writeMask;
    for (size_t i = 0; i < colorBufferCount; ++i)
    {
        const ColorTargetProperties& color = m_currentGfxState.colorOutput.targets[i];
        masks.colors[i] = {color.writeRed, color.writeGreen, color.writeBlue, color.writeAlpha};
    }
    return masks;
}

RendererGL41::ClearMasks RendererGL41::queryClearMasks() const
{
    ClearMasks masks;
    masks.scissorTest = glIsEnabled(GL_SCISSOR_TEST) != GL_FALSE;
    masks.depthTest = glIsEnabled(GL_DEPTH_TEST) != GL_FALSE;
    masks.stencilTest = glIsEnabled(GL_STENCIL_TEST) != GL_FALSE;
    GLboolean depthWrite = GL_FALSE;
    glGetBooleanv(GL_DEPTH_WRITEMASK, &depthWrite);
    masks.depthWrite = depthWrite != GL_FALSE;
    if (masks.stencilTest)
    {
        GLint readMask = 0;
        glGetIntegerv(GL_STENCIL_VALUE_MASK, &readMask);
        masks.stencilReadMask = static_cast<uint32_t>(readMask);
    }
    GLint writeMask = 0;
    glGetIntegerv(GL_STENCIL_WRITEMASK, &writeMask);
    masks.stencilWriteMask = static_cast<uint32_t>(writeMask);
    for (GLuint i = 0; i < colorBufferCount; ++i)
    {
        GLboolean color[4] = {};
        glGetBooleani_v(GL_COLOR_WRITEMASK, i, color);
        masks.colors[i] = {color[0] != GL_FALSE, color[1] != GL_FALSE, color[2] != GL_FALSE, color[3] != GL_FALSE};
    }
    return masks;
}

void RendererGL41::clearColors(const ClearTargetProperties& properties, const RenderTargetGL& target,
                               const ClearMasks& masks)
{
    for (GLuint i = 0; i < colorBufferCount; ++i)
    {
        if ((target.getColorAttachmentMask() >> i & 1) == 0)
        {
            continue;
        }
        if (!masks.colors[i].equals(properties.colorMask))
        {
            sendColorMask(i, properties);
        }
        glClearBufferfv(GL_COLOR, static_cast<GLint>(i), properties.colors[i].getValue());
    }
}

void RendererGL41::sendColorMask(GLuint buffer, const ClearTargetProperties& properties)
{
    const bool(&mask)[4] = properties.colorMask;
    glColorMaski(buffer, mask[0], mask[1], mask[2], mask[3]);
    ColorTargetProperties& cached = m_currentGfxState.colorOutput.targets[buffer];
    cached.writeRed = mask[0];
    cached.writeGreen = mask[1];
    cached.writeBlue = mask[2];
    cached.writeAlpha = mask[3];
}

void RendererGL41::clearDepthAndStencil(const ClearTargetProperties& properties, const RenderTargetGL& target)
{
    const bool depth = (properties.flags & depthBit) != 0;
    const bool stencil = (properties.flags & stencilBit) != 0;
    if (target.hasDepthStencilAttachment() && (depth || stencil))
    {
        // One call clears both, also when only one was asked for.
        glClearBufferfi(GL_DEPTH_STENCIL, 0, properties.depth, properties.stencil);
        return;
    }
    if (target.hasDepthAttachment() && depth)
    {
        glClearBufferfv(GL_DEPTH, 0, &properties.depth);
    }
    if (target.hasStencilAttachment() && stencil)
    {
        glClearBufferiv(GL_STENCIL, 0, &properties.stencil);
    }
}

void RendererGL41::execute(CommandBlit& command)
{
    const RenderTargetGL* source = find(m_tables.renderTargets, command.source);
    const RenderTargetGL* destination = find(m_tables.renderTargets, command.destination);
    if (source == nullptr || destination == nullptr)
    {
        return;
    }
    const BlitProperties& properties = command.properties;
    GLbitfield mask = 0;
    mask |= (properties.flags & colorBit) != 0 ? GLbitfield{GL_COLOR_BUFFER_BIT} : 0;
    mask |= (properties.flags & depthBit) != 0 ? GLbitfield{GL_DEPTH_BUFFER_BIT} : 0;
    mask |= (properties.flags & stencilBit) != 0 ? GLbitfield{GL_STENCIL_BUFFER_BIT} : 0;
    glBindFramebuffer(GL_READ_FRAMEBUFFER, source->getFramebuffer());
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, destination->getFramebuffer());
    const SbVec4i32& from = properties.source;
    const SbVec4i32& to = properties.destination;
    glBlitFramebuffer(from[0], from[1], from[2], from[3], to[0], to[1], to[2], to[3], mask,
                      properties.filter == 2 ? GL_LINEAR : GL_NEAREST);
    m_currentRenderTarget.reset();
}

} // namespace renderengine
