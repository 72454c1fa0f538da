#include "gl/RenderTargetGL.h"

#include "gl/GLTables.h"
#include "gl/TextureGL.h"

#include <kavelor/SoPreferences.h>
#include <spdlog/spdlog.h>

#include <algorithm>

namespace renderengine
{

namespace
{

constexpr uint32_t s_colorAttachments = 16;
constexpr uint32_t s_depthIndex = 17;
constexpr uint32_t s_stencilIndex = 18;
constexpr uint32_t s_depthStencilIndex = 19;
constexpr uint32_t s_attachmentIndices = 20;
// A limit of the engine, whatever the driver allows.
constexpr size_t s_maxDrawBuffers = 8;
constexpr uint32_t s_lastFace = 5;

} // namespace

void RenderTargetGL::update(const RenderTargetProperties& newProperties, const TextureList& newTextures)
{
    // A reused handle number gives the same list for another texture, so the textures count too.
    if (newProperties == properties && newTextures == textures)
    {
        return;
    }
    resetDependencies();
    for (const std::shared_ptr<TextureGL>& texture : newTextures)
    {
        if (texture)
        {
            addDependency(*texture);
        }
    }
    properties = newProperties;
    textures = newTextures;
    rebuild();
}

bool RenderTargetGL::needsRebuild() const
{
    return framebuffer == 0 || isDirty();
}

void RenderTargetGL::bind()
{
    if (needsRebuild())
    {
        rebuild();
    }
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
}

void RenderTargetGL::rebuild()
{
    GLint bound = 0;
    glGetIntegerv(GL_FRAMEBUFFER_BINDING, &bound);
    if (needsRebuild())
    {
        const bool wasBound = framebuffer != 0 && static_cast<GLuint>(bound) == framebuffer;
        destroyFramebuffer();
        createFramebuffer();
        if (wasBound)
        {
            bound = static_cast<GLint>(framebuffer);
        }
    }
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    detachAll();
    setDrawBuffers(attachTextures());
    if (properties.srgb)
    {
        glEnable(GL_FRAMEBUFFER_SRGB);
    }
    if (SoPreferences::getBool("KVR_RENDERENGINE_CHECK_FRAMEBUFFER", false))
    {
        checkAttachments();
    }
    glBindFramebuffer(GL_FRAMEBUFFER, static_cast<GLuint>(bound));
    setDirty(false);
}

void RenderTargetGL::checkAttachments() const
{
    ColorTextures colorTextures{};
    const TextureGL* depth = nullptr;
    const TextureGL* stencil = nullptr;
    const TextureGL* depthStencil = nullptr;
    const size_t count = std::min(properties.attachments.size(), textures.size());
    for (size_t i = 0; i < count; ++i)
    {
        const uint32_t index = properties.attachments[i].attachment;
        const TextureGL* texture = textures[i].get();
        if (index < s_colorAttachments)
        {
            colorTextures[index] = texture;
        }
        depth = index == s_depthIndex ? texture : depth;
        stencil = index == s_stencilIndex ? texture : stencil;
        depthStencil = index == s_depthStencilIndex ? texture : depthStencil;
    }
    checkFramebuffer(colorTextures, depth, stencil, depthStencil);
}

std::vector<GLenum> RenderTargetGL::attachTextures()
{
    colorAttachmentMask = 0;
    hasDepth = false;
    hasStencil = false;
    hasDepthStencil = false;
    std::vector<GLenum> drawBuffers;
    size_t used = 0;
    const size_t count = std::min(properties.attachments.size(), textures.size());
    for (size_t i = 0; i < count && used < s_maxAttachments; ++i)
    {
        const RenderTextureProperty& entry = properties.attachments[i];
        if (!textures[i] || entry.attachment >= s_attachmentIndices)
        {
            continue;
        }
        Attachment& attachment = attachments[used];
        attachment.textureTarget = textures[i]->getTarget();
        attachment.attachmentPoint = *gltables::attachmentPoints.find(entry.attachment);
        attachment.layer = entry.layer;
        attachment.level = entry.level;
        noteAttachment(entry.attachment, drawBuffers);
        attach(attachment, textures[i]->getId());
        ++used;
    }
    attachments[used].textureTarget = GL_INVALID_ENUM;
    return drawBuffers;
}

void RenderTargetGL::noteAttachment(uint32_t index, std::vector<GLenum>& drawBuffers)
{
    if (index < s_colorAttachments)
    {
        colorAttachmentMask |= 1u << index;
        drawBuffers.push_back(GL_COLOR_ATTACHMENT0 + index);
    }
    hasDepth = hasDepth || index == s_depthIndex;
    hasStencil = hasStencil || index == s_stencilIndex;
    hasDepthStencil = hasDepthStencil || index == s_depthStencilIndex;
}

void RenderTargetGL::attach(const Attachment& attachment, GLuint texture)
{
    // Every layer is a layer: there is no value for "the whole texture".
    switch (attachment.textureTarget)
    {
    case GL_TEXTURE_CUBE_MAP:
        if (attachment.layer <= s_lastFace)
        {
            glFramebufferTexture2D(GL_FRAMEBUFFER, attachment.attachmentPoint,
                                   GL_TEXTURE_CUBE_MAP_POSITIVE_X + attachment.layer, texture, attachment.level);
        }
        break;
    case GL_TEXTURE_1D_ARRAY:
    case GL_TEXTURE_2D_ARRAY:
    case GL_TEXTURE_3D:
    case GL_TEXTURE_CUBE_MAP_ARRAY:
    case GL_TEXTURE_2D_MULTISAMPLE_ARRAY:
        glFramebufferTextureLayer(GL_FRAMEBUFFER, attachment.attachmentPoint, texture, attachment.level,
                                  attachment.layer);
        break;
    default:
        glFramebufferTexture(GL_FRAMEBUFFER, attachment.attachmentPoint, texture, attachment.level);
        break;
    }
}

void RenderTargetGL::setDrawBuffers(const std::vector<GLenum>& drawBuffers)
{
    if (drawBuffers.size() > s_maxDrawBuffers)
    {
        spdlog::error(
            "[RenderTargetGL] Number of color attachments is greater than the maximum number of draw buffers.");
    }
    else if (drawBuffers.empty())
    {
        glDrawBuffer(GL_NONE);
        glReadBuffer(GL_NONE);
    }
    else
    {
        glDrawBuffers(static_cast<GLsizei>(drawBuffers.size()), drawBuffers.data());
    }
}

void RenderTargetGL::detachAll() const
{
    for (const Attachment& attachment : attachments)
    {
        if (attachment.textureTarget == GL_INVALID_ENUM)
        {
            break;
        }
        attach(attachment, 0);
    }
}

void RenderTargetGL::createFramebuffer()
{
    glGenFramebuffers(1, &framebuffer);
}

void RenderTargetGL::destroyFramebuffer()
{
    if (framebuffer != 0 && glIsFramebuffer(framebuffer))
    {
        glDeleteFramebuffers(1, &framebuffer);
    }
    framebuffer = 0;
}

void RenderTargetGL::destroy()
{
    destroyFramebuffer();
}

} // namespace renderengine
