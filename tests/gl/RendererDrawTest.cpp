#include "RendererFixture.h"

#include <kavelor/SoPreferences.h>

namespace renderengine
{
namespace
{

using RendererGL41DrawTest = RendererGLTest;

const Texts clipPlanesOff = {"glDisable(GL_CLIP_DISTANCE0)", "glDisable(GL_CLIP_DISTANCE1)",
                             "glDisable(GL_CLIP_DISTANCE2)", "glDisable(GL_CLIP_DISTANCE3)",
                             "glDisable(GL_CLIP_DISTANCE4)", "glDisable(GL_CLIP_DISTANCE5)",
                             "glDisable(GL_CLIP_DISTANCE6)", "glDisable(GL_CLIP_DISTANCE7)"};

/// From the program on, for the scene of one triangle.
const Texts triangleCalls = {
    "glUniform1f(0, 1)",
    "glUniform1i(1, 0)",
    "glBindBuffer(GL_ARRAY_BUFFER, 1)",
    "glEnableVertexAttribArray(0)",
    "glVertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, 0, null)",
    "glVertexAttribDivisor(0, 0)",
    "glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 2)",
    "glDrawElementsInstancedBaseInstance(GL_TRIANGLES, 3, GL_UNSIGNED_INT, null, 1, 0)",
    "glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0)",
    "glDisableVertexAttribArray(0)",
};

Texts fullCalls(const Texts& state)
{
    return join({{"glBindFramebuffer(GL_FRAMEBUFFER, 1)", "glViewport(0, 0, 8, 6)", "glDepthRange(0, 1)"},
                 state,
                 {"glActiveTexture(GL_TEXTURE0)", "glActiveTexture(GL_TEXTURE0)",
                  "glPatchParameteri(GL_PATCH_VERTICES, 1)", "glUseProgram(1)"},
                 clipPlanesOff,
                 triangleCalls});
}

TEST_F(RendererGL41DrawTest, FirstDrawSendsEverything)
{
    const Scene scene = makeScene();
    const Texts state = stateCalls(scene.gfxState);
    EXPECT_EQ(drawCalls(scene), fullCalls(state));
}

TEST_F(RendererGL41DrawTest, SameDrawAgainSendsTheDrawOnly)
{
    const Scene scene = makeScene();
    drawCalls(scene);
    EXPECT_EQ(drawCalls(scene), triangleCalls);
}

TEST_F(RendererGL41DrawTest, WithoutDifferentialStateEveryDrawIsFullAndUnbindsItsTextures)
{
    SoPreferences::setBool("KVR_RENDERENGINE_DIFFERENTIAL_STATE", false);
    start<RendererGL41>();
    const Scene scene = makeScene();
    const Texts state = stateCalls(scene.gfxState);
    const Texts expected = join({fullCalls(state), {"glActiveTexture(GL_TEXTURE0)"}});
    EXPECT_EQ(drawCalls(scene), expected);
    EXPECT_EQ(drawCalls(scene), expected);
}

TEST_F(RendererGL41DrawTest, DrawWithoutPropertiesMakesNoCall)
{
    const Scene scene = makeScene();
    const DrawHandle empty = makeDraw(scene, {});
    EXPECT_EQ(callsOf<CommandRender>(empty), Texts{});
}

TEST_F(RendererGL41DrawTest, DrawOfAnUnknownHandleMakesNoCall)
{
    EXPECT_EQ(callsOf<CommandRender>(DrawHandle(9)), Texts{});
    EXPECT_EQ(callsOf<CommandRender>(DrawHandle()), Texts{});
}

TEST_F(RendererGL41DrawTest, NullStateStandsForTheDefaultRecords)
{
    const Scene scene = makeScene();
    const DrawHandle draw = renderer->generateDrawHandle();
    run<CommandCreateDraw>(draw, nullptr, nullptr);
    run<CommandAddDrawProperties>(draw, scene.member);
    const Texts state = stateCalls(GfxStateProperties());
    EXPECT_EQ(callsOf<CommandRender>(draw),
              join({{"glBindFramebuffer(GL_FRAMEBUFFER, 0)", "glViewport(0, 0, 0, 0)", "glDepthRange(0, 1)"},
                    state,
                    {"glActiveTexture(GL_TEXTURE0)", "glActiveTexture(GL_TEXTURE0)", "glUseProgram(0)"}}));
}

TEST_F(RendererGL41DrawTest, DrawWithoutProgramForgetsTheCurrentOne)
{
    Scene scene = makeScene();
    drawCalls(scene);
    Scene other = scene;
    other.shaderState.program = ShaderProgramHandle();
    other.draw = makeDraw(other, {other.member});
    EXPECT_EQ(drawCalls(other), Texts{"glUseProgram(0)"});
    EXPECT_EQ(drawCalls(scene),
              join({{"glPatchParameteri(GL_PATCH_VERTICES, 1)", "glUseProgram(1)"}, clipPlanesOff, triangleCalls}));
}

TEST_F(RendererGL41DrawTest, OnlyAChangedTargetIsBound)
{
    Scene scene = makeScene();
    drawCalls(scene);
    scene.shaderState.renderTarget = makeRenderTarget();
    updateState(scene);
    EXPECT_EQ(drawCalls(scene), join({{"glBindFramebuffer(GL_FRAMEBUFFER, 2)"}, triangleCalls}));
    scene.shaderState.renderTarget = RenderTargetHandle();
    updateState(scene);
    EXPECT_EQ(drawCalls(scene), join({{"glBindFramebuffer(GL_FRAMEBUFFER, 0)"}, triangleCalls}));
}

TEST_F(RendererGL41DrawTest, OnlyAChangedViewportIsSent)
{
    Scene scene = makeScene();
    drawCalls(scene);
    scene.shaderState.viewport = makeViewport(4, 3);
    updateState(scene);
    EXPECT_EQ(drawCalls(scene), join({{"glViewport(0, 0, 4, 3)", "glDepthRange(0, 1)"}, triangleCalls}));
    scene.shaderState.viewport = ViewportHandle();
    updateState(scene);
    EXPECT_EQ(drawCalls(scene), join({{"glViewport(0, 0, 0, 0)", "glDepthRange(0, 1)"}, triangleCalls}));
}

TEST_F(RendererGL41DrawTest, UpdateOfTheCurrentViewportIsSentByTheNextDraw)
{
    const Scene scene = makeScene();
    drawCalls(scene);
    ViewportProperties properties;
    properties.rectangle = SbVec4i32(1, 2, 3, 4);
    properties.depthRange = SbVec2f(0.25f, 0.5f);
    run<CommandUpdateViewport>(scene.shaderState.viewport, properties);
    EXPECT_EQ(drawCalls(scene), join({{"glViewport(1, 2, 3, 4)", "glDepthRange(0.25, 0.5)"}, triangleCalls}));
    EXPECT_EQ(callsOf<CommandUpdateViewport>(ViewportHandle(), properties), Texts{});
}

TEST_F(RendererGL41DrawTest, ViewportScaleReachesLinesAndPoints)
{
    Scene scene = makeScene();
    drawCalls(scene);
    scene.shaderState.viewport = makeViewport(8, 6, 2.0f);
    scene.gfxState.rasterizer.pointSize = 3.0f;
    updateState(scene);
    drawCalls(scene);
    scene.shaderState.viewport = makeViewport(8, 6, 4.0f);
    updateState(scene);
    gl.clear();
    run<CommandRender>(scene.draw);
    EXPECT_EQ(gl.callsMatching("glPointSize("), Texts{"glPointSize(12)"});
    EXPECT_EQ(gl.callsMatching("glLineWidth("), Texts{"glLineWidth(4)"});
    EXPECT_EQ(gl.callsMatching("glUniform1f("), Texts{"glUniform1f(0, 12)"});
}

TEST_F(RendererGL41DrawTest, OnlyTheChangedStateGroupIsSent)
{
    Scene scene = makeScene();
    drawCalls(scene);
    scene.gfxState.scissor.enable = true;
    scene.gfxState.scissor.rectangle = SbVec4us(1, 2, 3, 4);
    updateState(scene);
    EXPECT_EQ(drawCalls(scene), join({{"glEnable(GL_SCISSOR_TEST)", "glScissor(1, 2, 3, 4)"}, triangleCalls}));
}

TEST_F(RendererGL41DrawTest, ChangedPatchVerticesUseTheProgramAgain)
{
    Scene scene = makeScene();
    drawCalls(scene);
    scene.shaderState.patchVertices = 4;
    updateState(scene);
    EXPECT_EQ(drawCalls(scene), join({{"glPatchParameteri(GL_PATCH_VERTICES, 4)", "glUseProgram(1)"}, triangleCalls}));
}

TEST_F(RendererGL41DrawTest, ChangedClipPlanesSendAllEight)
{
    Scene scene = makeScene();
    drawCalls(scene);
    scene.shaderState.clipPlanes.enableMask = 0x81;
    updateState(scene);
    Texts planes = clipPlanesOff;
    planes.front() = "glEnable(GL_CLIP_DISTANCE0)";
    planes.back() = "glEnable(GL_CLIP_DISTANCE7)";
    EXPECT_EQ(drawCalls(scene), join({planes, triangleCalls}));
}

TEST_F(RendererGL41DrawTest, TexturesAreComparedAsOneBlock)
{
    Scene scene = makeScene();
    drawCalls(scene);
    scene.shaderState.textures.mask = 0b101;
    scene.shaderState.textures.textures[0] = makeTexture();
    scene.shaderState.textures.textures[2] = makeTexture(6);
    scene.shaderState.textures.samplers[0] = makeSampler();
    updateState(scene);
    const Texts bindFirst = {"glActiveTexture(GL_TEXTURE0)", "glBindTexture(GL_TEXTURE_2D, 2)",
                             "glEnable(GL_TEXTURE_2D)", "glBindSampler(0, 1)"};
    EXPECT_EQ(drawCalls(scene),
              join({bindFirst,
                    {"glActiveTexture(GL_TEXTURE2)", "glBindTexture(GL_TEXTURE_3D, 3)", "glEnable(GL_TEXTURE_3D)",
                     "glBindSampler(2, 0)", "glActiveTexture(GL_TEXTURE0)"},
                    triangleCalls}));
    EXPECT_EQ(drawCalls(scene), triangleCalls);

    // The unit that falls away is unbound; the other one is bound again, since blocks are compared as a whole.
    scene.shaderState.textures.mask = 0b001;
    updateState(scene);
    EXPECT_EQ(drawCalls(scene),
              join({bindFirst,
                    {"glActiveTexture(GL_TEXTURE2)", "glBindTexture(GL_TEXTURE_3D, 0)", "glDisable(GL_TEXTURE_3D)",
                     "glBindSampler(2, 0)", "glActiveTexture(GL_TEXTURE0)"},
                    triangleCalls}));
}

TEST_F(RendererGL41DrawTest, TextureOfAnotherTargetMakesRoomFirst)
{
    Scene scene = makeScene();
    scene.shaderState.textures.mask = 1;
    scene.shaderState.textures.textures[0] = makeTexture();
    updateState(scene);
    drawCalls(scene);
    scene.shaderState.textures.textures[0] = makeTexture(6);
    updateState(scene);
    EXPECT_EQ(drawCalls(scene),
              join({{"glActiveTexture(GL_TEXTURE0)", "glBindTexture(GL_TEXTURE_2D, 0)", "glDisable(GL_TEXTURE_2D)",
                     "glActiveTexture(GL_TEXTURE0)", "glBindTexture(GL_TEXTURE_3D, 3)", "glEnable(GL_TEXTURE_3D)",
                     "glBindSampler(0, 0)", "glActiveTexture(GL_TEXTURE0)"},
                    triangleCalls}));
}

TEST_F(RendererGL41DrawTest, DestroyOfABoundTextureUnbindsTheWholeBlockFirst)
{
    Scene scene = makeScene();
    scene.shaderState.textures.mask = 1;
    scene.shaderState.textures.textures[0] = makeTexture();
    updateState(scene);
    drawCalls(scene);
    EXPECT_EQ(
        callsOf<CommandDestroyTexture>(scene.shaderState.textures.textures[0]),
        (Texts{"glActiveTexture(GL_TEXTURE0)", "glBindTexture(GL_TEXTURE_2D, 0)", "glDisable(GL_TEXTURE_2D)",
               "glBindSampler(0, 0)", "glActiveTexture(GL_TEXTURE0)", "glIsTexture(2)", "glDeleteTextures(1, {2})"}));
    // The draw still names it: a texture that is gone binds 0.
    EXPECT_EQ(drawCalls(scene), join({{"glActiveTexture(GL_TEXTURE0)", "glBindTexture(GL_TEXTURE_2D, 0)",
                                       "glBindSampler(0, 0)", "glActiveTexture(GL_TEXTURE0)"},
                                      triangleCalls}));
    // What was bound there is not known any more.
    scene.shaderState.textures.mask = 0;
    updateState(scene);
    EXPECT_EQ(drawCalls(scene),
              join({{"glActiveTexture(GL_TEXTURE0)", "glBindTexture(GL_TEXTURE_1D, 0)",
                     "glBindTexture(GL_TEXTURE_2D, 0)", "glBindTexture(GL_TEXTURE_2D_MULTISAMPLE, 0)",
                     "glBindTexture(GL_TEXTURE_3D, 0)", "glBindTexture(GL_TEXTURE_CUBE_MAP, 0)",
                     "glDisable(GL_TEXTURE_1D)", "glDisable(GL_TEXTURE_2D)", "glDisable(GL_TEXTURE_3D)",
                     "glDisable(GL_TEXTURE_CUBE_MAP)", "glBindSampler(0, 0)", "glActiveTexture(GL_TEXTURE0)"},
                    triangleCalls}));
}

TEST_F(RendererGL41DrawTest, ShaderBuffersTakeBindingPointsInOrderWithoutGaps)
{
    Scene scene = makeScene();
    drawCalls(scene);
    scene.shaderState.shaderBuffers = {makeShaderBuffer("Scene"), ShaderBufferHandle(), makeShaderBuffer("Lights", 0)};
    updateState(scene);
    scene.properties.shaderBuffers = {ShaderBufferHandle(), makeShaderBuffer("Transform"), makeShaderBuffer("Unknown")};
    run<CommandUpdateDrawProperties>(scene.member, scene.properties);
    gl.clear();
    run<CommandRender>(scene.draw);
    Texts blocks = gl.calls();
    blocks.resize(9);
    EXPECT_EQ(blocks,
              (Texts{"glBindBufferBase(GL_UNIFORM_BUFFER, 0, 3)", "glUniformBlockBinding(1, 2, 0)",
                     "glBindBufferBase(GL_SHADER_STORAGE_BUFFER, 1, 4)", "glShaderStorageBlockBinding(1, 0, 1)",
                     "glUniform1f(0, 1)", "glBindBufferBase(GL_UNIFORM_BUFFER, 2, 5)", "glUniformBlockBinding(1, 0, 2)",
                     "glBindBufferBase(GL_UNIFORM_BUFFER, 3, 6)", "glUniform1i(1, 0)"}));
}

TEST_F(RendererGL41DrawTest, ParametersAreSentByNameAndUnknownOnesSkipped)
{
    Scene scene = makeScene();
    drawCalls(scene);
    ShaderParameterProperties<SbVec4f> color;
    color.value = SbVec4f(1, 2, 3, 4);
    scene.shaderState.shaderParameters = {makeParameter("color", color), makeParameter("unknown", color),
                                          ShaderParameterHandle()};
    updateState(scene);
    Texts expected = triangleCalls;
    expected.insert(expected.begin() + 1, "glUniform4fv(2, 1, {1, 2, 3, 4})");
    EXPECT_EQ(drawCalls(scene), expected);
}

TEST_F(RendererGL41DrawTest, PointSizeIsSentAlsoWithoutItsUniform)
{
    const Scene scene = makeScene();
    gl.setReflection({{{"position", GL_FLOAT_VEC3}}, {}, {}, {}});
    Scene other = scene;
    other.shaderState.program = makeProgram();
    other.draw = makeDraw(other, {other.member});
    drawCalls(other);
    gl.clear();
    run<CommandRender>(other.draw);
    EXPECT_EQ(gl.calls().at(0), "glUniform1f(-1, 1)");
    EXPECT_EQ(gl.calls().at(1), "glUniform1i(-1, 0)");
}

TEST_F(RendererGL41DrawTest, UnknownAttributeIsBoundButNotEnabled)
{
    Scene scene = makeScene();
    drawCalls(scene);
    scene.properties.vertexBuffers = {makeVertexBuffer("unknown", 3), scene.vertexBuffer};
    run<CommandUpdateDrawProperties>(scene.member, scene.properties);
    Texts expected = triangleCalls;
    expected.insert(expected.begin() + 2, "glBindBuffer(GL_ARRAY_BUFFER, 3)");
    EXPECT_EQ(drawCalls(scene), expected);
}

TEST_F(RendererGL41DrawTest, RangesAreDrawnOneByOneWhenTheyCannotBeMerged)
{
    Scene scene = makeScene();
    drawCalls(scene);
    DrawRange instanced = scene.properties.ranges[0];
    instanced.primitive = 1;
    instanced.indexOffset = 4;
    instanced.count = 2;
    instanced.instanceCount = 5;
    instanced.baseInstance = 7;
    instanced.primitiveRestart = true;
    instanced.primitiveRestartValue = 99;
    DrawRange plain = scene.properties.ranges[0];
    scene.properties.ranges = {instanced, plain};
    run<CommandUpdateDrawProperties>(scene.member, scene.properties);
    const Texts expected = {
        "glUniform1f(0, 1)",
        "glUniform1i(1, 0)",
        "glBindBuffer(GL_ARRAY_BUFFER, 1)",
        "glEnableVertexAttribArray(0)",
        "glVertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, 0, null)",
        "glVertexAttribDivisor(0, 0)",
        "glEnable(GL_PRIMITIVE_RESTART)",
        "glPrimitiveRestartIndex(99)",
        "glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 2)",
        "glDrawElementsInstancedBaseInstance(GL_LINES, 2, GL_UNSIGNED_INT, 4, 5, 7)",
        "glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0)",
        "glDisable(GL_PRIMITIVE_RESTART)",
        "glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 2)",
        "glDrawElementsInstancedBaseInstance(GL_TRIANGLES, 3, GL_UNSIGNED_INT, null, 1, 0)",
        "glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0)",
        "glDisableVertexAttribArray(0)",
    };
    EXPECT_EQ(drawCalls(scene), expected);
}

TEST_F(RendererGL41DrawTest, RestartIndexIsSentByEveryRangeThatHasOne)
{
    Scene scene = makeScene();
    scene.properties.ranges[0].primitiveRestart = true;
    run<CommandUpdateDrawProperties>(scene.member, scene.properties);
    drawCalls(scene);
    gl.clear();
    run<CommandRender>(scene.draw);
    EXPECT_EQ(gl.countOf("glEnable(GL_PRIMITIVE_RESTART)"), 0u);
    EXPECT_EQ(gl.countOf("glPrimitiveRestartIndex(4294967295)"), 1u);
}

TEST_F(RendererGL41DrawTest, InvalidTargetIsBoundAfterABlitAndAfterAResizeOfTheCurrentOne)
{
    Scene scene = makeScene();
    const RenderTargetHandle target = scene.shaderState.renderTarget;
    scene.shaderState.renderTarget = RenderTargetHandle();
    updateState(scene);
    drawCalls(scene);
    EXPECT_EQ(drawCalls(scene), triangleCalls);
    run<CommandBlit>(target, makeRenderTarget(), BlitProperties());
    EXPECT_EQ(drawCalls(scene), join({{"glBindFramebuffer(GL_FRAMEBUFFER, 0)"}, triangleCalls}));
}

TEST_F(RendererGL41DrawTest, InvalidViewportIsSentAfterAnUpdateOfTheCurrentOne)
{
    Scene scene = makeScene();
    drawCalls(scene);
    run<CommandUpdateViewport>(scene.shaderState.viewport, ViewportProperties());
    scene.shaderState.viewport = ViewportHandle();
    updateState(scene);
    EXPECT_EQ(drawCalls(scene), join({{"glViewport(0, 0, 0, 0)", "glDepthRange(0, 1)"}, triangleCalls}));
    EXPECT_EQ(drawCalls(scene), triangleCalls);
}

TEST_F(RendererGL41DrawTest, MissingBaseInstanceMovesInstancedAttributes)
{
    Scene scene = makeScene();
    drawCalls(scene);
    VertexBufferProperties offsets;
    offsets.componentCount = 2;
    offsets.divisor = 1;
    offsets.offset = 4;
    offsets.buffer = makeBuffer(80);
    offsets.name = "normal";
    const VertexBufferHandle instanced = renderer->generateVertexBufferHandle();
    run<CommandCreateVertexBuffer>(instanced, offsets);
    scene.properties.vertexBuffers = {scene.vertexBuffer, instanced};
    scene.properties.ranges[0].instanceCount = 2;
    scene.properties.ranges[0].baseInstance = 3;
    run<CommandUpdateDrawProperties>(scene.member, scene.properties);

    GLEWContextStruct older = *glbinding::RecordingGL::table();
    older.majorVersion = 4;
    older.minorVersion = 1;
    older.kvr_common__GLEW_ARB_base_instance = false;
    const glbinding::ScopedTable scope(&older);
    gl.clear();
    run<CommandRender>(scene.draw);
    EXPECT_EQ(gl.countOf("glDrawElementsInstancedBaseInstance("), 0u);
    EXPECT_EQ(gl.countOf("glDrawElementsInstanced(GL_TRIANGLES, 3, GL_UNSIGNED_INT, null, 2)"), 1u);
    EXPECT_EQ(gl.callsMatching("glVertexAttribPointer(1"),
              (Texts{"glVertexAttribPointer(1, 2, GL_FLOAT, GL_FALSE, 0, 4)",
                     "glVertexAttribPointer(1, 2, GL_FLOAT, GL_FALSE, 0, 28)",
                     "glVertexAttribPointer(1, 2, GL_FLOAT, GL_FALSE, 0, 4)"}));
    const Texts first = gl.takeCalls();
    run<CommandRender>(scene.draw);
    EXPECT_EQ(gl.takeCalls(), first) << "nor in the next frame";
}

TEST_F(RendererGL41DrawTest, PrimitiveTypesHaveTheirModes)
{
    const char* const modes[] = {"GL_POINTS",    "GL_LINES",          "GL_LINE_LOOP",    "GL_LINE_STRIP",
                                 "GL_TRIANGLES", "GL_TRIANGLE_STRIP", "GL_TRIANGLE_FAN", "GL_PATCHES",
                                 "GL_QUADS",     "GL_QUAD_STRIP",     "GL_POLYGON"};
    Scene scene = makeScene();
    uint32_t primitive = 0;
    for (const char* const mode : modes)
    {
        scene.properties.ranges[0].primitive = primitive++;
        run<CommandUpdateDrawProperties>(scene.member, scene.properties);
        gl.clear();
        run<CommandRender>(scene.draw);
        EXPECT_EQ(gl.countOf("glDrawElementsInstancedBaseInstance(" + std::string(mode) + ", "), 1u);
    }
}

} // namespace
} // namespace renderengine
