#include "gl/VertexAttribute.h"

namespace renderengine
{

void VertexAttribute::bind() const
{
    glBindBuffer(GL_ARRAY_BUFFER, buffer);
    if (location >= 0)
    {
        glEnableVertexAttribArray(static_cast<GLuint>(location));
        sendPointer(offset);
        glVertexAttribDivisor(static_cast<GLuint>(location), divisor);
    }
}

void VertexAttribute::moveTo(uint32_t element) const
{
    glBindBuffer(GL_ARRAY_BUFFER, buffer);
    sendPointer(offset + element * static_cast<uint64_t>(stride != 0 ? static_cast<uint32_t>(stride) : elementSize));
}

void VertexAttribute::unbind() const
{
    if (location >= 0)
    {
        glDisableVertexAttribArray(static_cast<GLuint>(location));
    }
}

void VertexAttribute::sendPointer(uint64_t first) const
{
    glVertexAttribPointer(static_cast<GLuint>(location), componentCount, type, normalized, stride,
                          reinterpret_cast<const void*>(static_cast<uintptr_t>(first)));
}

} // namespace renderengine
