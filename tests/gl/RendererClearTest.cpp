#include "RendererFixture.h"

namespace renderengine
{
namespace
{

using RendererGL41ClearTest = RendererGLTest;

const Texts maskQueries = {
    "glIsEnabled(GL_SCISSOR_TEST)",
    "glIsEnabled(GL_DEPTH_TEST)",
    "glIsEnabled(GL_STENCIL_TEST)",
    "glGetBooleanv(GL_DEPTH_WRITEMASK, <pointer>)",
    "glGetIntegerv(GL_STENCIL_WRITEMASK, <pointer>)",
    "glGetBooleani_v(GL_COLOR_WRITEMASK, 0, <pointer>)",
    "glGetBooleani_v(GL_COLOR_WRITEMASK, 1, <pointer>)",
    "glGetBooleani_v(GL_COLOR_WRITEMASK, 2, <pointer>)",
    "glGetBooleani_v(GL_COLOR_WRITEMASK, 3, <pointer>)",
    "glGetBooleani_v(GL_COLOR_WRITEMASK, 4, <pointer>)",
    "glGetBooleani_v(GL_COLOR_WRITEMASK, 5, <pointer>)",
    "glGetBooleani_v(GL_COLOR_WRITEMASK, 6, <pointer>)",
    "glGetBooleani_v(GL_COLOR_WRITEMASK, 7, <pointer>)",
};

TEST_F(RendererGL41ClearTest, MissingTargetMakesNoCall)
{
    EXPECT_EQ(callsOf<CommandClearRT>(RenderTargetHandle(), ClearTargetProperties()), Texts{});
    EXPECT_EQ(callsOf<CommandClearRT>(RenderTargetHandle(3), ClearTargetProperties()), Texts{});
}

TEST_F(RendererGL41ClearTest, UnknownStateIsAskedFromGL)
{
    const RenderTargetHandle target = makeRenderTarget({0, 1, 17, 18});
    ClearTargetProperties properties;
    properties.colors[0] = SbVec4f(1, 0.5f, 0.25f, 1);
    properties.stencil = 7;
    gl.answer(GL_STENCIL_WRITEMASK, int64_t{-1});
    EXPECT_EQ(callsOf<CommandClearRT>(target, properties),
              join({{"glBindFramebuffer(GL_FRAMEBUFFER, 1)"},
                    maskQueries,
                    {"glClearBufferfv(GL_COLOR, 0, {1, 0.5, 0.25, 1})", "glClearBufferfv(GL_COLOR, 1, {0, 0, 0, 0})",
                     "glClearBufferfv(GL_DEPTH, 0, {1})", "glClearBufferiv(GL_STENCIL, 0, {7})"}}));
}

TEST_F(RendererGL41ClearTest, UnknownStateBindsATargetThatCountsAsBound)
{
    const RenderTargetHandle target = makeRenderTarget();
    callsOf<CommandClearRT>(target, ClearTargetProperties());
    EXPECT_EQ(callsOf<CommandClearRT>(target, ClearTargetProperties()).front(), "glBindFramebuffer(GL_FRAMEBUFFER, 1)");
}

TEST_F(RendererGL41ClearTest, KnownStateNeedsNoQueryAndNoBind)
{
    const Scene scene = makeScene();
    drawCalls(scene);
    EXPECT_EQ(callsOf<CommandClearRT>(scene.shaderState.renderTarget, ClearTargetProperties()),
              Texts{"glClearBufferfv(GL_COLOR, 0, {0, 0, 0, 0})"});
}

TEST_F(RendererGL41ClearTest, ScissorIsSwitchedOffAndLeftToTheNextDraw)
{
    Scene scene = makeScene();
    scene.gfxState.scissor.enable = true;
    updateState(scene);
    drawCalls(scene);
    EXPECT_EQ(callsOf<CommandClearRT>(scene.shaderState.renderTarget, ClearTargetProperties()),
              (Texts{"glDisable(GL_SCISSOR_TEST)", "glClearBufferfv(GL_COLOR, 0, {0, 0, 0, 0})"}));
    const Texts draw = drawCalls(scene);
    EXPECT_EQ(draw.at(0), "glEnable(GL_SCISSOR_TEST)");
    EXPECT_EQ(draw.at(1), "glScissor(0, 0, 0, 0)");
}

TEST_F(RendererGL41ClearTest, MasksEndAsTheCommandSays)
{
    Scene scene = makeScene();
    scene.gfxState.colorOutput.targets[0].writeRed = false;
    scene.gfxState.depthStencil.depthTest = false;
    scene.gfxState.depthStencil.depthWrite = false;
    scene.gfxState.depthStencil.stencilTest = true;
    scene.gfxState.depthStencil.front.readMask = 0x0F;
    scene.gfxState.depthStencil.front.writeMask = 0x01;
    updateState(scene);
    drawCalls(scene);
    ClearTargetProperties properties;
    properties.flags = 1;
    properties.stencilWriteMask = 0xF0;
    EXPECT_EQ(
        callsOf<CommandClearRT>(scene.shaderState.renderTarget, properties),
        (Texts{"glColorMaski(0, GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE)", "glClearBufferfv(GL_COLOR, 0, {0, 0, 0, 0})",
               "glDepthMask(GL_TRUE)", "glStencilMaskSeparate(GL_FRONT_AND_BACK, 255)",
               "glColorMaski(0, GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE)",
               "glStencilMaskSeparate(GL_FRONT_AND_BACK, 240)"}));
    // The next draw finds its own masks changed and sends both groups again.
    const Texts draw = drawCalls(scene);
    EXPECT_EQ(draw.at(0), "glColorMaski(0, GL_FALSE, GL_TRUE, GL_TRUE, GL_TRUE)");
    EXPECT_EQ(std::count(draw.begin(), draw.end(), "glStencilMaskSeparate(GL_FRONT, 1)"), 1);
}

TEST_F(RendererGL41ClearTest, DepthIsWritableDuringTheClearWhenTheTestIsOn)
{
    Scene scene = makeScene();
    scene.gfxState.depthStencil.depthWrite = false;
    scene.shaderState.renderTarget = makeRenderTarget({17});
    updateState(scene);
    drawCalls(scene);
    ClearTargetProperties properties;
    properties.depthWrite = false;
    EXPECT_EQ(callsOf<CommandClearRT>(scene.shaderState.renderTarget, properties),
              (Texts{"glDepthMask(GL_TRUE)", "glClearBufferfv(GL_DEPTH, 0, {1})", "glDepthMask(GL_FALSE)"}));
}

TEST_F(RendererGL41ClearTest, DepthOfACombinedAttachmentClearsStencilToo)
{
    Scene scene = makeScene();
    scene.shaderState.renderTarget = makeRenderTarget({19});
    updateState(scene);
    drawCalls(scene);
    ClearTargetProperties properties;
    properties.flags = 2;
    properties.depth = 0.5f;
    properties.stencil = 3;
    EXPECT_EQ(callsOf<CommandClearRT>(scene.shaderState.renderTarget, properties),
              Texts{"glClearBufferfi(GL_DEPTH_STENCIL, 0, 0.5, 3)"});
    properties.flags = 1;
    EXPECT_EQ(callsOf<CommandClearRT>(scene.shaderState.renderTarget, properties), Texts{});
}

TEST_F(RendererGL41ClearTest, BlitCopiesBetweenTargetsAndForgetsTheBinding)
{
    const Scene scene = makeScene();
    drawCalls(scene);
    const RenderTargetHandle destination = makeRenderTarget();
    BlitProperties properties;
    properties.source = SbVec4i32(0, 1, 2, 3);
    properties.destination = SbVec4i32(4, 5, 6, 7);
    properties.flags = 5;
    properties.filter = 2;
    EXPECT_EQ(callsOf<CommandBlit>(scene.shaderState.renderTarget, destination, properties),
              (Texts{"glBindFramebuffer(GL_READ_FRAMEBUFFER, 1)", "glBindFramebuffer(GL_DRAW_FRAMEBUFFER, 2)",
                     "glBlitFramebuffer(0, 1, 2, 3, 4, 5, 6, 7, GL_COLOR_BUFFER_BIT | GL_STENCIL_BUFFER_BIT, "
                     "GL_LINEAR)"}));
    EXPECT_EQ(drawCalls(scene).front(), "glBindFramebuffer(GL_FRAMEBUFFER, 1)");
    properties.flags = 2;
    properties.filter = 1;
    EXPECT_EQ(callsOf<CommandBlit>(destination, scene.shaderState.renderTarget, properties).back(),
              "glBlitFramebuffer(0, 1, 2, 3, 4, 5, 6, 7, GL_DEPTH_BUFFER_BIT, GL_NEAREST)");
}

TEST_F(RendererGL41ClearTest, BlitWithOneInvalidTargetIsIgnoredInSilence)
{
    const RenderTargetHandle target = makeRenderTarget();
    EXPECT_EQ(callsOf<CommandBlit>(target, RenderTargetHandle(), BlitProperties()), Texts{});
    EXPECT_EQ(callsOf<CommandBlit>(RenderTargetHandle(8), target, BlitProperties()), Texts{});
}

} // namespace
} // namespace renderengine
