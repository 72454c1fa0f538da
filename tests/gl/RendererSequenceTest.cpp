// Whole sequences of calls for the ways in which a draw, a clear or a merge can go.

#include "RendererFixture.h"

#include <kavelor/SoPreferences.h>

#include <algorithm>

namespace renderengine
{
namespace
{

const Texts clipPlanesOff = {"glDisable(GL_CLIP_DISTANCE0)", "glDisable(GL_CLIP_DISTANCE1)",
                             "glDisable(GL_CLIP_DISTANCE2)", "glDisable(GL_CLIP_DISTANCE3)",
                             "glDisable(GL_CLIP_DISTANCE4)", "glDisable(GL_CLIP_DISTANCE5)",
                             "glDisable(GL_CLIP_DISTANCE6)", "glDisable(GL_CLIP_DISTANCE7)"};

/// Texture 2 and sampler 1 on unit 0 of a scene.
const Texts bindTexture = {"glActiveTexture(GL_TEXTURE0)", "glBindTexture(GL_TEXTURE_2D, 2)", "glEnable(GL_TEXTURE_2D)",
                           "glBindSampler(0, 1)"};
const Texts unbindTexture = {"glActiveTexture(GL_TEXTURE0)", "glBindTexture(GL_TEXTURE_2D, 0)",
                             "glDisable(GL_TEXTURE_2D)", "glBindSampler(0, 0)"};
const Texts unitZero = {"glActiveTexture(GL_TEXTURE0)"};

struct EmptyTask final : TaskInterface
{
    void run() override {}
};

class RendererSequenceTest : public RendererGLTest
{
protected:
    Scene makeTexturedScene()
    {
        Scene scene = makeScene();
        scene.shaderState.textures.mask = 1;
        scene.shaderState.textures.textures[0] = makeTexture();
        scene.shaderState.textures.samplers[0] = makeSampler();
        updateState(scene);
        return scene;
    }

    static Texts useProgram(int name)
    {
        return join(
            {{"glPatchParameteri(GL_PATCH_VERTICES, 1)", "glUseProgram(" + std::to_string(name) + ")"}, clipPlanesOff});
    }

    static Texts triangle(const Texts& parameters = {})
    {
        return join({{"glUniform1f(0, 1)"},
                     parameters,
                     {"glUniform1i(1, 0)", "glBindBuffer(GL_ARRAY_BUFFER, 1)", "glEnableVertexAttribArray(0)",
                      "glVertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, 0, null)", "glVertexAttribDivisor(0, 0)",
                      "glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 2)",
                      "glDrawElementsInstancedBaseInstance(GL_TRIANGLES, 3, GL_UNSIGNED_INT, null, 1, 0)",
                      "glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0)", "glDisableVertexAttribArray(0)"}});
    }

