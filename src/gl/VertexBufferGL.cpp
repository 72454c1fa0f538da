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
    foundLocation = -1;
    foundInLink = 0;
    setDirty(true);
}

GLint VertexBufferGL::findLocation(const ShaderProgramGL& program) const
{
    if (foundInLink != program.getLinkStamp())
    {
        foundLocation = program.getAttribLocation(name);
        foundInLink = program.getLinkStamp();
    }
    return foundLocation;
}

GLint VertexBufferGL::bind(const ShaderProgramGL* program) const
{
    if (!getBuffer())
    {
        return -1;
    }
    glBindBuffer(GL_ARRAY_BUFFER, getBufferName());
    if (!program)
    {
        return -1;
    }
    const GLint location = findLocation(*program);
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
