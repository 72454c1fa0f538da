#pragma once

#include <glbinding/gl.h>

#include <cstdint>
#include <mutex>

namespace renderengine
{

/// One GL sync object. insert() and wait() may come from different threads, each with a current context of the same
/// share group.
class FenceGL
{
public:
    /// mode 1 waits on the server (glWaitSync), any other value in the client (glClientWaitSync).
    explicit FenceGL(uint32_t waitMode = 1) : mode(waitMode) {}
    FenceGL(const FenceGL&) = delete;
    FenceGL& operator=(const FenceGL&) = delete;
    /// Makes no GL call: call release() first while a context is current.
    ~FenceGL() = default;

    /// Releases an earlier sync, puts a new one into the command stream and flushes.
    void insert();
    /// Waits for the sync. A server wait releases it afterwards. A client wait returns once the sync is signalled and
    /// keeps it; it never gives up, also when GL reports a failed wait. Logs an error when there is no sync.
    void wait();
    /// Deletes the sync. A sync that GL does not know stays in place.
    void release();
    /// True while there is a sync: not after a wait on the GPU, nor after an insert() that GL refused.
    bool holdsSync() const;

private:
    void releaseLocked();
    void waitInClient();
    static void reportStatus(GLenum status);

    const uint32_t mode;
    GLsync sync = nullptr;
    GLuint64 timeout = 0;
    bool verbose = false;
    mutable std::mutex mutex;
};

} // namespace renderengine
