#include "gl/VertexBufferGL.h"

#include "gl/BufferGL.h"
#include "gl/GLTables.h"
#include "gl/ShaderProgramGL.h"

#include <cstdint>

namespace renderengine
{

void VertexBufferGL::create(const VertexBufferProperties& newProperties, BufferGL* newBuffer)
{
    update(newProperties, newBuffer);
}

void VertexBufferGL::update(const VertexBufferProperties& newProperties, BufferGL* newBuffer)
{
    const GLenum* newType = gltables::dataTypes.find(newProperties.dataType.getType());
    if (!newType)
    {
        return;
    }
    setBuffer(newBuffer);
    properties = newProperties;
    componentCount = properties.componentCount;
    type = *newType;
    normalized = properties.normalized ? GL_TRUE : GL_FALSE;
    stride = static_cast<GLsizei>(properties.stride);
    divisor = properties.divisor;
    offset = properties.offset;
    name = properties.name;
    setDirty(true);
}

GLint VertexBufferGL::bind(const ShaderProgramGL* program) const
{
    if (!getBuffer())
    {
        return -1;
    }
    glBindBuffer(GL_ARRAY_BUFFER, getBuffer()->getName());
    if (!program)
    {
        return -1;
    }
    const GLint location = program->getAttribLocation(name);
    if (location < 0)
    {
        return location;
    }
    const auto index = static_cast<GLuint>(location);
    glEnableVertexAttribArray(index);
    glVertexAttribPointer(index, componentCount, type, normalized, stride,
                          reinterpret_cast<const void*>(static_cast<uintptr_t>(offset)));
    glVertexAttribDivisor(index, divisor);
    return location;
}

void VertexBufferGL::unbind(const ShaderProgramGL* program, GLint location) const
{
    if (!program)
    {
        return;
    }
    if (location < 0)
    {
        location = program->getAttribLocation(name);
    }
    if (location >= 0)
    {
        glDisableVertexAttribArray(static_cast<GLuint>(location));
    }
}

} // namespace renderengine
