#pragma once

#include "gl/BufferContainerGL.h"
#include "gl/VertexAttribute.h"

#include <glbinding/gl.h>
#include <renderengine/VertexBufferProperties.h>

#include <string>

namespace renderengine
{

class ShaderProgramGL;

/// A vertex attribute read from a buffer. The attribute is found by name in the program.
class VertexBufferGL : public BufferContainerGL
{
public:
    /// Takes the record and the buffer that its handle stands for, which may be null. Sets the view dirty.
    void create(const VertexBufferProperties& newProperties, BufferGL* newBuffer);
    /// The same operation as create.
    void update(const VertexBufferProperties& newProperties, BufferGL* newBuffer);

    /// Binds the buffer to GL_ARRAY_BUFFER, where it stays bound, and points the program's attribute of this name at
    /// it. Returns the attribute's location, or -1 when the program is null or lacks the attribute. Without a buffer
    /// there is no GL call and the result is -1.
    GLint bind(const ShaderProgramGL* program) const;
    /// The attribute of the program that bind() binds, with location -1 when the program lacks it.
    VertexAttribute getAttribute(const ShaderProgramGL& program) const;
    /// Disables the attribute. A negative location is looked up by name first. Does nothing with a null program.
    void unbind(const ShaderProgramGL* program, GLint location) const;

    GLint getComponentCount() const { return componentCount; }
    /// GL data type of one component.
    GLenum getType() const { return type; }
    GLboolean getNormalized() const { return normalized; }
    /// Bytes from one element to the next, 0 for tightly packed ones.
    GLsizei getStride() const { return stride; }
    GLuint getDivisor() const { return divisor; }
    /// Byte offset of the first element.
    uint64_t getOffset() const { return offset; }
    const std::string& getName() const { return name; }
    const VertexBufferProperties& getProperties() const { return properties; }

private:
    GLint findLocation(const ShaderProgramGL& program) const;

    GLint componentCount = 4;
    GLenum type = GL_FLOAT;
    GLboolean normalized = GL_FALSE;
    GLsizei stride = 0;
    GLuint divisor = 0;
    // The last answer of a program: a name is looked up once for each program that the view is drawn with in turn.
    mutable GLint foundLocation = -1;
    uint64_t offset = 0;
    mutable uint64_t foundInLink = 0;
    std::string name;
    VertexBufferProperties properties;
};

} // namespace renderengine
