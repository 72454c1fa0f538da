#pragma once

#include "gl/BaseResourceGL.h"

#include <glbinding/gl.h>

#include <atomic>
#include <cstdint>

namespace renderengine
{

class BufferGL;

/// A view on a buffer: says how its bytes are read and owns no GL object. It may outlive its buffer, which is null
/// then. Render thread only.
class BufferContainerGL : public BaseResourceGL
{
public:
    /// Unregisters the view from its buffer.
    ~BufferContainerGL() override;

    /// Unregisters the view from its buffer, which is null afterwards.
    void destroy() override;

    /// Moves the view to another buffer, not owned; null leaves it without one. Counts as a change also when the buffer
    /// stays: whatever else the view says changes with it.
    void setBuffer(BufferGL* newBuffer);
    /// The buffer below, or null.
    BufferGL* getBuffer() const { return buffer; }
    /// GL name of the buffer below, 0 without one. Kept here, so that a draw need not fetch the buffer.
    GLuint getBufferName() const { return bufferName; }

    /// Changes with everything that a draw reads from views: what they say and the names below them. What was read
    /// holds as long as it stays; never 0. It counts for all renderers of the process; any thread may ask.
    static uint64_t getChangeStamp() { return s_changeStamp.load(std::memory_order_relaxed); }

protected:
    static void countChange() { s_changeStamp.fetch_add(1, std::memory_order_relaxed); }

private:
    // BufferGL forgets its views when it goes, without being asked to unregister each.
    friend class BufferGL;

    static std::atomic<uint64_t> s_changeStamp;

    GLuint bufferName = 0;
    BufferGL* buffer = nullptr;
};

} // namespace renderengine
