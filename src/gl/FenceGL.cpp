#include "gl/FenceGL.h"

#include <spdlog/spdlog.h>

namespace renderengine
{

void FenceGL::insert()
{
    const std::lock_guard<std::mutex> lock(mutex);
    releaseLocked();
    sync = glFenceSync(GL_SYNC_GPU_COMMANDS_COMPLETE, 0);
    glFlush();
}

void FenceGL::wait()
{
    const std::lock_guard<std::mutex> lock(mutex);
    if (!sync || !glIsSync(sync))
    {
        spdlog::error("[FenceGL] Fence creation failed");
        return;
    }
    if (mode != 1)
    {
        waitInClient();
        return;
    }
    // A server wait returns no status.
    const GLenum status = 0;
    glWaitSync(sync, 0, GL_TIMEOUT_IGNORED);
    if (verbose)
    {
        reportStatus(status);
    }
    releaseLocked();
}

void FenceGL::waitInClient()
{
    GLbitfield flags = 0;
    while (true)
    {
        if (timeout == 0)
        {
            GLint64 longest = 0;
            glGetInteger64v(GL_MAX_SERVER_WAIT_TIMEOUT, &longest);
            timeout = static_cast<GLuint64>(longest);
        }
        const GLenum status = glClientWaitSync(sync, flags, timeout);
        if (status == GL_ALREADY_SIGNALED || status == GL_CONDITION_SATISFIED)
        {
            return;
        }
        flags = GL_SYNC_FLUSH_COMMANDS_BIT;
    }
}

void FenceGL::reportStatus(GLenum status)
{
    switch (status)
    {
    case GL_ALREADY_SIGNALED:
        spdlog::error("[FenceGL] Fence condition not satisfied : Already signaled");
        break;
    case GL_TIMEOUT_EXPIRED:
        spdlog::error("[FenceGL] Fence condition not satisfied : Timeout");
        break;
    case GL_CONDITION_SATISFIED:
        spdlog::error("[FenceGL] Fence condition satisfied");
        break;
    case GL_WAIT_FAILED:
        spdlog::error("[FenceGL] Fence condition not satisfied : Wait failed");
        break;
    default:
        break;
    }
}

void FenceGL::release()
{
    const std::lock_guard<std::mutex> lock(mutex);
    releaseLocked();
}

void FenceGL::releaseLocked()
{
    if (sync && glIsSync(sync))
    {
        glDeleteSync(sync);
        sync = nullptr;
    }
}

bool FenceGL::holdsSync() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return sync != nullptr;
}

} // namespace renderengine
