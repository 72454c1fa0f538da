#pragma once

#include <renderengine/Export.h>
#include <renderengine/PresentFrame.h>

#include <cstdint>

namespace renderengine
{

/// Draws the engine's colour and depth textures into the framebuffer that is bound, with one triangle that covers it,
/// so that later drawing of the host application is tested against the engine's depth.
///
/// It changes the viewport, the filters of the two textures, and the 2D bindings of units 0 and 1. Program, vertex
/// array and active unit are put back. Depth test, depth mask, blending and the rest are the caller's.
class RENDERENGINE_API PresentFrameGL_GL : public PresentFrame
{
public:
    PresentFrameGL_GL() = default;
    PresentFrameGL_GL(const PresentFrameGL_GL&) = delete;
    PresentFrameGL_GL& operator=(const PresentFrameGL_GL&) = delete;

    /// Deletes the program when a context is current, and leaves it to the context otherwise.
    ~PresentFrameGL_GL() override;

    /// \p arg is a `FramebufferParameterGLEventArg`. Runs on the calling thread, with a context current that shares
    /// with the renderer's.
    void presentFrame(const FramebufferParameterEventArg* arg) override;

private:
    void buildProgram();

    uint32_t program = 0; ///< made by the first frame
};

} // namespace renderengine
