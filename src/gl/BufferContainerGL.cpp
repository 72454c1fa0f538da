#include "gl/BufferContainerGL.h"

#include "gl/BufferGL.h"

namespace renderengine
{

BufferContainerGL::~BufferContainerGL()
{
    setBuffer(nullptr);
}

void BufferContainerGL::destroy()
{
    setBuffer(nullptr);
}

void BufferContainerGL::setBuffer(BufferGL* newBuffer)
{
    if (buffer)
    {
        buffer->removeContainer(this);
    }
    buffer = newBuffer;
    bufferName = buffer ? buffer->getName() : 0;
    if (buffer)
    {
        buffer->addContainer(this);
    }
}

} // namespace renderengine
