#include "gl/ShaderBufferGL.h"

#include "gl/BufferGL.h"

namespace renderengine
{

void ShaderBufferGL::create(const ShaderBufferProperties& properties, BufferGL* newBuffer)
{
    update(properties, newBuffer);
}

void ShaderBufferGL::update(const ShaderBufferProperties& properties, BufferGL* newBuffer)
{
    setBuffer(newBuffer);
    name = properties.name;
    target = properties.kind == 0 ? GL_SHADER_STORAGE_BUFFER : GL_UNIFORM_BUFFER;
    setDirty(true);
}

void ShaderBufferGL::bind(GLuint bindingPoint) const
{
    glBindBufferBase(target, bindingPoint, getBuffer() ? getBuffer()->getName() : 0);
}

} // namespace renderengine
