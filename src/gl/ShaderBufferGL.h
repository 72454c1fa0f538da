#pragma once

#include "gl/BufferContainerGL.h"

#include <glbinding/gl.h>
#include <renderengine/ShaderBufferProperties.h>

#include <string>

namespace renderengine
{

/// A uniform or storage block read from a buffer. The block is found by name in the program.
class ShaderBufferGL : public BufferContainerGL
{
public:
    /// Takes the record and the buffer that its handle stands for, which may be null. Sets the view dirty.
    void create(const ShaderBufferProperties& properties, BufferGL* newBuffer);
    /// The same operation as create.
    void update(const ShaderBufferProperties& properties, BufferGL* newBuffer);

    /// Binds the buffer to an indexed binding point of the target (glBindBufferBase), 0 when there is no buffer.
    void bind(GLuint bindingPoint) const;

    const std::string& getName() const { return name; }
    /// GL_UNIFORM_BUFFER or GL_SHADER_STORAGE_BUFFER.
    GLenum getTarget() const { return target; }

private:
    std::string name;
    GLenum target = GL_UNIFORM_BUFFER;
};

} // namespace renderengine