    Texts fullDraw(const Scene& scene, const Texts& unbinding)
    {
        const Texts state = stateCalls(scene.gfxState);
        return join({{"glBindFramebuffer(GL_FRAMEBUFFER, 1)", "glViewport(0, 0, 8, 6)", "glDepthRange(0, 1)"},
                     state,
                     unbinding,
                     unitZero,
                     bindTexture,
                     unitZero,
                     useProgram(1),
                     triangle()});
    }
};

// Draws

TEST_F(RendererSequenceTest, FirstDrawWithATexture)
{
    const Scene scene = makeTexturedScene();
    const Texts expected = fullDraw(scene, {});
    EXPECT_EQ(drawCalls(scene), expected);
    EXPECT_EQ(drawCalls(scene), triangle());
}

TEST_F(RendererSequenceTest, DrawAfterARenderTaskSendsEverythingAgain)
{
    const Scene scene = makeTexturedScene();
    drawCalls(scene);
    TaskProperties task;
    task.task = std::make_shared<EmptyTask>();
    // The task's own block of textures replaces the draw's, and is left by the task.
    run<CommandRenderTask>(task, nullptr, ShaderStateProperties(), false);
    const Texts expected = fullDraw(scene, {});
    EXPECT_EQ(drawCalls(scene), expected);
    EXPECT_EQ(drawCalls(scene), triangle());
}

TEST_F(RendererSequenceTest, WithoutDifferentialStateTexturesAreUnboundAfterEachDraw)
{
    SoPreferences::setBool("KVR_RENDERENGINE_DIFFERENTIAL_STATE", false);
    start<RendererGL41>();
    const Scene scene = makeTexturedScene();
    const Texts expected = join({fullDraw(scene, {}), unbindTexture, unitZero});
    EXPECT_EQ(drawCalls(scene), expected);
    EXPECT_EQ(drawCalls(scene), expected);
}

TEST_F(RendererSequenceTest, OnlyTheProgramChanged)
{
    Scene scene = makeTexturedScene();
    drawCalls(scene);
    scene.shaderState.program = makeProgram();
    updateState(scene);
    EXPECT_EQ(drawCalls(scene), join({useProgram(2), triangle()}));
}

TEST_F(RendererSequenceTest, OnlyASamplerChanged)
{
    Scene scene = makeTexturedScene();
    drawCalls(scene);
    scene.shaderState.textures.samplers[0] = makeSampler();
    updateState(scene);
    Texts bind = bindTexture;
    bind.back() = "glBindSampler(0, 2)";
    EXPECT_EQ(drawCalls(scene), join({bind, unitZero, triangle()}));
}

TEST_F(RendererSequenceTest, OnlyTheLightingFlagsChanged)
{
    Scene scene = makeTexturedScene();
    drawCalls(scene);
    scene.shaderState.lightingFlags.lighting = true;
    scene.shaderState.lightingFlags.twoSided = true;
    updateState(scene);
    EXPECT_EQ(drawCalls(scene), triangle()) << "a program does not see them";
}

TEST_F(RendererSequenceTest, OnlyAParameterChanged)
{
    Scene scene = makeTexturedScene();
    ShaderParameterProperties<SbVec4f> color;
    color.value = SbVec4f(1, 2, 3, 4);
    scene.shaderState.shaderParameters = {makeParameter("color", color)};
    updateState(scene);
    drawCalls(scene);
    color.name = "color";
    color.value = SbVec4f(5, 6, 7, 8);
    EXPECT_EQ(callsOf<CommandUpdateShaderParameter<ShaderParameterProperties<SbVec4f>>>(
                  scene.shaderState.shaderParameters.front(), color),
              Texts{});
    EXPECT_EQ(drawCalls(scene), triangle({"glUniform4fv(2, 1, {5, 6, 7, 8})"}));
}

TEST_F(RendererSequenceTest, TextureThatWasDestroyedInBetweenIsUnboundFromAllTargets)
{
    Scene scene = makeTexturedScene();
    drawCalls(scene);
    const TextureHandle next = makeTexture();
    // The draw binds the slot's absence, so the block names a texture that is gone.
    run<CommandDestroyTexture>(scene.shaderState.textures.textures[0]);
    drawCalls(scene);
    scene.shaderState.textures.textures[0] = next;
    updateState(scene);
    EXPECT_EQ(
        drawCalls(scene),
        join({{"glActiveTexture(GL_TEXTURE0)", "glBindTexture(GL_TEXTURE_1D, 0)", "glBindTexture(GL_TEXTURE_2D, 0)",
               "glBindTexture(GL_TEXTURE_2D_MULTISAMPLE, 0)", "glBindTexture(GL_TEXTURE_3D, 0)",
               "glBindTexture(GL_TEXTURE_CUBE_MAP, 0)", "glDisable(GL_TEXTURE_1D)", "glDisable(GL_TEXTURE_2D)",
               "glDisable(GL_TEXTURE_3D)", "glDisable(GL_TEXTURE_CUBE_MAP)", "glActiveTexture(GL_TEXTURE0)",
               "glBindTexture(GL_TEXTURE_2D, 3)", "glEnable(GL_TEXTURE_2D)", "glBindSampler(0, 1)"},
              unitZero,
              triangle()}));
}

TEST_F(RendererSequenceTest, ComputeComparesTexturesAlsoWithoutDifferentialState)
{
    SoPreferences::setBool("KVR_RENDERENGINE_DIFFERENTIAL_STATE", false);
    start<RendererGL41>();
    const Scene scene = makeTexturedScene();
    const auto state = std::make_shared<ShaderStateCoreProperties>(scene.shaderState);
    const Texts dispatch = {"glDispatchCompute(1, 1, 1)",
                            "glMemoryBarrier(GL_SHADER_IMAGE_ACCESS_BARRIER_BIT | GL_SHADER_STORAGE_BARRIER_BIT)"};
    EXPECT_EQ(callsOf<CommandCompute>(state, ComputeProperties()),
              join({bindTexture, unitZero, useProgram(1), dispatch}));
    EXPECT_EQ(callsOf<CommandCompute>(state, ComputeProperties()), join({useProgram(1), dispatch}));
}

// Clears

TEST_F(RendererSequenceTest, ClearOfUnknownStateRestoresFromWhatGLTells)
{
    const RenderTargetHandle target = makeRenderTarget({0, 17});
    gl.answer(GL_SCISSOR_TEST, int64_t{1});
    gl.answer(GL_DEPTH_TEST, int64_t{1});
    gl.answer(GL_STENCIL_TEST, int64_t{1});
    gl.answer(GL_DEPTH_WRITEMASK, int64_t{0});
    gl.answer(GL_STENCIL_VALUE_MASK, int64_t{0x0F});
    gl.answer(GL_STENCIL_WRITEMASK, int64_t{0x03});
    gl.answer(GL_COLOR_WRITEMASK, std::vector<int64_t>{1, 1, 1, 0});
    glEnable(GL_SCISSOR_TEST);
    glEnable(GL_DEPTH_TEST);
    glEnable(GL_STENCIL_TEST);
    ClearTargetProperties properties;
    properties.colorMask[3] = false;
    properties.colorMask[0] = false;
    properties.depthWrite = false;
    properties.stencilWriteMask = 0x30;
    Texts expected = {"glBindFramebuffer(GL_FRAMEBUFFER, 1)",
                      "glIsEnabled(GL_SCISSOR_TEST)",
                      "glIsEnabled(GL_DEPTH_TEST)",
                      "glIsEnabled(GL_STENCIL_TEST)",
                      "glGetBooleanv(GL_DEPTH_WRITEMASK, <pointer>)",
                      "glGetIntegerv(GL_STENCIL_VALUE_MASK, <pointer>)",
                      "glGetIntegerv(GL_STENCIL_WRITEMASK, <pointer>)"};
    for (int i = 0; i < 8; ++i)
    {
        expected.push_back("glGetBooleani_v(GL_COLOR_WRITEMASK, " + std::to_string(i) + ", <pointer>)");
    }
    const std::string mask = ", GL_FALSE, GL_TRUE, GL_TRUE, GL_FALSE)";
    expected = join({expected,
                     {"glDisable(GL_SCISSOR_TEST)", "glColorMaski(0" + mask,
                      "glClearBufferfv(GL_COLOR, 0, {0, 0, 0, 0})", "glDepthMask(GL_TRUE)",
                      "glStencilMaskSeparate(GL_FRONT_AND_BACK, 63)", "glClearBufferfv(GL_DEPTH, 0, {1})"}});
    for (int i = 0; i < 8; ++i)
    {
        expected.push_back("glColorMaski(" + std::to_string(i) + mask);
    }
    expected.push_back("glDepthMask(GL_FALSE)");
    expected.push_back("glStencilMaskSeparate(GL_FRONT_AND_BACK, 48)");
    EXPECT_EQ(callsOf<CommandClearRT>(target, properties), expected);
}

TEST_F(RendererSequenceTest, ClearOfKnownStateRestoresFromTheLastDraw)
{
    Scene scene = makeScene();
    scene.shaderState.renderTarget = makeRenderTarget({0, 17});
    scene.gfxState.scissor.enable = true;
    scene.gfxState.depthStencil.depthWrite = false;
    scene.gfxState.depthStencil.stencilTest = true;
    scene.gfxState.depthStencil.front.readMask = 0x0F;
    scene.gfxState.depthStencil.front.writeMask = 0x03;
    scene.gfxState.colorOutput.targets[0].writeAlpha = false;
    updateState(scene);
    drawCalls(scene);
    ClearTargetProperties properties;
    properties.depthWrite = false;
    properties.stencilWriteMask = 0x30;
    const std::string mask = ", GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE)";
    EXPECT_EQ(
        callsOf<CommandClearRT>(scene.shaderState.renderTarget, properties),
        (Texts{"glDisable(GL_SCISSOR_TEST)", "glColorMaski(0" + mask, "glClearBufferfv(GL_COLOR, 0, {0, 0, 0, 0})",
               "glDepthMask(GL_TRUE)", "glStencilMaskSeparate(GL_FRONT_AND_BACK, 63)",
               "glClearBufferfv(GL_DEPTH, 0, {1})", "glColorMaski(0" + mask, "glDepthMask(GL_FALSE)",
               "glStencilMaskSeparate(GL_FRONT_AND_BACK, 48)"}));
}

// Merging

TEST_F(RendererSequenceTest, SequenceOfIndicesGrowsForAMergedDraw)
{
    Scene scene = makeScene();
    scene.properties.ranges[0].indexBuffer = IndexBufferHandle();
    const DrawPropertiesHandle small = makeMember(scene.properties);
    scene.properties.ranges[0].count = 1048578;
    const DrawHandle draw = makeDraw(scene, {small, makeMember(scene.properties)});
    gl.clear();
    run<CommandRender>(draw);
    EXPECT_EQ(
        gl.callsMatching("glMultiDraw"),
        Texts{"glMultiDrawElementsBaseVertex(GL_TRIANGLES, {3, 1048578}, GL_UNSIGNED_INT, {null, 12}, 2, {0, 3})"});
    EXPECT_EQ(gl.countOf("glBufferData(GL_ARRAY_BUFFER, 4194304, null, "), 1u);
    EXPECT_EQ(gl.countOf("glBufferData(GL_ARRAY_BUFFER, 6291456, null, "), 1u) << "half as much again";
    gl.clear();
    run<CommandRender>(draw);
    EXPECT_EQ(gl.countOf("glBufferData("), 0u);
}

TEST_F(RendererSequenceTest, BlitTakesTargetsAsTheyWereLastBuilt)
{
    const RenderTargetHandle source = makeRenderTarget();
    RenderTargetProperties properties;
    RenderTextureProperty attachment;
    attachment.texture = makeTexture();
    properties.attachments = {attachment};
    const RenderTargetHandle destination = renderer->generateRenderTargetHandle();
    run<CommandCreateRenderTarget>(destination, properties);
    // The texture may get another GL name; its target follows at the next bind, which a blit is not.
    run<CommandResizeTexture>(attachment.texture, 8u, 8u, 1u);
    EXPECT_EQ(callsOf<CommandBlit>(source, destination, BlitProperties()),
              (Texts{"glBindFramebuffer(GL_READ_FRAMEBUFFER, 1)", "glBindFramebuffer(GL_DRAW_FRAMEBUFFER, 2)",
                     "glBlitFramebuffer(0, 0, 0, 0, 0, 0, 0, 0, GL_COLOR_BUFFER_BIT, GL_NEAREST)"}));
}

} // namespace
} // namespace renderengine
