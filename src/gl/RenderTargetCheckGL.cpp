#include "gl/RenderTargetGL.h"

#include "gl/TextureGL.h"

#include <spdlog/spdlog.h>

#include <algorithm>

namespace renderengine
{

namespace
{

const char* statusName(GLenum status)
{
    switch (status)
    {
    case GL_FRAMEBUFFER_UNDEFINED:
        return "GL_FRAMEBUFFER_UNDEFINED";
    case GL_FRAMEBUFFER_INCOMPLETE_ATTACHMENT:
        return "GL_FRAMEBUFFER_INCOMPLETE_ATTACHMENT";
    case GL_FRAMEBUFFER_INCOMPLETE_MISSING_ATTACHMENT:
        return "GL_FRAMEBUFFER_INCOMPLETE_MISSING_ATTACHMENT";
    case GL_FRAMEBUFFER_INCOMPLETE_DRAW_BUFFER:
        return "GL_FRAMEBUFFER_INCOMPLETE_DRAW_BUFFER";
    case GL_FRAMEBUFFER_INCOMPLETE_READ_BUFFER:
        return "GL_FRAMEBUFFER_INCOMPLETE_READ_BUFFER";
    case GL_FRAMEBUFFER_UNSUPPORTED:
        return "GL_FRAMEBUFFER_UNSUPPORTED";
    case GL_FRAMEBUFFER_INCOMPLETE_MULTISAMPLE:
        return "GL_FRAMEBUFFER_INCOMPLETE_MULTISAMPLE";
    case GL_FRAMEBUFFER_INCOMPLETE_LAYER_TARGETS:
        return "GL_FRAMEBUFFER_INCOMPLETE_LAYER_TARGETS";
    default:
        return "UNKNOWN";
    }
}

template <size_t Size> bool isOneOf(GLenum format, const GLenum (&formats)[Size])
{
    return std::find(std::begin(formats), std::end(formats), format) != std::end(formats);
}

constexpr GLenum s_colorFormats[] = {GL_RGB,   GL_RGBA,  GL_LUMINANCE, GL_RGB8,   GL_RGBA8,   GL_R16F,  GL_R32F,
                                     GL_RG16F, GL_RG32F, GL_RGBA32F,   GL_RGB32F, GL_RGBA16F, GL_RGB16F};
constexpr GLenum s_depthFormats[] = {GL_DEPTH_COMPONENT, GL_DEPTH_COMPONENT16, GL_DEPTH_COMPONENT24,
                                     GL_DEPTH_COMPONENT32};
constexpr GLenum s_stencilFormats[] = {GL_DEPTH24_STENCIL8};

bool isOn(GLenum parameter)
{
    GLboolean value = GL_FALSE;
    glGetBooleanv(parameter, &value);
    return value != GL_FALSE;
}

void warnAboutFormats(const RenderTargetGL::ColorTextures& colorTextures, const TextureGL* depth,
                      const TextureGL* stencil, const TextureGL* depthStencil)
{
    for (size_t i = 0; i < colorTextures.size(); ++i)
    {
        if (colorTextures[i] && !isOneOf(colorTextures[i]->getInternalFormat(), s_colorFormats))
        {
            spdlog::warn("Texture attached to COLOR_ATTACHEMENT{} has not a color format.", i);
        }
    }
    if (depth && !isOneOf(depth->getInternalFormat(), s_depthFormats))
    {
        spdlog::warn("Texture attached to DEPTH_ATTACHMENT has not a depth format.");
    }
    if (stencil && !isOneOf(stencil->getInternalFormat(), s_stencilFormats))
    {
        spdlog::warn("Texture attached to STENCIL_ATTACHMENT has not a stencil format.");
    }
    if (depthStencil && !isOneOf(depthStencil->getInternalFormat(), s_stencilFormats))
    {
        spdlog::warn("Texture attached to DEPTH_STENCIL_ATTACHMENT has not a depth_stencil format.");
    }
}

void warnAboutBuffers(bool drawBuffer, bool readBuffer, bool hasColor)
{
    if (!hasColor && drawBuffer)
    {
        spdlog::warn("GL_DRAW_BUFFER is NOT set to GL_NONE whereas there are NO color attachment.");
    }
    if (!hasColor && readBuffer)
    {
        spdlog::warn("GL_READ_BUFFER is NOT set to GL_NONE whereas there are NO color attachment.");
    }
    if (hasColor && !drawBuffer)
    {
        spdlog::warn("GL_DRAW_BUFFER is set to GL_NONE whereas there are color attachment.");
    }
    if (hasColor && !readBuffer)
    {
        spdlog::warn("GL_READ_BUFFER is set to GL_NONE whereas there are color attachment.");
    }
}

} // namespace

void RenderTargetGL::checkFramebuffer(const ColorTextures& colorTextures, const TextureGL* depth,
                                      const TextureGL* stencil, const TextureGL* depthStencil)
{
    const GLenum status = glCheckFramebufferStatus(GL_FRAMEBUFFER);
    if (status == GL_FRAMEBUFFER_COMPLETE)
    {
        return;
    }
    spdlog::error("[RenderTargetGL] Framebuffer is not complete ({}).", statusName(status));
    const bool hasColor =
        std::any_of(colorTextures.begin(), colorTextures.end(), [](const TextureGL* texture) { return texture; });
    if (!hasColor && !depth && !stencil && !depthStencil)
    {
        spdlog::warn("No images are attached to this FBO.");
    }
    warnAboutFormats(colorTextures, depth, stencil, depthStencil);
    const bool drawBuffer = isOn(GL_DRAW_BUFFER);
    const bool readBuffer = isOn(GL_READ_BUFFER);
    warnAboutBuffers(drawBuffer, readBuffer, hasColor);
    const bool depthWrite = isOn(GL_DEPTH_WRITEMASK);
    const bool hasDepthTexture = depth || depthStencil;
    if (!hasDepthTexture && depthWrite)
    {
        spdlog::warn("GL_DEPTH_WRITEMASK is set to TRUE whereas there are NO depth attachment.");
    }
    if (hasDepthTexture && !depthWrite)
    {
        spdlog::warn("GL_DEPTH_WRITEMASK is set to FALSE whereas there are depth attachment.");
    }
}

} // namespace renderengine
