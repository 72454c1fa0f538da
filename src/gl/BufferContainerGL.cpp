#include "gl/BufferContainerGL.h"

#include "gl/BufferGL.h"

namespace renderengine
{

std::atomic<uint64_t> BufferContainerGL::s_changeStamp{1};

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
    countChange();
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
