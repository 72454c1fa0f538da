#include "renderer/RendererBase.h"

#include "renderer/Frame.h"
#include "renderer/RecordingRenderer.h"
#include "renderer/Task.h"

#include <renderengine/FramebufferParameterEventArg.h>
#include <renderengine/PresentFrame.h>
#include <renderengine/RenderCache.h>

#include <gtest/gtest.h>

#include <condition_variable>
#include <mutex>
#include <stdexcept>
#include <thread>

namespace renderengine
{
namespace
{

using testing::Lines;
using testing::RecordingRenderer;

class RendererBaseTest : public ::testing::Test
{
protected:
    /// Ends the current frame and runs the oldest one that waits.
    Lines runFrame()
    {
        m_renderer.endFrame();
        m_renderer.execute();
        return m_trace.take();
    }

    testing::Trace m_trace;
    RecordingRenderer m_renderer{m_trace};
};

TEST_F(RendererBaseTest, ExecuteWithAnEmptyQueueBeginsRunsResourcesAndDoesNotFinish)
{
    m_renderer.createBuffer(BufferProperties());
    m_renderer.execute();
    EXPECT_EQ(m_trace.take(), (Lines{"begin", "CommandCreateBuffer 20"}));
}

TEST_F(RendererBaseTest, ExecuteRunsResourcesThenTheFrameThenFinishes)
{
    m_renderer.createQuery(0);
    m_renderer.createBuffer(BufferProperties());
    EXPECT_EQ(runFrame(), (Lines{"begin", "CommandCreateBuffer 20", "CommandCreateQuery 140", "finish"}));
}

TEST_F(RendererBaseTest, EachExecuteRunsOneFrameOldestFirst)
{
    m_renderer.createQuery(0);
    m_renderer.endFrame();
    m_renderer.createQuery(0);
    m_renderer.endFrame();
    m_renderer.execute();
    EXPECT_EQ(m_trace.take(), (Lines{"begin", "CommandCreateQuery 140", "finish"}));
    m_renderer.execute();
    EXPECT_EQ(m_trace.take(), (Lines{"begin", "CommandCreateQuery 141", "finish"}));
    m_renderer.execute();
    EXPECT_EQ(m_trace.take(), (Lines{"begin"}));
}

TEST_F(RendererBaseTest, ResourceCommandsRunOnce)
{
    m_renderer.createBuffer(BufferProperties());
    m_renderer.executeResourceCommands();
    EXPECT_EQ(m_trace.take(), (Lines{"CommandCreateBuffer 20"}));
    m_renderer.executeResourceCommands();
    EXPECT_EQ(m_trace.take(), Lines());
}

TEST_F(RendererBaseTest, ExecuteCommandsRunsTheListInOrderAndLeavesItAsItIs)
{
    CommandBuffer commands;
    commands.add<CommandRender>()->set(DrawHandle(2));
    commands.add<CommandRender>()->set(DrawHandle(1));
    m_renderer.executeCommands(commands);
    EXPECT_EQ(commands.size(), 2u);
    EXPECT_EQ(m_trace.take(), (Lines{"CommandRender 2", "CommandRender 1"}));
}

TEST_F(RendererBaseTest, EndFrameReturnsTheFrameThatItQueued)
{
    m_renderer.addTask(testing::makeTask([] {}));
    const std::shared_ptr<Frame> frame = m_renderer.endFrame();
    EXPECT_EQ(frame->getHeadCommands().size(), 1u);
    EXPECT_EQ(m_renderer.getWaitingFrames(), 1u);
    m_renderer.execute();
    EXPECT_EQ(frame.use_count(), 1);
    EXPECT_EQ(frame->getHeadCommands().size(), 0u);
}

TEST_F(RendererBaseTest, DiscardFrameDropsTheFrontFrameUnrun)
{
    m_renderer.createQuery(0);
    const std::shared_ptr<Frame> frame = m_renderer.endFrame();
    m_renderer.discardFrame();
    EXPECT_EQ(m_renderer.getWaitingFrames(), 0u);
    EXPECT_EQ(frame->getHeadCommands().size(), 0u);
    m_renderer.execute();
    EXPECT_EQ(m_trace.take(), (Lines{"begin"}));
}

TEST_F(RendererBaseTest, FlushFormOfSubmissionQueuesAsThePlainOne)
{
    const auto cache = std::make_shared<RenderCache>();
    cache->draw(DrawHandle(1));
    m_renderer.createQuery(0);
    m_renderer.submitFlush(cache);
    m_renderer.createQuery(0);
    m_renderer.submit(cache);
    EXPECT_EQ(runFrame(), (Lines{"begin", "CommandCreateQuery 140", "CommandRender 1", "CommandCreateQuery 141",
                                 "CommandRender 1", "finish"}));
}

TEST_F(RendererBaseTest, AFrameThatThrowsDoesNotBringTheResourceListBack)
{
    m_renderer.createBuffer(BufferProperties());
    m_renderer.addTask(testing::makeTask([] { throw std::runtime_error("stop"); }));
    m_renderer.endFrame();
    EXPECT_THROW(m_renderer.execute(), std::runtime_error);
    EXPECT_EQ(m_trace.take(), (Lines{"begin", "CommandCreateBuffer 20", "CommandTask"}));
    m_renderer.executeResourceCommands();
    EXPECT_EQ(m_trace.take(), Lines());
}

/// Fails at the first create of a texture.
class FailingRenderer : public RecordingRenderer
{
public:
    using RecordingRenderer::execute;
    using RecordingRenderer::RecordingRenderer;
    void execute(CommandCreateTexture& command) override
    {
        RecordingRenderer::execute(command);
        if (m_fails)
        {
            m_fails = false;
            createShaderBuffer(ShaderBufferProperties()); // as a client would meanwhile
            throw std::runtime_error("stop");
        }
    }
    bool m_fails = true;
};

TEST_F(RendererBaseTest, AnExceptionPutsTheWholeResourceListBackAheadOfWhatCameMeanwhile)
{
    FailingRenderer renderer(m_trace);
    renderer.createBuffer(BufferProperties());
    renderer.createTexture(TextureProperties());
    renderer.createVertexBuffer(VertexBufferProperties());
    EXPECT_THROW(renderer.executeResourceCommands(), std::runtime_error);
    EXPECT_EQ(m_trace.take(), (Lines{"CommandCreateBuffer 20", "CommandCreateTexture 80"}));
    EXPECT_TRUE(renderer.isFrameLockFree());
    renderer.executeResourceCommands();
    EXPECT_EQ(m_trace.take(), (Lines{"CommandCreateBuffer 20", "CommandCreateTexture 80",
                                     "CommandCreateVertexBuffer 30", "CommandCreateShaderBuffer 50"}));
}

TEST_F(RendererBaseTest, AnExceptionInExecuteKeepsTheFrameWaiting)
{
    m_renderer.addTask(testing::makeTask([] { throw std::runtime_error("stop"); }));
    m_renderer.endFrame();
    EXPECT_THROW(m_renderer.execute(), std::runtime_error);
    EXPECT_EQ(m_renderer.getWaitingFrames(), 1u);
    EXPECT_TRUE(m_renderer.isFrameLockFree());
}

TEST_F(RendererBaseTest, AClientMayCreateResourcesWhileAFrameRuns)
{
    std::mutex mutex;
    std::condition_variable changed;
    bool running = false;
    bool created = false;
    m_renderer.addTask(testing::makeTask(
        [&]
        {
            std::unique_lock<std::mutex> lock(mutex);
            running = true;
            changed.notify_all();
            changed.wait(lock, [&] { return created; });
        }));
    m_renderer.endFrame();
    std::thread renderThread(
        [this]
        {
            m_renderer.execute();
            m_renderer.execute();
        });
    {
        std::unique_lock<std::mutex> lock(mutex);
        changed.wait(lock, [&] { return running; });
    }
    EXPECT_FALSE(m_renderer.isFrameLockFree());
    m_renderer.createBuffer(BufferProperties());
    m_renderer.createTexture(TextureProperties());
    {
        const std::lock_guard<std::mutex> lock(mutex);
        created = true;
        changed.notify_all();
    }
    renderThread.join();
    EXPECT_EQ(m_trace.take(),
              (Lines{"begin", "CommandTask", "finish", "begin", "CommandCreateBuffer 20", "CommandCreateTexture 80"}));
}

TEST_F(RendererBaseTest, ResourcesCreatedWhileTheListIsTakenOutRunOnceAndInOrder)
{
    constexpr int COUNT = 1000;
    std::thread renderThread(
        [this]
        {
            for (int i = 0; i < COUNT; ++i)
            {
                m_renderer.executeResourceCommands();
            }
        });
    Lines expected;
    for (int i = 0; i < COUNT; ++i)
    {
        const BufferHandle handle = m_renderer.createBuffer(BufferProperties());
        expected.push_back("CommandCreateBuffer " + std::to_string(handle.id));
    }
    renderThread.join();
    m_renderer.executeResourceCommands();
    EXPECT_EQ(m_trace.take(), expected);
}

TEST_F(RendererBaseTest, WithoutAPresentStepPresentReturnsFalseAndTouchesNothing)
{
    EXPECT_FALSE(m_renderer.canPresent());
    EXPECT_EQ(m_renderer.getPresentFrame(), nullptr);
    EXPECT_EQ(m_renderer.getReversePresentFrame(), nullptr);
    EXPECT_FALSE(m_renderer.present());
    EXPECT_EQ(m_trace.take(), Lines());
}

class PresentingRenderer : public RecordingRenderer, public PresentFrame
{
public:
    using RecordingRenderer::RecordingRenderer;
    bool canPresent() override { return true; }
    PresentFrame* getPresentFrame() override { return this; }
    void presentFrame(const FramebufferParameterEventArg* arg) override { m_presented = arg; }
    const FramebufferParameterEventArg* m_presented = nullptr;
};

TEST_F(RendererBaseTest, PresentRunsTheStepWithAnUpdatedArgument)
{
    PresentingRenderer renderer(m_trace);
    FramebufferParameterEventArg argument;
    renderer.m_presentArgument = &argument;
    EXPECT_TRUE(renderer.present());
    EXPECT_EQ(renderer.m_presented, &argument);
    EXPECT_EQ(m_trace.take(), (Lines{"updatePresentEventArg"}));
}

TEST_F(RendererBaseTest, AHandleWithoutALogGivesTheEmptyTextAndMakesNoEntry)
{
    EXPECT_EQ(m_renderer.getShaderObjectLog(ShaderObjectHandle(7)), "");
    EXPECT_EQ(&m_renderer.getShaderObjectLog(ShaderObjectHandle(7)),
              &m_renderer.getShaderObjectLog(ShaderObjectHandle()));
    EXPECT_EQ(m_renderer.getShaderObjectLogCount(), 1u);
    EXPECT_EQ(m_renderer.getShaderProgramLog(ShaderProgramHandle(7)), "");
    EXPECT_EQ(&m_renderer.getShaderProgramLog(ShaderProgramHandle(7)),
              &m_renderer.getShaderProgramLog(ShaderProgramHandle()));
    EXPECT_EQ(m_renderer.getShaderProgramLogCount(), 1u);
}

TEST_F(RendererBaseTest, AResetLogIsEmptyAndTakesWhatTheRendererWrites)
{
    m_renderer.resetShaderObjectLog(ShaderObjectHandle(7)) = "compiled";
    EXPECT_EQ(m_renderer.getShaderObjectLog(ShaderObjectHandle(7)), "compiled");
    EXPECT_EQ(m_renderer.getShaderObjectLog(ShaderObjectHandle(8)), "");
    EXPECT_EQ(m_renderer.resetShaderObjectLog(ShaderObjectHandle(7)), "");
    EXPECT_EQ(m_renderer.getShaderObjectLog(ShaderObjectHandle(7)), "");

    m_renderer.resetShaderProgramLog(ShaderProgramHandle(7)) = "linked";
    EXPECT_EQ(m_renderer.getShaderProgramLog(ShaderProgramHandle(7)), "linked");
    EXPECT_EQ(m_renderer.resetShaderProgramLog(ShaderProgramHandle(7)), "");
}

TEST_F(RendererBaseTest, AQueryWithoutAResultGivesTheValueOfTheInvalidHandle)
{
    EXPECT_EQ(m_renderer.getQueryResult(QueryHandle(3)), 0u);
    EXPECT_EQ(m_renderer.getQueryResultCount(), 1u);
    m_renderer.setQueryResult(QueryHandle(), 5);
    EXPECT_EQ(m_renderer.getQueryResult(QueryHandle(3)), 5u);
    m_renderer.setQueryResult(QueryHandle(3), 0x100000000u);
    EXPECT_EQ(m_renderer.getQueryResult(QueryHandle(3)), 0x100000000u);
}

TEST_F(RendererBaseTest, PresentTargetsTexturesAndSizeStartEmptyAndKeepWhatIsSet)
{
    EXPECT_FALSE(m_renderer.getPresentRenderTarget().isValid());
    EXPECT_FALSE(m_renderer.getReversePresentRenderTarget().isValid());
    EXPECT_FALSE(m_renderer.getPresentColorTexture().isValid());
    EXPECT_FALSE(m_renderer.getPresentDepthTexture().isValid());
    EXPECT_EQ(m_renderer.getWidth(), 0u);
    EXPECT_EQ(m_renderer.getHeight(), 0u);

    m_renderer.setPresentRenderTarget(RenderTargetHandle(1));
    m_renderer.setReversePresentRenderTarget(RenderTargetHandle(2));
    m_renderer.setPresentColorTexture(TextureHandle(3));
    m_renderer.setPresentDepthTexture(TextureHandle(4));
    m_renderer.setSize(640, 480);
    EXPECT_EQ(m_renderer.getPresentRenderTarget(), RenderTargetHandle(1));
    EXPECT_EQ(m_renderer.getReversePresentRenderTarget(), RenderTargetHandle(2));
    EXPECT_EQ(m_renderer.getPresentColorTexture(), TextureHandle(3));
    EXPECT_EQ(m_renderer.getPresentDepthTexture(), TextureHandle(4));
    EXPECT_EQ(m_renderer.getWidth(), 640u);
    EXPECT_EQ(m_renderer.getHeight(), 480u);
}

TEST_F(RendererBaseTest, KeepsTheDebugFlag)
{
    EXPECT_FALSE(m_renderer.getDebug());
    EXPECT_TRUE(RecordingRenderer(m_trace, true).getDebug());
}

TEST_F(RendererBaseTest, ATaskRunsThroughTheCommonBody)
{
    int runs = 0;
    CommandTask command;
    command.set(testing::makeTask([&runs] { ++runs; }));
    m_renderer.RendererBase::execute(command);
    EXPECT_EQ(runs, 1);
    EXPECT_EQ(m_trace.take(), Lines());
}

} // namespace
} // namespace renderengine
