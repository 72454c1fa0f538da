#include "gl/ShaderBufferGL.h"

#include "gl/BufferGL.h"
#include "gl/ShaderProgramGL.h"

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
    foundBlock = GL_INVALID_INDEX;
    foundInLink = 0;
    setDirty(true);
}

GLuint ShaderBufferGL::findBlock(const ShaderProgramGL& program) const
{
    if (foundInLink != program.getLinkStamp())
    {
        foundBlock = program.getBlockIndex(target, name);
        foundInLink = program.getLinkStamp();
    }
    return foundBlock;
}

void ShaderBufferGL::bind(GLuint bindingPoint) const
{
    glBindBufferBase(target, bindingPoint, getBufferName());
}

} // namespace renderengine
