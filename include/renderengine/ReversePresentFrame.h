#pragma once

#include <renderengine/Export.h>

namespace renderengine
{

class FramebufferParameterEventArg;

/// Takes what the framebuffer of the host application holds into the textures of the engine, so that the engine can
/// draw over a picture that somebody else began. Each back end derives its own form.
class RENDERENGINE_API ReversePresentFrame
{
public:
    ReversePresentFrame() = default;
    ReversePresentFrame(const ReversePresentFrame&) = default;
    ReversePresentFrame(ReversePresentFrame&&) = default;
    ReversePresentFrame& operator=(const ReversePresentFrame&) = default;
    ReversePresentFrame& operator=(ReversePresentFrame&&) = default;
    virtual ~ReversePresentFrame() = default;

    /// Reads the framebuffer that is bound into the textures that \p arg names. Runs on the calling thread, whose
    /// device context is current and shares with that of the renderer. \p arg is the class that belongs to this form.
    virtual void reversePresentFrame(const FramebufferParameterEventArg* arg) = 0;
};

} // namespace renderengine
