#include "RendererFixture.h"
#include "RendererGL41TestAccess.h"

#include <renderengine/FramebufferParameterGLEventArg.h>

#include <kavelor/SoGraphicalTestSingleton.h>
#include <kavelor/SoPreferences.h>

#include <algorithm>
#include <iterator>
#include <thread>
#include <vector>

namespace renderengine
{

namespace
{

using RendererGL41FrameTest = RendererGLTest;

const Texts frameStart = {"glEnable(GL_POINT_SPRITE)", "glEnable(GL_TEXTURE_CUBE_MAP_SEAMLESS)",
                          "glEnable(GL_PROGRAM_POINT_SIZE)"};

TEST_F(RendererGL41FrameTest, NeedsNoContextToBeMade)
{
    EXPECT_EQ(gl.calls(), Texts{});
}

TEST_F(RendererGL41FrameTest, FirstBeginMakesTheVertexArrayAndFinishes)
{
    renderer->begin();
    EXPECT_EQ(gl.takeCalls(), join({frameStart, {"glGenVertexArrays(1, -> 1)", "glBindVertexArray(1)", "glFinish()"}}));
    renderer->begin();
    EXPECT_EQ(gl.takeCalls(), join({frameStart, {"glFinish()"}}));
}

TEST_F(RendererGL41FrameTest, BeginWaitsOnTheGpuForTheLastPresent)
{
    renderer->begin();
    gl.clear();
    renderer->presentFrameSync();
    EXPECT_EQ(gl.takeCalls(), (Texts{"glFenceSync(GL_SYNC_GPU_COMMANDS_COMPLETE, 0) -> 1", "glFlush()"}));
    renderer->begin();
    EXPECT_EQ(gl.takeCalls(), join({frameStart,
                                    {"glIsSync(<sync 1>)", "glWaitSync(<sync 1>, 0, 18446744073709551615)",
                                     "glIsSync(<sync 1>)", "glDeleteSync(<sync 1>)"}}));
}

TEST_F(RendererGL41FrameTest, FinishFencesTheFrameAndFinishFrameWaitsForIt)
{
    renderer->finish();
    EXPECT_EQ(gl.takeCalls(), (Texts{"glFenceSync(GL_SYNC_GPU_COMMANDS_COMPLETE, 0) -> 1", "glFlush()"}));
    renderer->finishFrame();
    EXPECT_EQ(gl.takeCalls(), (Texts{"glIsSync(<sync 1>)", "glWaitSync(<sync 1>, 0, 18446744073709551615)",
                                     "glIsSync(<sync 1>)", "glDeleteSync(<sync 1>)"}));
}

TEST_F(RendererGL41FrameTest, FinishFrameWithoutAFrameLogs)
{
    renderer->finishFrame();
    EXPECT_EQ(gl.takeCalls(), Texts{});
    EXPECT_EQ(log.take(), Texts{"error: [FenceGL] Fence creation failed"});
}

TEST_F(RendererGL41FrameTest, OnlyTheValueOneTurnsFencesOn)
{
    SoPreferences::setInt("KVR_USE_FENCE", 2);
    start<RendererGL41>();
    renderer->finish();
    renderer->finishFrame();
    renderer->presentFrameSync();
    EXPECT_EQ(gl.takeCalls(), (Texts{"glFinish()", "glFinish()", "glFinish()"}));
    renderer->begin();
    EXPECT_EQ(gl.takeCalls().back(), "glFinish()");
}

TEST_F(RendererGL41FrameTest, CoreProfileHasNoPointSprites)
{
    SoPreferences::setBool("KVR_RENDERENGINE_USE_GLCORE", true);
    renderer->begin();
    EXPECT_EQ(gl.calls().front(), "glEnable(GL_TEXTURE_CUBE_MAP_SEAMLESS)");
}

TEST_F(RendererGL41FrameTest, PointSpritesCanBeSwitchedOff)
{
    SoPreferences::setBool("KVR_RENDERENGINE_ENABLE_POINT_SPRITE", false);
    renderer->begin();
    EXPECT_EQ(gl.countOf("glEnable(GL_POINT_SPRITE)"), 0u);
}

TEST_F(RendererGL41FrameTest, BeginTellsTheNumberOfCompilerThreads)
{
    SoPreferences::setInt("KVR_RENDERENGINE_MAX_SHADER_COMPILER_THREADS", 4);
    start<RendererGL41>();
    renderer->begin();
    EXPECT_EQ(gl.calls().back(), "glMaxShaderCompilerThreadsARB(4)");
}

TEST_F(RendererGL41FrameTest, PresentSyncAndFinishFrameSkipWithoutACurrentContext)
{
    renderer->finish();
    std::thread(
        [this]
        {
            renderer->presentFrameSync();
            renderer->finishFrame();
        })
        .join();
    EXPECT_EQ(gl.countOf("glFenceSync("), 1u);
    EXPECT_EQ(gl.countOf("glWaitSync("), 0u);
}

TEST_F(RendererGL41FrameTest, ExecuteFinishesOnlyWhenAFrameRan)
{
    renderer->execute();
    EXPECT_EQ(gl.countOf("glFenceSync("), 0u);
    renderer->endFrame();
    renderer->execute();
    EXPECT_EQ(gl.countOf("glFenceSync("), 1u);
}

TEST_F(RendererGL41FrameTest, InitInstallsTheCallbackOnlyForDebugging)
{
    renderer->init();
    EXPECT_EQ(gl.takeCalls(), Texts{});
    for (const SoPreferences::AskedKey& key : SoPreferences::getAskedKeys())
    {
        EXPECT_NE(key.name.toStdString(), "KVR_OPENGL_DEBUG_VERBOSE_LEVEL");
    }
    start<RendererGL41>(true);
    renderer->init();
    EXPECT_EQ(gl.takeCalls(),
              (Texts{"glEnable(GL_DEBUG_OUTPUT_SYNCHRONOUS)", "glDebugMessageCallback(<pointer>, null)"}));
}

TEST_F(RendererGL41FrameTest, DestroyDeletesTablesInOrder)
{
    renderer->begin();
    renderer->finish();
    const Scene scene = makeScene();
    makeSampler();
    const ShaderObjectHandle shaderObject = renderer->generateShaderObjectHandle();
    run<CommandCreateShaderObject>(shaderObject, ShaderObjectProperties());
    run<CommandCreateQuery>(renderer->generateQueryHandle(), 0u);
    gl.clear();
    renderer->destroy();
    Texts deletes;
    for (const std::string& call : gl.calls())
    {
        if (call.find("glDelete") == 0)
        {
            deletes.push_back(call);
        }
    }
    EXPECT_EQ(deletes,
              (Texts{"glDeleteVertexArrays(1, {1})", "glDeleteBuffers(1, {1})", "glDeleteBuffers(1, {2})",
                     "glDeleteSamplers(1, {1})", "glDeleteTextures(1, {1})", "glDeleteFramebuffers(1, {1})",
                     "glDeleteShader(2)", "glDeleteProgram(1)", "glDeleteQueries(1, {1})", "glDeleteSync(<sync 1>)"}));
    EXPECT_EQ(gl.liveObjects(), Texts{});
}

TEST_F(RendererGL41FrameTest, PresentArgumentHoldsNamesAndSize)
{
    makeTexture();
    renderer->setPresentColorTexture(makeTexture());
    renderer->setPresentDepthTexture(makeTexture(2, 0, 80));
    renderer->setSize(640, 480);
    const auto* argument = static_cast<const FramebufferParameterGLEventArg*>(renderer->updatePresentEventArg());
    EXPECT_EQ(argument->getColorTexId(), 2u);
    EXPECT_EQ(argument->getDepthTexId(), 3u);
    EXPECT_EQ(argument->getSize(), SbVec2i32(640, 480));
    renderer->setPresentDepthTexture(TextureHandle(77));
    renderer->updatePresentEventArg();
    EXPECT_EQ(argument->getDepthTexId(), 0u);
}

TEST_F(RendererGL41FrameTest, CaptureReadsThePresentTargetOnlyWhenAskedFor)
{
    const RenderTargetHandle target = makeRenderTarget();
    renderer->setPresentRenderTarget(target);
    renderer->setSize(2, 3);
    gl.clear();
    renderer->captureFrame(5);
    EXPECT_EQ(gl.takeCalls(), Texts{});
    SoGraphicalTestSingleton::getInstance().setOutput(::testing::TempDir().c_str(), "capture_");
    SoGraphicalTestSingleton::getInstance().requestFrame(5);
    renderer->captureFrame(5);
    EXPECT_EQ(gl.takeCalls(), (Texts{"glBindFramebuffer(GL_FRAMEBUFFER, 1)",
                                     "glReadPixels(0, 0, 2, 3, GL_RGBA, GL_UNSIGNED_BYTE, <pointer>)"}));
    EXPECT_FALSE(SoGraphicalTestSingleton::getInstance().isFrameNeeded(5));
}

TEST_F(RendererGL41FrameTest, CaptureOfAnEmptyFrameDoesNothingAndTheNumberStillAdvances)
{
    SoGraphicalTestSingleton& graphicalTest = SoGraphicalTestSingleton::getInstance();
    graphicalTest.setOutput(::testing::TempDir().c_str(), "capture_");
    graphicalTest.requestFrames({0, 1});
    renderer->finish();
    EXPECT_EQ(gl.countOf("glReadPixels("), 0u);
    for (const SbVec2i32& size : {SbVec2i32(5, 0), SbVec2i32(0, 5)})
    {
        renderer->setSize(static_cast<uint32_t>(size[0]), static_cast<uint32_t>(size[1]));
        renderer->captureFrame(1);
        EXPECT_EQ(gl.countOf("glReadPixels("), 0u);
    }
    renderer->setSize(1, 1);
    renderer->finish();
    EXPECT_EQ(gl.countOf("glReadPixels("), 1u);
    EXPECT_TRUE(graphicalTest.isFrameNeeded(0));
    EXPECT_FALSE(graphicalTest.isFrameNeeded(1));
    graphicalTest.reset();
}

TEST_F(RendererGL41FrameTest, MarkersAreSentWhateverTheSettingSays)
{
    EXPECT_EQ(callsOf<CommandPushDebugMarker>("shadows"),
              Texts{"glPushDebugGroup(GL_DEBUG_SOURCE_THIRD_PARTY, 1, -1, \"shadows\")"});
    EXPECT_EQ(callsOf<CommandPopDebugMarker>(), Texts{"glPopDebugGroup()"});
}

TEST_F(RendererGL41FrameTest, DebugGroupsBracketTheEntryPoints)
{
    SoPreferences::setBool("KVR_RENDERENGINE_GLDEBUG_GROUP", true);
    start<RendererGL46>();
    const Scene scene = makeScene();
    gl.clear();
    renderer->endFrame();
    renderer->execute();
    renderer->presentFrameSync();
    renderer->finishFrame();
    renderer->executeResourceCommands();
    run<CommandClearRT>(scene.shaderState.renderTarget, ClearTargetProperties());
    run<CommandRender>(scene.draw);
    std::string groups;
    for (const std::string& call : gl.calls())
    {
        if (call.find("glPushDebugGroup(GL_DEBUG_SOURCE_THIRD_PARTY, 1, ") == 0)
        {
            groups += call.substr(call.find('"')) + "\n";
        }
        else if (call == "glPopDebugGroup()")
        {
            groups += "-\n";
        }
    }
    // Those of the state applier come from the application and are left out above, but their ends are not.
    const std::string expectedStart = "\"renderengine::RendererGL41::execute RenderLoop\")\n"
                                      "\"renderengine::RendererGL41::finish \")\n"
                                      "-\n-\n"
                                      "\"renderengine::RendererGL41::presentFrameSync \")\n-\n"
                                      "\"renderengine::RendererGL41::finishFrame \")\n-\n"
                                      "\"renderengine::RendererGL41::executeResourceCommands CreateResource\")\n-\n"
                                      "\"renderengine::RendererGL41::execute CommandClearRT\")\n-\n"
                                      "\"renderengine::RendererGL41::execute CommandRender\")\n";
    EXPECT_EQ(groups.substr(0, expectedStart.size()), expectedStart);
    const std::string expectedEnd = "\"renderengine::RendererGL41::unbindTextures \")\n-\n"
                                    "\"renderengine::RendererGL41::setupTextures \")\n-\n"
                                    "\"DebugMarkerPushPop::DebugMarkerPushPop \")\n"
                                    "\"renderengine::RendererGL41::setupShaderState \")\n"
                                    "-\n-\n-\n";
    ASSERT_GE(groups.size(), expectedEnd.size());
    EXPECT_EQ(groups.substr(groups.size() - expectedEnd.size()), expectedEnd);
    EXPECT_EQ(gl.countOf("glPushDebugGroup("), gl.countOf("glPopDebugGroup("));
}

TEST_F(RendererGL41FrameTest, DebugLogIsDrainedInTens)
{
    RendererGL41TestAccess::drainDebugLog(*renderer);
    EXPECT_EQ(gl.countOf("glGetDebugMessageLogARB(10, 2048, "), 1u);
}

/// Two messages behind each other, each with the zero at its end, which its length counts.
GLuint GLAPIENTRY giveTwoMessages(GLuint count, GLsizei size, GLenum* /*sources*/, GLenum* /*types*/, GLuint* /*ids*/,
                                  GLenum* /*severities*/, GLsizei* lengths, GLchar* texts)
{
    constexpr char messages[] = "out of memory\0texture 7 is incomplete";
    EXPECT_GE(count, 2u);
    EXPECT_GE(size, static_cast<GLsizei>(sizeof(messages)));
    std::copy(std::begin(messages), std::end(messages), texts);
    lengths[0] = 14;
    lengths[1] = static_cast<GLsizei>(sizeof(messages)) - 14;
    return 2;
}

TEST_F(RendererGL41FrameTest, DrainedMessagesAreReportedOneByOne)
{
    GLEWContextStruct table = *glbinding::RecordingGL::table();
    table.kvr_common__glewGetDebugMessageLogARB = giveTwoMessages;
    const glbinding::ScopedTable scope(&table);
    RendererGL41TestAccess::drainDebugLog(*renderer);
    EXPECT_EQ(log.take(), (Texts{"error: [RendererGL][debug] out of memory",
                                 "error: [RendererGL][debug] texture 7 is incomplete"}));
}

TEST_F(RendererGL41FrameTest, OwnVirtualOperationsStandBehindThoseOfTheBase)
{
    constexpr size_t first = testing::DESTRUCTOR_SLOTS + 172;
    EXPECT_EQ(RendererGL41TestAccess::getOwnSlots(),
              (std::vector<size_t>{first, first + 1, first + 2, first + 3, first + 4}));
}

} // namespace
} // namespace renderengine
