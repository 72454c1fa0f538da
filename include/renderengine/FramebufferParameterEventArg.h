#pragma once

#include <renderengine/Export.h>

#include <kavelor/SbVec.h>

namespace renderengine
{

/// Argument of the present steps: what every back end tells about the framebuffer. A back end passes a class derived
/// from this one, which the present step that belongs to it reads.
class RENDERENGINE_API FramebufferParameterEventArg
{
public:
    FramebufferParameterEventArg() = default;

    /// Width and height of the frame in pixels.
    const SbVec2i32& getSize() const { return size; }

    /// Sets width and height of the frame in pixels.
    void setSize(const SbVec2i32& newSize) { size = newSize; }

private:
    SbVec2i32 size;
};

} // namespace renderengine
