#include "context/ContextBase.h"

#include "context/Roads.h"
#include "renderer/Assertion.h"
#include "renderer/LogCapture.h"
#include "renderer/RendererLog.h"
#include "renderer/RendererNull.h"
#include "renderer/Task.h"

#include <renderengine/FramebufferParameterEventArg.h>
#include <renderengine/RenderCache.h>

#include <kavelor/SoPreferences.h>

#include <gtest/gtest.h>

#include <future>
#include <stdexcept>
#include <thread>

namespace renderengine
{
namespace
{

using testing::FakeContext;
using testing::Lines;
using testing::makeTask;
using testing::RecordingRenderer;
using testing::Road;

std::shared_ptr<RenderCache> cacheOfDraw(uint32_t id)
{
    auto cache = std::make_shared<RenderCache>();
    cache->draw(DrawHandle(id));
    return cache;
}

class ContextRoadTest : public testing::RoadTest
{
};
INSTANTIATE_TEST_SUITE_P(Road, ContextRoadTest, ::testing::Values(Road::Inline, Road::Thread), testing::roadName);

TEST_P(ContextRoadTest, ExecuteWithAnEmptyFrameBeginsAndFinishes)
{
    m_context->execute(true);
    EXPECT_EQ(m_trace.take(), runAndFinish({"begin", "finish"}));
}

TEST_P(ContextRoadTest, ExecuteRunsResourcesHeadSubmissionsAndTail)
{
    const QueryHandle query = m_context->createQuery(0);
    m_context->submit(cacheOfDraw(1));
    m_context->destroyQuery(query);
    m_context->createBuffer(BufferProperties());
    m_context->submit(cacheOfDraw(2));
    m_context->execute(true);
    EXPECT_EQ(m_trace.take(),
              runAndFinish({"begin", "CommandCreateBuffer 20", "CommandCreateQuery 140", "CommandRender 1",
                            "CommandRender 2", "CommandDestroyQuery 140", "finish"}));
}

TEST_P(ContextRoadTest, NothingRunsBeforeExecute)
{
    m_context->createQuery(0);
    m_context->createBuffer(BufferProperties());
    m_context->submit(cacheOfDraw(1));
    EXPECT_EQ(m_trace.take(), Lines());
}

TEST_P(ContextRoadTest, ADestroyFollowedByADrawOfTheSameHandleDrawsAndThenDestroys)
{
    m_context->destroyDraw(DrawHandle(1));
    m_context->submit(cacheOfDraw(1));
    m_context->execute(true);
    EXPECT_EQ(m_trace.take(), runAndFinish({"begin", "CommandRender 1", "CommandDestroyDraw 1", "finish"}));
}

TEST_P(ContextRoadTest, AResourceCreateRunsAheadOfAnUpdateRecordedBeforeOrBehindIt)
{
    m_context->updateBuffer(BufferHandle(20), BufferProperties());
    EXPECT_EQ(m_context->createBuffer(BufferProperties()), BufferHandle(20));
    m_context->updateBuffer(BufferHandle(20), BufferProperties());
    m_context->execute(true);
    EXPECT_EQ(m_trace.take(), runAndFinish({"begin", "CommandCreateBuffer 20", "CommandUpdateBuffer 20",
                                            "CommandUpdateBuffer 20", "finish"}));
}

TEST_P(ContextRoadTest, AHeadUpdateRecordedAheadOfItsCreateRunsInOrderOfRecording)
{
    m_context->updateSampler(SamplerHandle(70), SamplerProperties());
    m_context->createSampler(SamplerProperties());
    m_context->execute(true);
    EXPECT_EQ(m_trace.take(), runAndFinish({"begin", "CommandUpdateSampler 70", "CommandCreateSampler 70", "finish"}));
}

TEST_P(ContextRoadTest, MapBufferReturnsTheMemoryThatTheMapCommandMadeReady)
{
    char memory = 0;
    m_renderer->m_mapped = &memory;
    const BufferHandle buffer = m_context->createBuffer(BufferProperties());
    EXPECT_EQ(m_context->mapBuffer(buffer, 0, 1, 2), &memory);
    Lines expected = run({"CommandCreateBuffer 20", "CommandMapBuffer 20"});
    expected.push_back("getMappedBufferPointer 20");
    EXPECT_EQ(m_trace.take(), expected);
}

TEST_P(ContextRoadTest, FlushingOperationsHaveRunWhenTheyReturn)
{
    const BufferHandle buffer(20);
    m_context->resizeBuffer(buffer, 8);
    EXPECT_EQ(m_trace.take(), run({"CommandResizeBuffer 20"}));
    m_context->unmapBuffer(buffer);
    EXPECT_EQ(m_trace.take(), run({"CommandUnmapBuffer 20"}));
    m_context->copyBuffer(buffer, buffer, 0, 0, 1);
    EXPECT_EQ(m_trace.take(), run({"CommandCopyBuffer"}));
    EXPECT_EQ(m_context->createShaderObject(ShaderObjectProperties()), ShaderObjectHandle(110));
    EXPECT_EQ(m_trace.take(), run({"CommandCreateShaderObject 110"}));
    EXPECT_EQ(m_context->createShaderProgram(ShaderProgramProperties()), ShaderProgramHandle(120));
    EXPECT_EQ(m_trace.take(), run({"CommandCreateShaderProgram 120"}));
}

TEST_P(ContextRoadTest, CreateShaderObjectAlsoRunsWhatWaitsInTheResourceList)
{
    m_context->createTexture(TextureProperties());
    m_context->createVertexBuffer(VertexBufferProperties());
    m_context->createSampler(SamplerProperties());
    m_context->createShaderObject(ShaderObjectProperties());
    EXPECT_EQ(m_trace.take(),
              run({"CommandCreateTexture 80", "CommandCreateVertexBuffer 30", "CommandCreateShaderObject 110"}));
}

TEST_P(ContextRoadTest, ExecuteResourceCommandsRunsTheListAlone)
{
    m_context->createBuffer(BufferProperties());
    m_context->createQuery(0);
    m_context->executeResourceCommands();
    EXPECT_EQ(m_trace.take(), run({"CommandCreateBuffer 20"}));
}

TEST_P(ContextRoadTest, DiscardFrameDropsHeadTailAndQueue)
{
    m_context->createQuery(0);
    m_context->submit(cacheOfDraw(1));
    m_context->destroyBuffer(BufferHandle(1));
    m_context->createBuffer(BufferProperties());
    m_context->discardFrame();
    EXPECT_EQ(m_trace.take(), Lines());
    m_context->execute(true);
    EXPECT_EQ(m_trace.take(), runAndFinish({"begin", "CommandCreateBuffer 20", "finish"}));
}

TEST_P(ContextRoadTest, ABufferIsCreatedByTheNextFlushingOperationAndUpdatedByTheFrame)
{
    const BufferHandle buffer = m_context->createBuffer(BufferProperties());
    m_context->updateBuffer(buffer, BufferProperties());
    m_context->unmapBuffer(BufferHandle(1));
    EXPECT_EQ(m_trace.take(), run({"CommandCreateBuffer 20", "CommandUnmapBuffer 1"}));
    m_context->execute(true);
    EXPECT_EQ(m_trace.take(), runAndFinish({"begin", "CommandUpdateBuffer 20", "finish"}));
}

TEST_P(ContextRoadTest, FlushRunsTheFrameWithoutFinishingItOnTheClientsThread)
{
    m_context->createQuery(0);
    m_context->flush(cacheOfDraw(1), true);
    EXPECT_EQ(m_trace.take(), run({"begin", "CommandCreateQuery 140", "CommandRender 1", "finish"}));
}

TEST_P(ContextRoadTest, FlushWithoutExecuteBehavesAsSubmit)
{
    m_context->createQuery(0);
    m_context->flush(cacheOfDraw(1), false);
    m_context->createQuery(0);
    EXPECT_EQ(m_trace.take(), Lines());
    m_context->submit(cacheOfDraw(2));
    m_context->execute(true);
    EXPECT_EQ(m_trace.take(), runAndFinish({"begin", "CommandCreateQuery 140", "CommandRender 1",
                                            "CommandCreateQuery 141", "CommandRender 2", "finish"}));
}

TEST_P(ContextRoadTest, OneCacheSubmittedTwiceRunsTwice)
{
    const auto cache = cacheOfDraw(1);
    m_context->createQuery(0);
    m_context->submit(cache);
    m_context->submit(cache);
    m_context->execute(true);
    EXPECT_EQ(m_trace.take(),
              runAndFinish({"begin", "CommandCreateQuery 140", "CommandRender 1", "CommandRender 1", "finish"}));
}

TEST_P(ContextRoadTest, CommandsRunOnTheThreadOfTheRoad)
{
    std::thread::id thread;
    m_context->addTask(makeTask([&thread] { thread = std::this_thread::get_id(); }));
    m_context->execute(true);
    EXPECT_EQ(thread == std::this_thread::get_id(), !isThreaded());
}

TEST_P(ContextRoadTest, OnlyAContextWithAThreadIsRenderThreaded)
{
    EXPECT_EQ(m_context->isRenderThreaded(), isThreaded());
    EXPECT_EQ(m_context->hasRenderThread(), isThreaded());
    EXPECT_EQ(m_context->getRenderer(), m_renderer);
}

TEST_P(ContextRoadTest, DeletionRunsWhatWasAskedForThenEndsTheThreadThenDeletesTheRenderer)
{
    m_context->submit(cacheOfDraw(1));
    m_context->execute(false);
    m_context->submit(cacheOfDraw(2)); // never asked for: dropped with the renderer
    m_context.reset();
    const Lines lines = takeWithoutFinishFrame();
    EXPECT_EQ(lines, isThreaded()
                         ? (Lines{"begin", "CommandRender 1", "finish", "destroy", "doneCurrent", "deleted"})
                         : (Lines{"makeCurrent", "begin", "CommandRender 1", "finish", "doneCurrent", "deleted"}));
}

TEST_P(ContextRoadTest, PresentOperationsGoStraightToTheRenderer)
{
    FramebufferParameterEventArg argument;
    m_renderer->m_presentArgument = &argument;
    EXPECT_FALSE(m_context->canPresent());
    EXPECT_FALSE(m_context->present());
    EXPECT_EQ(m_context->getPresentFrame(), nullptr);
    EXPECT_EQ(m_context->getReversePresentFrame(), nullptr);
    m_context->presentFrameSync();
    EXPECT_EQ(m_context->updatePresentEventArg(), &argument);
    char pixels = 0;
    m_context->readbackTexture(TextureHandle(3), &pixels, 5);
    EXPECT_EQ(m_trace.take(), (Lines{"presentFrameSync", "updatePresentEventArg", "readbackTexture 3 5"}));
}

TEST_P(ContextRoadTest, PresentTargetsTexturesAndSizeAreTheRenderersOwn)
{
    m_context->setPresentRenderTarget(RenderTargetHandle(1));
    m_context->setReversePresentRenderTarget(RenderTargetHandle(2));
    m_context->setPresentColorTexture(TextureHandle(3));
    m_context->setPresentDepthTexture(TextureHandle(4));
    m_context->setSize(5, 6);
    EXPECT_EQ(m_renderer->getPresentRenderTarget(), RenderTargetHandle(1));
    EXPECT_EQ(m_context->getPresentRenderTarget(), RenderTargetHandle(1));
    EXPECT_EQ(m_context->getReversePresentRenderTarget(), RenderTargetHandle(2));
    EXPECT_EQ(m_context->getPresentColorTexture(), TextureHandle(3));
    EXPECT_EQ(m_context->getPresentDepthTexture(), TextureHandle(4));
    EXPECT_EQ(m_renderer->getWidth(), 5u);
    EXPECT_EQ(m_renderer->getHeight(), 6u);
}

TEST_P(ContextRoadTest, LogsAndResultsAreReadFromTheRenderersMaps)
{
    m_renderer->resetShaderObjectLog(ShaderObjectHandle(1)) = "compiled";
    m_renderer->resetShaderProgramLog(ShaderProgramHandle(2)) = "linked";
    m_renderer->setQueryResult(QueryHandle(3), 4);
    EXPECT_EQ(m_context->getShaderObjectLog(ShaderObjectHandle(1)), "compiled");
    EXPECT_EQ(m_context->getShaderObjectLog(ShaderObjectHandle(9)), "");
    EXPECT_EQ(m_context->getShaderProgramLog(ShaderProgramHandle(2)), "linked");
    EXPECT_EQ(m_context->getShaderProgramLog(ShaderProgramHandle(9)), "");
    EXPECT_EQ(m_context->getQueryResult(QueryHandle(3)), 4u);
    EXPECT_EQ(m_context->getQueryResult(QueryHandle(9)), 0u);
}

TEST_P(ContextRoadTest, EveryResourceOperationRecordsItsCommand)
{
    m_context->destroyDraw(m_context->createDraw(nullptr, nullptr));
    m_context->updateDraw(DrawHandle(0), nullptr, nullptr);
    m_context->destroyDrawProperties(m_context->createDrawProperties(DrawProperties()));
    m_context->updateDrawProperties(DrawPropertiesHandle(10), DrawProperties());
    m_context->addDrawProperties(DrawHandle(0), DrawPropertiesHandle(10));
    m_context->removeDrawProperties(DrawHandle(0), DrawPropertiesHandle(10));
    m_context->removeAllDrawProperties(DrawHandle(0));
    m_context->destroyIndexBuffer(m_context->createIndexBuffer(IndexBufferProperties()));
    m_context->updateIndexBuffer(IndexBufferHandle(40), IndexBufferProperties());
    m_context->destroyShaderBuffer(m_context->createShaderBuffer(ShaderBufferProperties()));
    m_context->updateShaderBuffer(ShaderBufferHandle(50), ShaderBufferProperties());
    m_context->destroyTextureImage(m_context->createTextureImage(TextureImageProperties()));
    m_context->updateTextureImage(TextureImageHandle(60), TextureImageProperties());
    m_context->updateVertexBuffer(VertexBufferHandle(30), VertexBufferProperties());
    m_context->destroyVertexBuffer(VertexBufferHandle(30));
    m_context->destroySampler(SamplerHandle(70));
    m_context->updateTexture(TextureHandle(80), TextureProperties());
    m_context->resizeTexture(TextureHandle(80), 1, 1, 1);
    m_context->updateTextureBatchData(TextureHandle(80), TextureUpdateBatchDataProperties());
    m_context->destroyTexture(TextureHandle(80));
    m_context->destroyRenderTarget(m_context->createRenderTarget(RenderTargetProperties()));
    m_context->updateRenderTarget(RenderTargetHandle(90), RenderTargetProperties());
    m_context->destroyViewport(m_context->createViewport(ViewportProperties()));
    m_context->updateViewport(ViewportHandle(100), ViewportProperties());
    m_context->destroyShaderObject(ShaderObjectHandle(110));
    m_context->destroyShaderProgram(ShaderProgramHandle(120));
    m_context->destroyShaderParameter(ShaderParameterHandle(130));
    m_context->execute(true);
    EXPECT_EQ(m_trace.take(), runAndFinish({"begin",
                                            "CommandCreateIndexBuffer 40",
                                            "CommandCreateShaderBuffer 50",
                                            "CommandCreateTextureImage 60",
                                            "CommandCreateDraw 0",
                                            "CommandUpdateDraw 0",
                                            "CommandCreateDrawProperties 10",
                                            "CommandUpdateDrawProperties 10",
                                            "CommandAddDrawProperties 0",
                                            "CommandRemoveDrawProperties 0",
                                            "CommandRemoveAllDrawProperties 0",
                                            "CommandUpdateIndexBuffer 40",
                                            "CommandUpdateShaderBuffer 50",
                                            "CommandUpdateTextureImage 60",
                                            "CommandUpdateVertexBuffer 30",
                                            "CommandUpdateTexture 80",
                                            "CommandResizeTexture 80",
                                            "CommandUpdateTextureBatchData 80",
                                            "CommandCreateRenderTarget 90",
                                            "CommandUpdateRenderTarget 90",
                                            "CommandCreateViewport 100",
                                            "CommandUpdateViewport 100",
                                            "CommandDestroyDraw 0",
                                            "CommandDestroyDrawProperties 10",
                                            "CommandDestroyIndexBuffer 40",
                                            "CommandDestroyShaderBuffer 50",
                                            "CommandDestroyTextureImage 60",
                                            "CommandDestroyVertexBuffer 30",
                                            "CommandDestroySampler 70",
                                            "CommandDestroyTexture 80",
                                            "CommandDestroyRenderTarget 90",
                                            "CommandDestroyViewport 100",
                                            "CommandDestroyShaderObject 110",
                                            "CommandDestroyShaderProgram 120",
                                            "CommandDestroyShaderParameter 130",
                                            "finish"}));
}

TEST_P(ContextRoadTest, ShaderParametersOfAllRecordsReachTheHeadList)
{
    Lines expected = {"begin"};
    uint32_t id = 130;
#define RENDERENGINE_RUN(PROPERTIES)                                                                \
    m_context->updateShaderParameter(m_context->createShaderParameter(PROPERTIES()), PROPERTIES()); \
    expected.push_back("CommandCreateShaderParameter<" #PROPERTIES "> " + std::to_string(id));      \
    expected.push_back("CommandUpdateShaderParameter<" #PROPERTIES "> " + std::to_string(id++));
    RENDERENGINE_SHADER_PARAMETERS(RENDERENGINE_RUN)
#undef RENDERENGINE_RUN
    expected.push_back("finish");
    m_context->execute(true);
    EXPECT_EQ(m_trace.take(), runAndFinish(expected));
}

class ContextInlineTest : public testing::RoadTest
{
};
INSTANTIATE_TEST_SUITE_P(Road, ContextInlineTest, ::testing::Values(Road::Inline), testing::roadName);

TEST_P(ContextInlineTest, ARuntimeErrorOfAFrameIsLoggedAndSwallowedAndTheContextStaysCurrent)
{
    testing::LogCapture log;
    m_context->addTask(makeTask([] { throw std::runtime_error("out of order"); }));
    EXPECT_NO_THROW(m_context->execute(true));
    EXPECT_EQ(log.take(), "RenderEngine exception: out of order\n");
    EXPECT_EQ(m_trace.take(), (Lines{"makeCurrent", "begin", "CommandTask"}));
}

TEST_P(ContextInlineTest, ALogicErrorOfAFrameReachesTheCallerOfExecute)
{
    m_context->addTask(makeTask([] { throw std::logic_error("mine"); }));
    EXPECT_THROW(m_context->execute(true), std::logic_error);
}

TEST_P(ContextInlineTest, FlushPassesARuntimeErrorOn)
{
    auto cache = std::make_shared<RenderCache>();
    cache->task(makeTask([] { throw std::runtime_error("mine"); }));
    EXPECT_THROW(m_context->flush(cache, true), std::runtime_error);
}

TEST_P(ContextInlineTest, NeitherInitNorDestroyOfTheRendererIsCalled)
{
    m_context->execute(true);
    m_context.reset();
    EXPECT_EQ(m_trace.take(), (Lines{"makeCurrent", "begin", "finish", "doneCurrent", "finishFrame", "deleted"}));
}

TEST_P(ContextInlineTest, StoppingAThreadThatWasNeverStartedDoesNothing)
{
    m_context->stopRenderThread();
    EXPECT_EQ(m_trace.take(), Lines());
}

class ContextThreadTest : public testing::RoadTest
{
};
INSTANTIATE_TEST_SUITE_P(Road, ContextThreadTest, ::testing::Values(Road::Thread), testing::roadName);

TEST_P(ContextThreadTest, TheSecondExecuteWaitsAtTheEndOfItsFrameWhileTheFirstIsRunning)
{
    std::promise<void> started;
    std::promise<void> gate;
    m_context->addTask(makeTask(
        [&]
        {
            started.set_value();
            gate.get_future().wait();
        }));
    m_context->execute(false);
    started.get_future().wait();

    // The frame lock is what the end of the second frame has to wait for.
    EXPECT_FALSE(m_renderer->isFrameLockFree());
    EXPECT_EQ(takeWithoutFinishFrame(), (Lines{"begin", "CommandTask"}));
    std::thread opener([&gate] { gate.set_value(); });
    m_context->execute(false);
    const Lines lines = takeWithoutFinishFrame();
    ASSERT_FALSE(lines.empty());
    EXPECT_EQ(lines.front(), "finish");
    opener.join();
}

TEST_P(ContextThreadTest, TwoExecutesWithoutWaitingBothRunBeforeTheThreadEnds)
{
    m_context->submit(cacheOfDraw(1));
    m_context->execute(false);
    m_context->submit(cacheOfDraw(2));
    m_context->execute(false);
    m_context.reset();
    const Lines lines = takeWithoutFinishFrame();
    EXPECT_EQ(lines, (Lines{"begin", "CommandRender 1", "finish", "begin", "CommandRender 2", "finish", "destroy",
                            "doneCurrent", "deleted"}));
}

TEST_P(ContextThreadTest, TheClientRecordsTheNextFrameWhileOneIsRunning)
{
    std::promise<void> started;
    std::promise<void> gate;
    m_context->addTask(makeTask(
        [&]
        {
            started.set_value();
            gate.get_future().wait();
        }));
    m_context->execute(false);
    started.get_future().wait();
    m_context->createBuffer(BufferProperties());
    m_context->createQuery(0);
    m_context->submit(cacheOfDraw(1));
    gate.set_value();
    m_context->execute(true);
    const Lines lines = takeWithoutFinishFrame();
    EXPECT_EQ(lines, (Lines{"begin", "CommandTask", "finish", "begin", "CommandCreateBuffer 20",
                            "CommandCreateQuery 140", "CommandRender 1", "finish"}));
}

class ContextThreadDeathTest : public ContextThreadTest
{
};
INSTANTIATE_TEST_SUITE_P(Road, ContextThreadDeathTest, ::testing::Values(Road::Thread), testing::roadName);

TEST_P(ContextThreadDeathTest, AnExceptionOnTheRenderThreadEndsTheProcess)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(
        {
            m_context->addTask(makeTask([] { throw std::runtime_error("out of order"); }));
            m_context->execute(true);
        },
        "");
}

TEST(ContextBaseTest, FlagsBecomeFields)
{
    testing::Trace trace;
    FakeContext none(0, trace, nullptr);
    EXPECT_FALSE(none.getMultithread());
    EXPECT_FALSE(none.getShareContext());
    EXPECT_FALSE(none.getDebug());
    FakeContext first(1, trace, nullptr);
    EXPECT_TRUE(first.getMultithread());
    EXPECT_FALSE(first.getShareContext());
    FakeContext second(6, trace, nullptr);
    EXPECT_FALSE(second.getMultithread());
    EXPECT_TRUE(second.getShareContext());
    EXPECT_TRUE(second.getDebug());
}

TEST(ContextBaseTest, TheCountIsAtLeastOne)
{
    testing::Trace trace;
    EXPECT_EQ(FakeContext(0, trace, nullptr, 0).getCount(), 1);
    EXPECT_EQ(FakeContext(0, trace, nullptr, 1).getCount(), 1);
    EXPECT_EQ(FakeContext(0, trace, nullptr, 65535).getCount(), 65535);
}

TEST(ContextBaseTest, ANewContextHasNoRendererAndNoThread)
{
    testing::Trace trace;
    const FakeContext context(ContextMultithread, trace, nullptr);
    EXPECT_EQ(context.getRenderer(), nullptr);
    EXPECT_FALSE(context.isRenderThreaded());
}

TEST(ContextBaseTest, ADiscardedDestroyLeavesTheObjectAliveAndItsNumberTaken)
{
    const testing::LogCapture log;
    testing::Trace trace;
    FakeContext context(ContextShare, trace, new RendererLog(false));
    const TextureHandle texture = context.createTexture(TextureProperties());
    context.execute(true);
    context.destroyTexture(texture);
    context.discardFrame();
    EXPECT_NE(context.createTexture(TextureProperties()), texture);
    context.destroyTexture(texture);
    context.execute(true);
    EXPECT_EQ(context.createTexture(TextureProperties()), texture);
}

class DebugRendererTest : public ::testing::Test
{
protected:
    ~DebugRendererTest() override { SoPreferences::unset("KVR_RENDERENGINE_RENDERER"); }

    std::unique_ptr<RendererBase> make(const char* value)
    {
        SoPreferences::setString("KVR_RENDERENGINE_RENDERER", value);
        return std::unique_ptr<RendererBase>(m_context.createDebugRenderer());
    }

    testing::LogCapture m_log;
    testing::Trace m_trace;
    FakeContext m_context{ContextShare | ContextDebug, m_trace, nullptr};
};

TEST_F(DebugRendererTest, LogInAnyCaseMakesTheLogRendererWithTheDebugFlag)
{
    EXPECT_NE(dynamic_cast<RendererLog*>(make("LOG").get()), nullptr);
    EXPECT_EQ(m_log.take(), "renderengine::RendererLog::RendererLog debug = true \n"
                            "renderengine::RendererLog::~RendererLog \n");
    EXPECT_NE(dynamic_cast<RendererLog*>(make("log").get()), nullptr);
}

TEST_F(DebugRendererTest, NullInAnyCaseMakesTheNullRenderer)
{
    EXPECT_NE(dynamic_cast<RendererNull*>(make("NULL").get()), nullptr);
    EXPECT_NE(dynamic_cast<RendererNull*>(make("Null").get()), nullptr);
}

TEST_F(DebugRendererTest, OtherValuesMakeNone)
{
    for (const char* value : {"GL", "GL41", "gl46", "VK", "VULKAN", "LOGGER", " LOG"})
    {
        EXPECT_EQ(make(value), nullptr) << value;
    }
}

TEST(AssertionDeathTest, NamesTheConditionAndThePath)
{
    EXPECT_DEATH(assertionFailed("m_renderer", "src/context/ContextBase", 12),
                 "src/context/ContextBase:12: assertion \"m_renderer\" failed");
}

#ifndef NDEBUG
TEST(ContextBaseDeathTest, AnOperationBeforeInitAsserts)
{
    testing::Trace trace;
    FakeContext context(ContextShare, trace, nullptr);
    const char* message = "src/context/ContextBase:.*m_renderer";
    EXPECT_DEATH(context.execute(true), message);
    EXPECT_DEATH(context.createBuffer(BufferProperties()), message);
    EXPECT_DEATH(context.canPresent(), message);
    EXPECT_DEATH(context.flush(nullptr, false), message);
    EXPECT_DEATH(context.setSize(1, 1), message);
}
#endif

} // namespace
} // namespace renderengine
