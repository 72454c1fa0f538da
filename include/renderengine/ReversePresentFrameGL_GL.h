#pragma once

#include <renderengine/Export.h>
#include <renderengine/ReversePresentFrame.h>

#include <kavelor/SbVec.h>

#include <cstdint>

namespace renderengine
{

/// Copies colour and depth of the framebuffer that is bound for drawing into the engine's two textures: by one blit,
/// or, where the formats may not fit, through a framebuffer of known format and a shader copy.
///
/// The shader copy changes the viewport and the 2D bindings of units 0 and 1, and copies no stencil; its depth takes
/// effect only when the caller has the depth test on.
class RENDERENGINE_API ReversePresentFrameGL_GL : public ReversePresentFrame
{
public:
    ReversePresentFrameGL_GL() = default;
    ReversePresentFrameGL_GL(const ReversePresentFrameGL_GL&) = delete;
    ReversePresentFrameGL_GL& operator=(const ReversePresentFrameGL_GL&) = delete;

    /// Deletes its objects; a context must be current for that.
    ~ReversePresentFrameGL_GL() override;

    /// \p arg is a `FramebufferParameterGLEventArg`. Does nothing when one of its names is not a texture. Runs on the
    /// calling thread, with a context current that shares with the renderer's.
    void reversePresentFrame(const FramebufferParameterEventArg* arg) override;

private:
    void copyFramebuffer(const SbVec2i32& size, unsigned int color, unsigned int depth, unsigned int savedDraw);

    void bindDrawFBO(unsigned int color, unsigned int depth);
    bool isDrawFBOValid(unsigned int color, unsigned int depth) const;
    void destroyDrawFBO();

    int bindCompatibleDrawFBO(const SbVec2i32& size);
    bool isCompatibleDrawFBOValid() const;
    void destroyCompatibleDrawFBO();

    unsigned int getCompatibleColorTexId(const SbVec2i32& size);
    unsigned int getCompatibleDepthTexId(const SbVec2i32& size);
    void destroyCompatColorTex();
    void destroyCompatDepthTex();

    unsigned int getCopyFramebuffersShader();
    void destroyCopyFramebuffersShader();
    void copyFramebuffersWithShader(const SbVec2i32& size);

    bool isReadFBOCompatible() const;
    bool isNVidia() const;

    uint32_t drawFBO = 0;           ///< framebuffer on the engine's textures
    uint32_t compatibleDrawFBO = 0; ///< intermediate framebuffer
    uint32_t compatColorTex = 0;    ///< colour of the intermediate framebuffer, with the size of the first frame
    uint32_t compatDepthTex = 0;    ///< depth of the intermediate framebuffer, likewise
    uint32_t copyFramebuffersShader = 0;
    mutable int32_t nvidiaState = -1; ///< -1 not yet known, 0 no, 1 yes
};

} // namespace renderengine
