#include "renderer/RenderLoop.h"

#include "context/ContextFactory.h"
#include "context/FakeContext.h"
#include "renderer/Task.h"

#include <gtest/gtest.h>

#include <functional>
#include <future>
#include <string>
#include <thread>

namespace renderengine
{
namespace
{

using testing::FakeContext;
using testing::Lines;
using testing::RecordingRenderer;

/// A loop of its own, on a context that has started none.
class RenderLoopTest : public ::testing::Test
{
protected:
    void start() { m_thread = std::thread(std::ref(m_loop)); }

    void stop()
    {
        m_loop.stop();
        m_thread.join();
    }

    testing::Trace m_trace;
    RecordingRenderer* m_renderer = new RecordingRenderer(m_trace);
    FakeContext m_context{ContextShare, m_trace, m_renderer};
    RenderLoop m_loop{m_context};
    std::thread m_thread;
};

TEST_F(RenderLoopTest, LivesFromMakeCurrentAndInitToDestroyAndDoneCurrent)
{
    start();
    stop();
    EXPECT_EQ(m_trace.take(), (Lines{"makeCurrent", "init", "destroy", "doneCurrent"}));
}

TEST_F(RenderLoopTest, EventsAreHandledInTheOrderQueued)
{
    m_renderer->createBuffer(BufferProperties());
    m_renderer->createQuery(0);
    m_renderer->endFrame();
    m_loop.pushEvent(RenderLoop::ResourceCommands, false);
    m_loop.pushEvent(RenderLoop::Frame, false);
    m_loop.pushEvent(RenderLoop::Frame, false);
    start();
    stop();
    EXPECT_EQ(m_trace.take(), (Lines{"makeCurrent", "init", "CommandCreateBuffer 20", "begin", "CommandCreateQuery 140",
                                     "finish", "begin", "destroy", "doneCurrent"}));
}

TEST_F(RenderLoopTest, PushEventWithWaitReturnsBehindTheWork)
{
    start();
    m_renderer->createBuffer(BufferProperties());
    m_loop.pushEvent(RenderLoop::ResourceCommands, true);
    EXPECT_EQ(m_trace.take(), (Lines{"makeCurrent", "init", "CommandCreateBuffer 20"}));
    stop();
}

TEST_F(RenderLoopTest, AnUnknownEventIsMarkedDoneAndDoesNothing)
{
    start();
    m_loop.pushEvent(3, true);
    m_loop.pushEvent(0xFFFFFFFF, true);
    stop();
    EXPECT_EQ(m_trace.take(), (Lines{"makeCurrent", "init", "destroy", "doneCurrent"}));
}

TEST_F(RenderLoopTest, AStopPushedWhileAFrameRunsIsHandledBehindThatFrame)
{
    std::promise<void> started;
    std::promise<void> gate;
    m_renderer->addTask(testing::makeTask(
        [&]
        {
            started.set_value();
            gate.get_future().wait();
        }));
    m_renderer->endFrame();
    start();
    m_loop.pushEvent(RenderLoop::Frame, false);
    started.get_future().wait();
    m_loop.pushEvent(RenderLoop::Stop, false);
    gate.set_value();
    m_thread.join();
    EXPECT_EQ(m_trace.take(),
              (Lines{"makeCurrent", "init", "begin", "CommandTask", "finish", "destroy", "doneCurrent"}));
}

TEST_F(RenderLoopTest, WithoutACurrentContextNoEventIsHandled)
{
    m_context.m_makeCurrentResult = false;
    m_renderer->createBuffer(BufferProperties());
    m_loop.pushEvent(RenderLoop::ResourceCommands, false);
    start();
    m_thread.join();
    EXPECT_EQ(m_trace.take(), (Lines{"makeCurrent", "init", "destroy", "doneCurrent"}));
}

TEST_F(RenderLoopTest, AFrameThatNoEventAskedForIsNotRun)
{
    m_renderer->createQuery(0);
    m_renderer->endFrame();
    start();
    stop();
    EXPECT_EQ(m_trace.take(), (Lines{"makeCurrent", "init", "destroy", "doneCurrent"}));
}

TEST_F(RenderLoopTest, AnEventQueuedBehindTheEndIsDroppedWithTheLoop)
{
    start();
    stop();
    m_loop.pushEvent(RenderLoop::Frame, false);
    EXPECT_EQ(m_trace.take(), (Lines{"makeCurrent", "init", "destroy", "doneCurrent"}));
}

TEST(RenderThreadTest, DestroyRunsOnceOnTheRenderThreadBehindTheLastEvent)
{
    class ThreadRecorder : public RecordingRenderer
    {
    public:
        ThreadRecorder(testing::Trace& trace, std::thread::id& initThread, std::thread::id& destroyThread)
            : RecordingRenderer(trace), m_initThread(initThread), m_destroyThread(destroyThread)
        {
        }
        void init() override
        {
            RecordingRenderer::init();
            m_initThread = std::this_thread::get_id();
        }
        void destroy() override
        {
            RecordingRenderer::destroy();
            m_destroyThread = std::this_thread::get_id();
        }

    private:
        std::thread::id& m_initThread;
        std::thread::id& m_destroyThread;
    };

    testing::Trace trace;
    std::thread::id initThread;
    std::thread::id destroyThread;
    {
        FakeContext context(ContextMultithread, trace, new ThreadRecorder(trace, initThread, destroyThread));
        context.init();
        context.execute(true);
    }
    EXPECT_EQ(trace.take(),
              (Lines{"makeCurrent", "init", "begin", "finish", "finishFrame", "destroy", "doneCurrent", "deleted"}));
    EXPECT_EQ(initThread, destroyThread);
    EXPECT_NE(initThread, std::this_thread::get_id());
}

#ifndef NDEBUG
TEST(RenderLoopDeathTest, ALoopWithoutARendererAsserts)
{
    testing::Trace trace;
    FakeContext context(ContextShare, trace, nullptr);
    RenderLoop loop(context);
    EXPECT_DEATH(loop(), "src/renderer/RenderLoop:.*renderer");
}
#endif

} // namespace
} // namespace renderengine
