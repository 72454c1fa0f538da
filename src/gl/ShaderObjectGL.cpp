#include "gl/ShaderObjectGL.h"

#include "gl/GLTables.h"

namespace renderengine
{

bool ShaderObjectGL::compile(const ShaderObjectProperties& properties)
{
    const GLenum* newStage = gltables::shaderStages.find(properties.stage);
    if (!newStage)
    {
        return false;
    }
    stage = *newStage;
    id = glCreateShader(stage);
    const GLchar* const source = properties.source.c_str();
    glShaderSource(id, 1, &source, nullptr);
    glCompileShader(id);
    GLint status = GL_FALSE;
    glGetShaderiv(id, GL_COMPILE_STATUS, &status);
    return status != GL_FALSE;
}

void ShaderObjectGL::getInfoLog(std::string& text) const
{
    GLint length = 0;
    glGetShaderiv(id, GL_INFO_LOG_LENGTH, &length);
    if (length > 1)
    {
        text.resize(static_cast<size_t>(length));
        glGetShaderInfoLog(id, length, nullptr, text.data());
    }
}

void ShaderObjectGL::destroy()
{
    if (glIsShader(id))
    {
        glDeleteShader(id);
    }
    id = 0;
}

} // namespace renderengine
