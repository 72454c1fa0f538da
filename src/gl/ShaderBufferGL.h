#pragma once

#include "gl/BufferContainerGL.h"

#include <glbinding/gl.h>
#include <renderengine/ShaderBufferProperties.h>

#include <cstdint>
#include <string>

namespace renderengine
{

class ShaderProgramGL;

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

    /// Index of the block in the program, GL_INVALID_INDEX when the program lacks it. The last answer is kept: a name
    /// is looked up once for each program that the buffer is drawn with in turn.
    GLuint findBlock(const ShaderProgramGL& program) const;

private:
    // Beside the buffer's name, so that a draw fetches one line of memory.
    GLenum target = GL_UNIFORM_BUFFER;
    mutable GLuint foundBlock = GL_INVALID_INDEX;
    mutable uint64_t foundInLink = 0;
    std::string name;
};

} // namespace renderengine
