#include "present/FullScreenPass.h"

#include <kavelor/SoPreferences.h>

namespace renderengine
{

namespace fullscreen
{

namespace
{

void attachShader(GLuint program, GLenum stage, const char* text)
{
    const GLuint shader = glCreateShader(stage);
    glShaderSource(shader, 1, &text, nullptr);
    glCompileShader(shader);
    glAttachShader(program, shader);
    glDeleteShader(shader);
}

} // namespace

GLuint buildProgram(const char* vertexText, const char* fragmentText)
{
    const GLuint program = glCreateProgram();
    attachShader(program, GL_VERTEX_SHADER, vertexText);
    attachShader(program, GL_FRAGMENT_SHADER, fragmentText);
    glBindAttribLocation(program, 0, "vertex");
    glLinkProgram(program);
    glUseProgram(program);
    glUniform1i(glGetUniformLocation(program, "tex0"), 0);
    glUniform1i(glGetUniformLocation(program, "depthTex"), 1);
    return program;
}

GLuint bindVertexArray()
{
    static const bool s_useGLCore = SoPreferences::getBool("KVR_RENDERENGINE_USE_GLCORE", false);
    GLuint vertexArray = 0;
    if (s_useGLCore)
    {
        glGenVertexArrays(1, &vertexArray);
    }
    glBindVertexArray(vertexArray);
    return vertexArray;
}

void deleteVertexArray(GLuint vertexArray)
{
    if (vertexArray != 0)
    {
        glDeleteVertexArrays(1, &vertexArray);
    }
}

void bindNearest(GLuint texture)
{
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
}

GLint getInteger(GLenum name)
{
    GLint value = 0;
    glGetIntegerv(name, &value);
    return value;
}

} // namespace fullscreen

} // namespace renderengine
