#pragma once

#include "gl/BufferContainerGL.h"

#include <glbinding/gl.h>
#include <renderengine/IndexBufferProperties.h>

namespace renderengine
{

/// Indices read from a buffer.
class IndexBufferGL : public BufferContainerGL
{
public:
    /// Takes the record and the buffer that its handle stands for, which may be null. Sets the view dirty.
    void create(const IndexBufferProperties& properties, BufferGL* newBuffer);
    /// The same operation as create.
    void update(const IndexBufferProperties& properties, BufferGL* newBuffer);

    /// GL data type of one index.
    GLenum getType() const { return type; }
    /// Bytes of one index.
    uint32_t getIndexSize() const { return indexSize; }

private:
    GLenum type = GL_UNSIGNED_INT;
    uint32_t indexSize = 4;
};

} // namespace renderengine
