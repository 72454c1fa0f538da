#include "gl/BufferGL.h"

#include "gl/BufferContainerGL.h"
#include "gl/GLTables.h"

#include <renderengine/BufferProperties.h>

#include <algorithm>
#include <array>

namespace renderengine
{

namespace
{
// Read, write, both.
constexpr std::array<GLbitfield, 3> s_mapAccess{
    {GL_MAP_READ_BIT, GL_MAP_WRITE_BIT, GL_MAP_READ_BIT | GL_MAP_WRITE_BIT}};
} // namespace

BufferGL::~BufferGL()
{
    detachContainers();
}

void BufferGL::writeData(const BufferProperties& properties)
{
    usage = *gltables::bufferUsages.find(properties.kind & 3u);
    size = properties.size;
    glBindBuffer(GL_ARRAY_BUFFER, name);
    glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(size), properties.data, usage);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    // A new store ends the mapping of the old one.
    mappedPointer = nullptr;
    setContainersDirty();
}

void BufferGL::create(const BufferProperties& properties)
{
    glGenBuffers(1, &name);
    for (BufferContainerGL* container : containers)
    {
        container->bufferName = name;
    }
    BufferContainerGL::countChange();
    writeData(properties);
}

void BufferGL::update(const BufferProperties& properties)
{
    writeData(properties);
}

void BufferGL::resize(uint64_t newSize)
{
    glBindBuffer(GL_ARRAY_BUFFER, name);
    glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(newSize), nullptr, usage);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    size = newSize;
    mappedPointer = nullptr;
    setContainersDirty();
}

void BufferGL::map(uint64_t offset, uint64_t length, uint32_t access)
{
    if (mappedPointer || access >= s_mapAccess.size())
    {
        return;
    }
    glBindBuffer(GL_ARRAY_BUFFER, name);
    mappedPointer = glMapBufferRange(GL_ARRAY_BUFFER, static_cast<GLintptr>(offset), static_cast<GLsizeiptr>(length),
                                     s_mapAccess[access]);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    if (s_mapAccess[access] & GL_MAP_WRITE_BIT)
    {
        setContainersDirty();
    }
}

void BufferGL::unmap()
{
    glBindBuffer(GL_ARRAY_BUFFER, name);
    glUnmapBuffer(GL_ARRAY_BUFFER);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    mappedPointer = nullptr;
}

void BufferGL::copy(const BufferGL& destination, uint64_t sourceOffset, uint64_t destinationOffset,
                    uint64_t byteCount) const
{
    glBindBuffer(GL_COPY_WRITE_BUFFER, destination.name);
    glBindBuffer(GL_COPY_READ_BUFFER, name);
    GLint64 fullSize = 0;
    glGetBufferParameteri64v(GL_COPY_READ_BUFFER, GL_BUFFER_SIZE, &fullSize);
    const bool takesPart = byteCount > 0 && byteCount <= static_cast<uint64_t>(fullSize);
    glCopyBufferSubData(GL_COPY_READ_BUFFER, GL_COPY_WRITE_BUFFER, static_cast<GLintptr>(sourceOffset),
                        static_cast<GLintptr>(destinationOffset),
                        static_cast<GLsizeiptr>(takesPart ? byteCount : static_cast<uint64_t>(fullSize)));
    glBindBuffer(GL_COPY_WRITE_BUFFER, 0);
    glBindBuffer(GL_COPY_READ_BUFFER, 0);
}

void BufferGL::destroy()
{
    detachContainers();
    if (glIsBuffer(name))
    {
        glDeleteBuffers(1, &name);
    }
    name = 0;
    mappedPointer = nullptr;
}

void BufferGL::addContainer(BufferContainerGL* container)
{
    containers.push_back(container);
}

void BufferGL::removeContainer(BufferContainerGL* container)
{
    containers.erase(std::remove(containers.begin(), containers.end(), container), containers.end());
}

void BufferGL::detachContainers()
{
    if (containers.empty())
    {
        return;
    }
    for (BufferContainerGL* container : containers)
    {
        container->buffer = nullptr;
        container->bufferName = 0;
    }
    BufferContainerGL::countChange();
    containers.clear();
}

void BufferGL::setContainersDirty()
{
    for (BufferContainerGL* container : containers)
    {
        container->setDirty(true);
    }
}

} // namespace renderengine
