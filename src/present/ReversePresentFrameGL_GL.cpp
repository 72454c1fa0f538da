#include <renderengine/ReversePresentFrameGL_GL.h>

#include "gl/DebugGroup.h"
#include "present/FullScreenPass.h"

#include <renderengine/FramebufferParameterGLEventArg.h>

#include <glbinding/gl.h>

#include <cstring>

namespace renderengine
{

namespace
{

const char* const vertexText = "#version 330\n"
                               "in vec2 vertex;\n"
                               "out vec2 tcoord;\n"
                               "void main() {\n"
                               "  float x = -1.0 + float((gl_VertexID & 1) << 2);\n"
                               "  float y = -1.0 + float((gl_VertexID & 2) << 1);\n"
                               "  tcoord.x = (x + 1.0)*0.5;\n"
                               "  tcoord.y = (y + 1.0)*0.5;\n"
                               "  gl_Position = vec4(x, y, 0, 1);\n"
                               "}";

const char* const fragmentText = "#version 330\n"
                                 "in vec2 tcoord;\n"
                                 "uniform sampler2D tex0;\n"
                                 "uniform sampler2D depthTex;\n"
                                 "out vec4 color;\n"
                                 "void main() {\n"
                                 "  color = texture(tex0, tcoord);\n"
                                 "  gl_FragDepth = texture(depthTex, tcoord).x;\n"
                                 "}";

GLuint getAttachedName(GLenum framebufferTarget, GLenum attachment)
{
    GLint name = 0;
    glGetFramebufferAttachmentParameteriv(framebufferTarget, attachment, GL_FRAMEBUFFER_ATTACHMENT_OBJECT_NAME, &name);
    return static_cast<GLuint>(name);
}

void deleteTexture(uint32_t& texture)
{
    if (texture != 0)
    {
        glDeleteTextures(1, &texture);
        texture = 0;
    }
}

void deleteFramebuffer(uint32_t& framebuffer)
{
    if (framebuffer != 0)
    {
        glDeleteFramebuffers(1, &framebuffer);
        framebuffer = 0;
    }
}

GLuint createTexture(const SbVec2i32& size, GLint internalFormat, GLenum format, GLenum type)
{
    const GLint savedTexture = fullscreen::getInteger(GL_TEXTURE_BINDING_2D);
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexImage2D(GL_TEXTURE_2D, 0, internalFormat, size[0], size[1], 0, format, type, nullptr);
    glBindTexture(GL_TEXTURE_2D, static_cast<GLuint>(savedTexture));
    return texture;
}

void blit(const SbVec2i32& size, GLbitfield mask)
{
    glBlitFramebuffer(0, 0, size[0], size[1], 0, 0, size[0], size[1], mask, GL_NEAREST);
}

/// The state that the shader copy changes and puts back.
struct SavedState
{
    GLint depthWriteMask = fullscreen::getInteger(GL_DEPTH_WRITEMASK);
    GLint depthFunction = fullscreen::getInteger(GL_DEPTH_FUNC);
    GLint vertexArray = fullscreen::getInteger(GL_VERTEX_ARRAY_BINDING);
    GLint program = fullscreen::getInteger(GL_CURRENT_PROGRAM);
    GLint unit = fullscreen::getInteger(GL_ACTIVE_TEXTURE);
    GLint texture = fullscreen::getInteger(GL_TEXTURE_BINDING_2D);

