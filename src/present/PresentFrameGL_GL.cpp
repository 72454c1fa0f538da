#include <renderengine/PresentFrameGL_GL.h>

#include "present/FullScreenPass.h"

#include <renderengine/FramebufferParameterGLEventArg.h>
#include <renderengine/GLUtils.h>

#include <glbinding/gl.h>

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

} // namespace

PresentFrameGL_GL::~PresentFrameGL_GL()
{
    if (program != 0 && utils::GL::getCurrentContext() != nullptr)
    {
        glbinding::refreshCurrentTable();
        glDeleteProgram(program);
    }
}

void PresentFrameGL_GL::presentFrame(const FramebufferParameterEventArg* arg)
{
    glbinding::refreshCurrentTable();
    const auto& frame = *static_cast<const FramebufferParameterGLEventArg*>(arg);

    const GLint savedVertexArray = fullscreen::getInteger(GL_VERTEX_ARRAY_BINDING);
    const GLint savedProgram = fullscreen::getInteger(GL_CURRENT_PROGRAM);
    const GLint savedUnit = fullscreen::getInteger(GL_ACTIVE_TEXTURE);
    const GLint savedTexture = fullscreen::getInteger(GL_TEXTURE_BINDING_2D);

    glViewport(0, 0, frame.getSize()[0], frame.getSize()[1]);
    if (program == 0)
    {
        buildProgram();
    }
    const GLuint vertexArray = fullscreen::bindVertexArray();
    glUseProgram(program);
    glActiveTexture(GL_TEXTURE1);
    fullscreen::bindNearest(frame.getDepthTexId());
    glActiveTexture(GL_TEXTURE0);
    fullscreen::bindNearest(frame.getColorTexId());
    glDrawArrays(GL_TRIANGLES, 0, 3);

    glBindVertexArray(static_cast<GLuint>(savedVertexArray));
    glUseProgram(static_cast<GLuint>(savedProgram));
    // The caller's 2D texture lands on unit 0, whatever unit was active; hosts bind their own before they draw.
    glBindTexture(GL_TEXTURE_2D, static_cast<GLuint>(savedTexture));
    glActiveTexture(static_cast<GLenum>(savedUnit));
    fullscreen::deleteVertexArray(vertexArray);
}

void PresentFrameGL_GL::buildProgram()
{
    program = fullscreen::buildProgram(vertexText, fragmentText);
}

} // namespace renderengine
