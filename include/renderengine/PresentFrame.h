#pragma once

#include <renderengine/Export.h>

namespace renderengine
{

class FramebufferParameterEventArg;

/// Puts a finished frame on the framebuffer of the host application. Each back end derives its own form.
class RENDERENGINE_API PresentFrame
{
public:
    PresentFrame() = default;
    PresentFrame(const PresentFrame&) = default;
    PresentFrame(PresentFrame&&) = default;
    PresentFrame& operator=(const PresentFrame&) = default;
    PresentFrame& operator=(PresentFrame&&) = default;
    virtual ~PresentFrame() = default;

    /// Writes the frame that \p arg describes to the framebuffer that is bound. Runs on the calling thread, whose
    /// device context is current and shares with that of the renderer. \p arg is the class that belongs to this form.
    virtual void presentFrame(const FramebufferParameterEventArg* arg) = 0;
};

} // namespace renderengine