    void restore() const
    {
        glBindVertexArray(static_cast<GLuint>(vertexArray));
        glUseProgram(static_cast<GLuint>(program));
        glBindTexture(GL_TEXTURE_2D, static_cast<GLuint>(texture));
        glDepthFunc(static_cast<GLenum>(depthFunction));
        glDepthMask(static_cast<GLboolean>(depthWriteMask));
        glActiveTexture(static_cast<GLenum>(unit));
    }
};

} // namespace

ReversePresentFrameGL_GL::~ReversePresentFrameGL_GL()
{
    glbinding::refreshCurrentTable();
    destroyDrawFBO();
    destroyCompatibleDrawFBO();
    destroyCompatColorTex();
    destroyCompatDepthTex();
    destroyCopyFramebuffersShader();
}

void ReversePresentFrameGL_GL::reversePresentFrame(const FramebufferParameterEventArg* arg)
{
    glbinding::refreshCurrentTable();
    const auto& frame = *static_cast<const FramebufferParameterGLEventArg*>(arg);
    if (!glIsTexture(frame.getColorTexId()) || !glIsTexture(frame.getDepthTexId()))
    {
        return;
    }
    RENDERENGINE_DEBUG_GROUP(GL_DEBUG_SOURCE_THIRD_PARTY,
                             "renderengine::ReversePresentFrameGL_GL::reversePresentFrame ");
    const auto savedRead = static_cast<GLuint>(fullscreen::getInteger(GL_READ_FRAMEBUFFER_BINDING));
    const auto savedDraw = static_cast<GLuint>(fullscreen::getInteger(GL_DRAW_FRAMEBUFFER_BINDING));
    copyFramebuffer(frame.getSize(), frame.getColorTexId(), frame.getDepthTexId(), savedDraw);
    glBindFramebuffer(GL_READ_FRAMEBUFFER, savedRead);
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, savedDraw);
}

