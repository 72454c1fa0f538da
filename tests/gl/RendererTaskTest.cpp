#include "RendererFixture.h"

#include <stdexcept>

namespace renderengine
{
namespace
{

using RendererGL41TaskTest = RendererGLTest;

struct CallingTask final : TaskInterface
{
    void run() override { glFlush(); }
};

TaskProperties callingTask()
{
    TaskProperties properties;
    properties.task = std::make_shared<CallingTask>();
    return properties;
}

const Texts clipPlanesOff = {"glDisable(GL_CLIP_DISTANCE0)", "glDisable(GL_CLIP_DISTANCE1)",
                             "glDisable(GL_CLIP_DISTANCE2)", "glDisable(GL_CLIP_DISTANCE3)",
                             "glDisable(GL_CLIP_DISTANCE4)", "glDisable(GL_CLIP_DISTANCE5)",
                             "glDisable(GL_CLIP_DISTANCE6)", "glDisable(GL_CLIP_DISTANCE7)"};

TEST_F(RendererGL41TaskTest, ComputeDispatchesAndOrdersItsWrites)
{
    const Scene scene = makeScene();
    auto state = std::make_shared<ShaderStateCoreProperties>();
    state->program = scene.shaderState.program;
    state->textures.mask = 1;
    state->textures.textures[0] = makeTexture();
    state->shaderBuffers = {makeShaderBuffer("Lights", 0)};
    ShaderParameterProperties<int> parameter;
    parameter.value = 9;
    state->shaderParameters = {makeParameter("color", parameter)};
    ComputeProperties properties;
    properties.groups = SbVec3i32(2, 3, 4);
    const Texts dispatch = {"glBindBufferBase(GL_SHADER_STORAGE_BUFFER, 0, 3)", "glShaderStorageBlockBinding(1, 0, 0)",
                            "glUniform1i(2, 9)", "glDispatchCompute(2, 3, 4)",
                            "glMemoryBarrier(GL_SHADER_IMAGE_ACCESS_BARRIER_BIT | GL_SHADER_STORAGE_BARRIER_BIT)"};
    const Texts program = join({{"glPatchParameteri(GL_PATCH_VERTICES, 1)", "glUseProgram(1)"}, clipPlanesOff});
    EXPECT_EQ(callsOf<CommandCompute>(state, properties),
              join({{"glActiveTexture(GL_TEXTURE0)", "glBindTexture(GL_TEXTURE_2D, 2)", "glEnable(GL_TEXTURE_2D)",
                     "glBindSampler(0, 0)", "glActiveTexture(GL_TEXTURE0)"},
                    program,
                    dispatch}));
    // No draw has made the state known yet, so the program is sent again, but not the textures.
    EXPECT_EQ(callsOf<CommandCompute>(state, properties), join({program, dispatch}));
}

TEST_F(RendererGL41TaskTest, ComputeWithoutStateOrProgramIsSilent)
{
    EXPECT_EQ(callsOf<CommandCompute>(nullptr, ComputeProperties()), Texts{});
    EXPECT_EQ(callsOf<CommandCompute>(std::make_shared<ShaderStateCoreProperties>(), ComputeProperties()), Texts{});
}

TEST_F(RendererGL41TaskTest, ComputeLetsGoOfItsStateWhenAsked)
{
    const Scene scene = makeScene();
    ComputeProperties properties;
    properties.releaseState = true;
    CommandCompute command;
    command.set(std::make_shared<ShaderStateCoreProperties>(scene.shaderState), properties);
    renderer->execute(command);
    EXPECT_EQ(command.shaderState, nullptr);
    gl.clear();
    renderer->execute(command);
    EXPECT_EQ(gl.takeCalls(), Texts{});
}

TEST_F(RendererGL41TaskTest, BarrierBitsAreGLs)
{
    EXPECT_EQ(callsOf<CommandMemoryBarrier>(int32_t{GL_TEXTURE_FETCH_BARRIER_BIT}),
              Texts{"glMemoryBarrier(GL_TEXTURE_FETCH_BARRIER_BIT)"});
    EXPECT_EQ(callsOf<CommandMemoryBarrier>(-1), Texts{"glMemoryBarrier(GL_ALL_BARRIER_BITS)"});
}

TEST_F(RendererGL41TaskTest, TaskRunsWithoutPreparation)
{
    const Scene scene = makeScene();
    drawCalls(scene);
    const Texts again = drawCalls(scene);
    EXPECT_EQ(callsOf<CommandTask>(callingTask()), Texts{"glFlush()"});
    EXPECT_EQ(drawCalls(scene), again);
}

TEST_F(RendererGL41TaskTest, RenderTaskSetsTheStateUpAndMakesItUnknown)
{
    const Scene scene = makeScene();
    drawCalls(scene);
    ShaderStateProperties shaderState;
    static_cast<ShaderStateCoreProperties&>(shaderState) = scene.shaderState;
    shaderState.renderTarget = makeRenderTarget();
    shaderState.viewport = makeViewport(3, 2, 5.0f);
    shaderState.patchVertices = 3;
    shaderState.shaderBuffers = {ShaderBufferHandle(), makeShaderBuffer("Scene")};
    shaderState.textures.mask = 1;
    shaderState.textures.textures[0] = makeTexture();
    GfxStateProperties gfxState;
    gfxState.rasterizer.pointSize = 2.0f;
    GfxStateProperties scaled = gfxState;
    scaled.rasterizer.sizeScale = 5.0f;
    const Texts state = stateCalls(scaled);
    const Texts expected = join(
        {{"glBindFramebuffer(GL_FRAMEBUFFER, 2)", "glViewport(0, 0, 3, 2)", "glDepthRange(0, 1)"},
         state,
         {"glPatchParameteri(GL_PATCH_VERTICES, 3)", "glUseProgram(1)", "glBindBufferBase(GL_UNIFORM_BUFFER, 1, 3)",
          "glUniformBlockBinding(1, 2, 1)", "glActiveTexture(GL_TEXTURE0)", "glActiveTexture(GL_TEXTURE0)",
          "glBindTexture(GL_TEXTURE_2D, 3)", "glEnable(GL_TEXTURE_2D)", "glBindSampler(0, 0)",
          "glActiveTexture(GL_TEXTURE0)", "glPushAttrib(GL_ALL_ATTRIB_BITS)", "glFlush()", "glPopAttrib()",
          "glActiveTexture(GL_TEXTURE0)", "glBindTexture(GL_TEXTURE_2D, 0)", "glDisable(GL_TEXTURE_2D)",
          "glBindSampler(0, 0)", "glActiveTexture(GL_TEXTURE0)"}});
    Texts calls = callsOf<CommandRenderTask>(callingTask(), std::make_shared<const GfxStateProperties>(gfxState),
                                             shaderState, false);
    for (std::string& call : calls)
    {
        if (call.rfind("glPushAttrib(", 0) == 0)
        {
            call = "glPushAttrib(GL_ALL_ATTRIB_BITS)";
        }
    }
    EXPECT_EQ(calls, expected);
    gl.clear();
    run<CommandRender>(scene.draw);
    EXPECT_EQ(gl.calls().front(), "glBindFramebuffer(GL_FRAMEBUFFER, 1)") << "though the handle has not changed";
    EXPECT_EQ(gl.countOf("glUseProgram(1)"), 1u);
}

TEST_F(RendererGL41TaskTest, FixedFunctionTaskGetsItsRecordsInOrder)
{
    ShaderStateProperties shaderState;
    shaderState.texEnv.unitMask = 1;
    shaderState.texEnv.modes[0] = GL_MODULATE;
    gl.clear();
    run<CommandRenderTask>(callingTask(), nullptr, shaderState, true);
    const Texts calls = gl.takeCalls();
    const auto position = [&](const std::string& call)
    { return std::find(calls.begin(), calls.end(), call) - calls.begin(); };
    const auto count = static_cast<std::ptrdiff_t>(calls.size());
    ASSERT_LT(position("glFlush()"), count);
    EXPECT_LT(position("glUseProgram(0)"), position("glMatrixMode(GL_PROJECTION)"));
    EXPECT_LT(position("glMatrixMode(GL_PROJECTION)"), position("glDisable(GL_LIGHTING)"));
    EXPECT_LT(position("glDisable(GL_LIGHTING)"), position("glDisable(GL_TEXTURE_GEN_S)"));
    EXPECT_LT(position("glDisable(GL_TEXTURE_GEN_S)"),
              position("glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE)"));
    EXPECT_LT(position("glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE)"), position("glFlush()"));
}

TEST_F(RendererGL41TaskTest, RenderTaskThatThrowsLeavesNothingBehind)
{
    struct ThrowingTask final : TaskInterface
    {
        void run() override { throw std::runtime_error("the client's"); }
    };
    const Scene scene = makeScene();
    drawCalls(scene);
    TaskProperties properties;
    properties.task = std::make_shared<ThrowingTask>();
    ShaderStateProperties shaderState;
    shaderState.renderTarget = makeRenderTarget();
    shaderState.textures.mask = 1;
    shaderState.textures.textures[0] = makeTexture();
    gl.clear();
    EXPECT_THROW(run<CommandRenderTask>(properties, nullptr, shaderState, false), std::runtime_error);
    EXPECT_EQ(gl.countOf("glPushAttrib"), 1u);
    EXPECT_EQ(gl.countOf("glPopAttrib"), 1u);
    EXPECT_EQ(gl.calls().back(), "glActiveTexture(GL_TEXTURE0)");
    const Texts calls = drawCalls(scene);
    EXPECT_EQ(calls.front(), "glBindFramebuffer(GL_FRAMEBUFFER, 1)") << "all state is sent again";
}

TEST_F(RendererGL41TaskTest, FeedbackLinksAgainAndBindsItsBuffers)
{
    const Scene scene = makeScene();
    drawCalls(scene);
    ShaderStateProperties shaderState;
    static_cast<ShaderStateCoreProperties&>(shaderState) = scene.shaderState;
    TransformFeedbackProperties properties;
    properties.varyings = {"out0", "out1"};
    properties.buffers = {makeBuffer(16), makeBuffer(16), makeBuffer(16)};
    properties.primitiveMode = GL_TRIANGLES;
    properties.bufferMode = 1;
    properties.discard = 1;
    gl.clear();
    run<CommandBeginTransformFeedback>(properties, shaderState);
    EXPECT_EQ(gl.calls().at(0), "glTransformFeedbackVaryings(1, 2, {\"out0\", \"out1\"}, GL_SEPARATE_ATTRIBS)");
    EXPECT_EQ(gl.calls().at(1), "glLinkProgram(1)");
    const Texts tail(gl.calls().end() - 5, gl.calls().end());
    EXPECT_EQ(tail, (Texts{"glBindBufferBase(GL_TRANSFORM_FEEDBACK_BUFFER, 0, 3)",
                           "glBindBufferBase(GL_TRANSFORM_FEEDBACK_BUFFER, 1, 4)",
                           "glBindBufferBase(GL_TRANSFORM_FEEDBACK_BUFFER, 2, 5)", "glEnable(GL_RASTERIZER_DISCARD)",
                           "glBeginTransformFeedback(GL_TRIANGLES)"}));
    // The third binding stays.
    EXPECT_EQ(callsOf<CommandEndTransformFeedback>(),
              (Texts{"glEndTransformFeedback()", "glBindBufferBase(GL_TRANSFORM_FEEDBACK_BUFFER, 0, 0)",
                     "glBindBufferBase(GL_TRANSFORM_FEEDBACK_BUFFER, 1, 0)", "glDisable(GL_RASTERIZER_DISCARD)"}));
}

TEST_F(RendererGL41TaskTest, InterleavedFeedbackBindsTheFirstBufferOnly)
{
    const Scene scene = makeScene();
    ShaderStateProperties shaderState;
    static_cast<ShaderStateCoreProperties&>(shaderState) = scene.shaderState;
    TransformFeedbackProperties properties;
    properties.varyings = {"out0"};
    properties.buffers = {makeBuffer(16), makeBuffer(16)};
    gl.clear();
    run<CommandBeginTransformFeedback>(properties, shaderState);
    EXPECT_EQ(gl.callsMatching("glTransformFeedbackVaryings("),
              Texts{"glTransformFeedbackVaryings(1, 1, {\"out0\"}, GL_INTERLEAVED_ATTRIBS)"});
    EXPECT_EQ(gl.countOf("glBindBufferBase(GL_TRANSFORM_FEEDBACK_BUFFER"), 1u);
    EXPECT_EQ(gl.countOf("glEnable(GL_RASTERIZER_DISCARD)"), 0u);
    EXPECT_EQ(gl.calls().back(), "glBeginTransformFeedback(GL_POINTS)");
}

TEST_F(RendererGL41TaskTest, FeedbackWithoutProgramDoesNotBegin)
{
    EXPECT_EQ(callsOf<CommandBeginTransformFeedback>(TransformFeedbackProperties(), ShaderStateProperties()),
              Texts{"glUseProgram(0)"});
}

struct QueryRow
{
    uint32_t type;
    const char* target;
    const char* read;
    int64_t raw;
    uint64_t result;
};

class QueryTest : public RendererGLTest, public ::testing::WithParamInterface<QueryRow>
{
};

TEST_P(QueryTest, ReadsItsResultInItsForm)
{
    const QueryRow& row = GetParam();
    const std::string target = row.target;
    const QueryHandle query = renderer->generateQueryHandle();
    EXPECT_EQ(callsOf<CommandCreateQuery>(query, row.type), Texts{"glGenQueries(1, -> 1)"});
    EXPECT_EQ(callsOf<CommandBeginQuery>(query), Texts{"glBeginQuery(" + target + ", 1)"});
    EXPECT_EQ(callsOf<CommandEndQuery>(query), Texts{"glEndQuery(" + target + ")"});
    gl.answer(GL_QUERY_RESULT, row.raw);
    EXPECT_EQ(callsOf<CommandGetQueryResult>(query), Texts{std::string(row.read) + "(1, GL_QUERY_RESULT, <pointer>)"});
    EXPECT_EQ(renderer->getQueryResult(query), row.result);
    EXPECT_EQ(callsOf<CommandDestroyQuery>(query), (Texts{"glIsQuery(1)", "glDeleteQueries(1, {1})"}));
    EXPECT_EQ(renderer->getQueryResult(query), 0u);
}

INSTANTIATE_TEST_SUITE_P(
    Types, QueryTest,
    ::testing::Values(QueryRow{0, "GL_SAMPLES_PASSED", "glGetQueryObjectuiv", 12, 12},
                      QueryRow{1, "GL_ANY_SAMPLES_PASSED", "glGetQueryObjectuiv", 1, 1},
                      QueryRow{2, "GL_ANY_SAMPLES_PASSED_CONSERVATIVE", "glGetQueryObjectuiv", 2, 0},
                      QueryRow{3, "GL_PRIMITIVES_GENERATED", "glGetQueryObjectuiv", 5, 5},
                      QueryRow{4, "GL_TRANSFORM_FEEDBACK_PRIMITIVES_WRITTEN", "glGetQueryObjectuiv", 6, 6},
                      QueryRow{5, "GL_TIME_ELAPSED", "glGetQueryObjectui64v", 5000000000, 5000000000},
                      QueryRow{6, "GL_TIMESTAMP", "glGetQueryObjectui64v", 7000000000, 7000000000}));

TEST_F(RendererGL41TaskTest, QueryOfAnUnknownTypeYieldsZero)
{
    const QueryHandle query = renderer->generateQueryHandle();
    run<CommandCreateQuery>(query, 7u);
    gl.answer(GL_QUERY_RESULT, int64_t{3});
    EXPECT_EQ(callsOf<CommandGetQueryResult>(query), Texts{});
    EXPECT_EQ(renderer->getQueryResult(query), 0u);
}

} // namespace
} // namespace renderengine
