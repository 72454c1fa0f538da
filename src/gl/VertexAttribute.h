#pragma once

#include <glbinding/gl.h>

#include <cstdint>

namespace renderengine
{

/// A vertex attribute of a program and where it is read from. Render thread only, with the context current.
struct VertexAttribute
{
    GLuint buffer = 0;
    /// -1 when the program lacks it.
    GLint location = -1;
    GLint componentCount = 4;
    GLenum type = GL_FLOAT;
    /// Bytes from one element to the next, 0 for tightly packed ones.
    GLsizei stride = 0;
    /// Bytes of one element.
    uint32_t elementSize = 0;
    GLuint divisor = 0;
    GLboolean normalized = GL_FALSE;
    /// Byte offset of the first element.
    uint64_t offset = 0;

    /// Binds the buffer to GL_ARRAY_BUFFER, where it stays bound, and enables the attribute and points it at the
    /// buffer. One that the program lacks is not enabled.
    void bind() const;

    /// The same for an attribute that is enabled already and starts at another element.
    void moveTo(uint32_t element) const;

    /// Disables the attribute, if the program has it.
    void unbind() const;

private:
    void sendPointer(uint64_t first) const;
};

} // namespace renderengine