void ReversePresentFrameGL_GL::copyFramebuffer(const SbVec2i32& size, unsigned int color, unsigned int depth,
                                               unsigned int savedDraw)
{
    glBindFramebuffer(GL_READ_FRAMEBUFFER, savedDraw);
    const bool compatible = isReadFBOCompatible();
    if (!compatible && savedDraw == 0)
    {
        // The window's picture goes into textures of known format first: the shader copy needs textures.
        const int intermediate = bindCompatibleDrawFBO(size);
        blit(size, GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        glBindFramebuffer(GL_READ_FRAMEBUFFER, static_cast<GLuint>(intermediate));
    }
    bindDrawFBO(color, depth);
    if (compatible)
    {
        blit(size, GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
    }
    else
    {
        copyFramebuffersWithShader(size);
    }
}

void ReversePresentFrameGL_GL::bindDrawFBO(unsigned int color, unsigned int depth)
{
    if (drawFBO != 0 && !isDrawFBOValid(color, depth))
    {
        destroyDrawFBO();
    }
    if (drawFBO != 0)
    {
        glBindFramebuffer(GL_DRAW_FRAMEBUFFER, drawFBO);
        return;
    }
    glGenFramebuffers(1, &drawFBO);
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, drawFBO);
    glFramebufferTexture2D(GL_DRAW_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, color, 0);
    glFramebufferTexture2D(GL_DRAW_FRAMEBUFFER, GL_DEPTH_STENCIL_ATTACHMENT, GL_TEXTURE_2D, depth, 0);
}

bool ReversePresentFrameGL_GL::isDrawFBOValid(unsigned int color, unsigned int depth) const
{
    if (!glIsFramebuffer(drawFBO))
    {
        return false;
    }
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, drawFBO);
    return glCheckFramebufferStatus(GL_DRAW_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE &&
           getAttachedName(GL_DRAW_FRAMEBUFFER, GL_COLOR_ATTACHMENT0) == color &&
           getAttachedName(GL_DRAW_FRAMEBUFFER, GL_DEPTH_ATTACHMENT) == depth;
}

void ReversePresentFrameGL_GL::destroyDrawFBO()
{
    deleteFramebuffer(drawFBO);
}

int ReversePresentFrameGL_GL::bindCompatibleDrawFBO(const SbVec2i32& size)
{
    if (compatibleDrawFBO != 0 && !isCompatibleDrawFBOValid())
    {
        destroyCompatibleDrawFBO();
    }
    if (compatibleDrawFBO != 0)
    {
        glBindFramebuffer(GL_DRAW_FRAMEBUFFER, compatibleDrawFBO);
    }
    else
    {
        glGenFramebuffers(1, &compatibleDrawFBO);
        glBindFramebuffer(GL_DRAW_FRAMEBUFFER, compatibleDrawFBO);
        glFramebufferTexture2D(GL_DRAW_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, getCompatibleColorTexId(size),
                               0);
        glFramebufferTexture2D(GL_DRAW_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_TEXTURE_2D, getCompatibleDepthTexId(size),
                               0);
    }
    return static_cast<int>(compatibleDrawFBO);
}

bool ReversePresentFrameGL_GL::isCompatibleDrawFBOValid() const
{
    if (!glIsFramebuffer(compatibleDrawFBO))
    {
        return false;
    }
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, compatibleDrawFBO);
    return glCheckFramebufferStatus(GL_DRAW_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
}

void ReversePresentFrameGL_GL::destroyCompatibleDrawFBO()
{
    deleteFramebuffer(compatibleDrawFBO);
}

unsigned int ReversePresentFrameGL_GL::getCompatibleColorTexId(const SbVec2i32& size)
{
    if (!glIsTexture(compatColorTex))
    {
        destroyCompatColorTex();
        compatColorTex = createTexture(size, GL_RGBA8, GL_RGBA, GL_UNSIGNED_BYTE);
    }
    return compatColorTex;
}

unsigned int ReversePresentFrameGL_GL::getCompatibleDepthTexId(const SbVec2i32& size)
{
    if (!glIsTexture(compatDepthTex))
    {
        destroyCompatDepthTex();
        compatDepthTex = createTexture(size, GL_DEPTH_COMPONENT, GL_DEPTH_COMPONENT, GL_UNSIGNED_INT);
    }
    return compatDepthTex;
}

void ReversePresentFrameGL_GL::destroyCompatColorTex()
{
    deleteTexture(compatColorTex);
}

void ReversePresentFrameGL_GL::destroyCompatDepthTex()
{
    deleteTexture(compatDepthTex);
}

unsigned int ReversePresentFrameGL_GL::getCopyFramebuffersShader()
{
    if (!glIsProgram(copyFramebuffersShader))
    {
        copyFramebuffersShader = fullscreen::buildProgram(vertexText, fragmentText);
    }
    return copyFramebuffersShader;
}

void ReversePresentFrameGL_GL::destroyCopyFramebuffersShader()
{
    if (copyFramebuffersShader != 0)
    {
        glDeleteProgram(copyFramebuffersShader);
        copyFramebuffersShader = 0;
    }
}

void ReversePresentFrameGL_GL::copyFramebuffersWithShader(const SbVec2i32& size)
{
    const SavedState saved;
    glViewport(0, 0, size[0], size[1]);
    const GLuint vertexArray = fullscreen::bindVertexArray();
    glUseProgram(getCopyFramebuffersShader());
    glActiveTexture(GL_TEXTURE1);
    fullscreen::bindNearest(getAttachedName(GL_READ_FRAMEBUFFER, GL_DEPTH_ATTACHMENT));
    glActiveTexture(GL_TEXTURE0);
    fullscreen::bindNearest(getAttachedName(GL_READ_FRAMEBUFFER, GL_COLOR_ATTACHMENT0));
    glDepthMask(GL_TRUE);
    glDepthFunc(GL_ALWAYS);
    glDrawArrays(GL_TRIANGLES, 0, 3);
    saved.restore();
    fullscreen::deleteVertexArray(vertexArray);
}

bool ReversePresentFrameGL_GL::isReadFBOCompatible() const
{
    if (isNVidia())
    {
        return true;
    }
    if (fullscreen::getInteger(GL_READ_FRAMEBUFFER_BINDING) == 0)
    {
        return false;
    }
    return getAttachedName(GL_READ_FRAMEBUFFER, GL_DEPTH_STENCIL_ATTACHMENT) != 0;
}

bool ReversePresentFrameGL_GL::isNVidia() const
{
    if (nvidiaState < 0)
    {
        const auto* vendor = reinterpret_cast<const char*>(glGetString(GL_VENDOR));
        nvidiaState = vendor != nullptr && std::strstr(vendor, "NVIDIA") != nullptr ? 1 : 0;
    }
    return nvidiaState == 1;
}

} // namespace renderengine
