#pragma once

#include <renderengine/FramebufferParameterEventArg.h>

namespace renderengine
{

class RendererGL41;

/// Argument of the OpenGL present steps: the GL names of the textures that hold the frame. Only the renderer fills it
/// in, each time before a present step runs.
class RENDERENGINE_API FramebufferParameterGLEventArg : public FramebufferParameterEventArg
{
public:
    FramebufferParameterGLEventArg() = default;

    /// GL name of the colour texture; 0 when there is none.
    unsigned int getColorTexId() const { return colorTexId; }

    /// GL name of the depth texture; 0 when there is none.
    unsigned int getDepthTexId() const { return depthTexId; }

private:
    friend class RendererGL41;

    void setColorTexId(unsigned int id) { colorTexId = id; }
    void setDepthTexId(unsigned int id) { depthTexId = id; }

    unsigned int colorTexId = 0;
    unsigned int depthTexId = 0;
};

} // namespace renderengine
