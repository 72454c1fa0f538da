#pragma once

#include <renderengine/Export.h>

namespace renderengine
{

/// Code of the client that runs at its place among the commands.
///
/// It is always held by a std::shared_ptr made for the client's own type, which is what deletes it: there is no virtual
/// destructor. Marking that type final tells compilers that this is meant. The last holder may be a frame, so that it
/// is deleted on the render thread.
struct RENDERENGINE_API TaskInterface
{
    TaskInterface();
    TaskInterface(const TaskInterface& other);
    TaskInterface(TaskInterface&& other) noexcept;
    TaskInterface& operator=(const TaskInterface& other);
    TaskInterface& operator=(TaskInterface&& other) noexcept;

    /// Runs on the thread that executes the commands, with the device context current, once for each execution of its
    /// command. It must not call an operation of the context that waits for that thread, such as execute or flush.
    /// It leaves the pixel store (glPixelStore) and the binding of GL_PIXEL_PACK_BUFFER and GL_PIXEL_UNPACK_BUFFER as
    /// it found them: textures are read and written with them.
    virtual void run() = 0;
};

} // namespace renderengine
