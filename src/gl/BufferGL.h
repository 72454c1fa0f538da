#pragma once

#include "gl/BaseResourceGL.h"

#include <glbinding/gl.h>

#include <cstdint>
#include <vector>

namespace renderengine
{

class BufferContainerGL;
struct BufferProperties;

/// One GL buffer object. All work goes through GL_ARRAY_BUFFER, whatever the buffer is used for, and leaves 0 bound
/// there; copy() uses the two copy targets instead.
///
/// Render thread only, with the context current. The mapped memory itself may be used from any thread between map() and
/// the next unmap(), update(), resize() or destroy().
class BufferGL : public BaseResourceGL
{
public:
    /// Detaches the registered views; makes no GL call.
    ~BufferGL() override;

    /// Generates the name and stores properties.data, which may be null: the contents are then undefined.
    void create(const BufferProperties& properties);
    /// Reallocates the store with the size, usage and data of the record. Ends a mapping.
    void update(const BufferProperties& properties);
    /// Reallocates the store with newSize bytes, also when the size is unchanged. The contents are lost, a mapping
    /// ends.
    void resize(uint64_t newSize);
    /// Maps a range (glMapBufferRange). access: 0 read, 1 write, 2 both; any other value maps nothing. A buffer that is
    /// mapped already keeps its mapping. A read mapping leaves the views clean, the others set them dirty.
    void map(uint64_t offset, uint64_t length, uint32_t access);
    /// Ends the mapping (glUnmapBuffer).
    void unmap();
    /// Copies from this buffer into destination (glCopyBufferSubData). A byteCount of 0 or above this buffer's size
    /// means the whole of this buffer, whatever the offsets are. Leaves the views of both buffers clean.
    void copy(const BufferGL& destination, uint64_t sourceOffset, uint64_t destinationOffset, uint64_t byteCount) const;
    /// Deletes the buffer object. The registered views stay valid, with a null buffer.
    void destroy() override;

    /// Registers a view, not owned. Called by BufferContainerGL::setBuffer.
    void addContainer(BufferContainerGL* container);
    void removeContainer(BufferContainerGL* container);

    /// Size in bytes.
    uint64_t getSize() const { return size; }
    /// GL buffer name, 0 before create and after destroy.
    GLuint getName() const { return name; }
    /// GL usage hint.
    GLenum getUsage() const { return usage; }
    /// Present mapping, null when there is none or the map failed.
    void* getMappedPointer() const { return mappedPointer; }
    const std::vector<BufferContainerGL*>& getContainers() const { return containers; }

private:
    void writeData(const BufferProperties& properties);
    void detachContainers();
    void setContainersDirty();

    uint64_t size = 0;
    GLuint name = 0;
    GLenum usage = GL_STATIC_DRAW;
    void* mappedPointer = nullptr;
    std::vector<BufferContainerGL*> containers;
};

} // namespace renderengine
