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
    if (!program)
    {
        glBindBuffer(GL_ARRAY_BUFFER, getBufferName());
        return -1;
    }
    const VertexAttribute attribute = getAttribute(*program);
    attribute.bind();
    return attribute.location;
}

VertexAttribute VertexBufferGL::getAttribute(const ShaderProgramGL& program) const
{
    VertexAttribute attribute;
    attribute.buffer = getBufferName();
    attribute.location = findLocation(program);
    attribute.componentCount = componentCount;
    attribute.type = type;
    attribute.stride = stride;
    attribute.elementSize = properties.componentCount * properties.dataType.getSize();
    attribute.divisor = divisor;
    attribute.normalized = normalized;
    attribute.offset = offset;
    return attribute;
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
