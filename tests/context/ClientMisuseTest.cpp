// What clients do wrong, or at an unlucky moment: each case ends in a defined state.

#include "context/Roads.h"
#include "renderer/LogCapture.h"
#include "renderer/Task.h"

#include <renderengine/RenderCache.h>

#include <gtest/gtest.h>

#include <future>
#include <memory>
#include <stdexcept>
#include <string>

namespace renderengine
{
namespace
{

using testing::Lines;
using testing::makeTask;
using testing::Road;

std::shared_ptr<RenderCache> cacheOfDraw(uint32_t id)
{
    auto cache = std::make_shared<RenderCache>();
    cache->draw(DrawHandle(id));
    return cache;
}

/// A task that does nothing and tells, through a flag, when the last holder let go of it.
TaskProperties guardedTask(bool& dropped)
{
    return makeTask([guard = std::shared_ptr<void>(nullptr, [&dropped](void*) { dropped = true; })] {});
}

class ClientMisuseRoadTest : public testing::RoadTest
{
};
INSTANTIATE_TEST_SUITE_P(Road, ClientMisuseRoadTest, ::testing::Values(Road::Inline, Road::Thread), testing::roadName);

TEST_P(ClientMisuseRoadTest, CachesRefilledBehindACopyAndASubmissionLeaveTheFrameAsItWas)
{
    const std::shared_ptr<RenderCache> source = cacheOfDraw(1);
    const auto cache = std::make_shared<RenderCache>();
    cache->copy(*source, SbVec2i32(0, 1));
    cache->draw(DrawHandle(2));
    m_context->submit(cache);
    source->reset();
    source->draw(DrawHandle(10));
    cache->reset();
    cache->draw(DrawHandle(20));
    m_context->execute(true);
    EXPECT_EQ(m_trace.take(), runAndFinish({"begin", "CommandRender 1", "CommandRender 2", "finish"}));
    m_context->submit(cache);
    m_context->execute(true);
    EXPECT_EQ(m_trace.take(), runAndFinish({"begin", "CommandRender 20", "finish"}));
}

TEST_P(ClientMisuseRoadTest, ACacheRefilledByATaskOfItsOwnFrameDoesNotChangeThatFrame)
{
    const auto cache = std::make_shared<RenderCache>();
    cache->task(makeTask(
        [&cache]
        {
            cache->reset();
            cache->draw(DrawHandle(7));
        }));
    cache->draw(DrawHandle(1));
    m_context->submit(cache);
    m_context->execute(true);
    EXPECT_EQ(m_trace.take(), runAndFinish({"begin", "CommandTask", "CommandRender 1", "finish"}));
    EXPECT_EQ(cache->getCommandBufferSize(), 1u);
}

TEST_P(ClientMisuseRoadTest, ACacheDestroyedBehindItsSubmissionStillRuns)
{
    m_context->submit(cacheOfDraw(3));
    m_context->execute(true);
    EXPECT_EQ(m_trace.take(), runAndFinish({"begin", "CommandRender 3", "finish"}));
}

TEST_P(ClientMisuseRoadTest, AFrameThatWasNeverExecutedIsDroppedUnrunWithItsContext)
{
    bool headDropped = false;
    bool cachedDropped = false;
    bool tailDropped = false;
    m_context->addTask(guardedTask(headDropped));
    auto cache = std::make_shared<RenderCache>();
    cache->task(guardedTask(cachedDropped));
    m_context->submit(cache);
    cache.reset();
    m_context->addEndTask(guardedTask(tailDropped));
    m_context->createBuffer(BufferProperties());
    m_context.reset();
    EXPECT_TRUE(headDropped);
    EXPECT_TRUE(cachedDropped);
    EXPECT_TRUE(tailDropped);
    const Lines expected = isThreaded() ? Lines{"destroy", "doneCurrent", "deleted"} : Lines{"deleted"};
    EXPECT_EQ(m_trace.take(), expected);
}

TEST_P(ClientMisuseRoadTest, ADiscardedDestroyNeitherRunsNorReturnsItsHandleAndMayBeRepeated)
{
    const QueryHandle query = m_context->createQuery(0);
    m_context->execute(true);
    m_trace.take();
    m_context->destroyQuery(query);
    m_context->discardFrame();
    m_context->execute(true);
    EXPECT_EQ(m_trace.take(), runAndFinish({"begin", "finish"}));
    m_context->destroyQuery(query);
    m_context->execute(true);
    EXPECT_EQ(m_trace.take(), runAndFinish({"begin", "CommandDestroyQuery 140", "finish"}));
}

TEST_P(ClientMisuseRoadTest, ADiscardedFrameKeepsTheResourceListWhoseCreatesRunWithTheNextFrame)
{
    m_context->createBuffer(BufferProperties());
    m_context->createQuery(0);
    m_context->discardFrame();
    m_context->execute(true);
    EXPECT_EQ(m_trace.take(), runAndFinish({"begin", "CommandCreateBuffer 20", "finish"}));
}

TEST_P(ClientMisuseRoadTest, AFloodOfExecutesThatNobodyWaitsForRunsEveryFrameInOrder)
{
    constexpr uint32_t COUNT = 500;
    Lines expected;
    for (uint32_t i = 0; i < COUNT; ++i)
    {
        m_context->submit(cacheOfDraw(i));
        m_context->execute(false);
        for (const std::string& line : run({"begin", "CommandRender " + std::to_string(i), "finish"}))
        {
            expected.push_back(line);
        }
    }
    m_context->executeResourceCommands(); // behind all of them
    if (!isThreaded())
    {
        expected.insert(expected.end(), {"makeCurrent", "doneCurrent"});
    }
    EXPECT_EQ(takeWithoutFinishFrame(), expected);
    EXPECT_EQ(m_renderer->getWaitingFrames(), 0u);
}

TEST_P(ClientMisuseRoadTest, ALastWaitingExecuteIsBehindAllThatNobodyWaitedFor)
{
    int runs = 0;
    const auto cache = std::make_shared<RenderCache>();
    cache->task(makeTask([&runs] { ++runs; }));
    for (int i = 0; i < 50; ++i)
    {
        m_context->submit(cache);
        m_context->execute(false);
    }
    m_context->execute(true);
    EXPECT_EQ(runs, 50);
}

class ClientMisuseInlineTest : public testing::RoadTest
{
};
INSTANTIATE_TEST_SUITE_P(Road, ClientMisuseInlineTest, ::testing::Values(Road::Inline), testing::roadName);

TEST_P(ClientMisuseInlineTest, AHeadTaskThatThrewRunsAgainWithTheNextFrameWhichThenWaitsItself)
{
    testing::LogCapture log;
    bool throws = true;
    m_context->submit(cacheOfDraw(1)); // a later one would take the task along
    m_context->addTask(makeTask(
        [&throws]
        {
            if (throws)
            {
                throw std::runtime_error("first");
            }
        }));
    m_context->execute(true);
    EXPECT_EQ(log.take(), "RenderEngine exception: first\n");
    EXPECT_EQ(m_renderer->getWaitingFrames(), 1u);
    m_trace.take();

    throws = false;
    m_context->submit(cacheOfDraw(2));
    m_context->execute(true);
    EXPECT_EQ(m_trace.take(), runAndFinish({"begin", "CommandTask", "CommandRender 1", "finish"}));
    EXPECT_EQ(m_renderer->getWaitingFrames(), 1u);
    m_context->execute(true);
    EXPECT_EQ(m_trace.take(), runAndFinish({"begin", "CommandRender 2", "finish"}));
}

TEST_P(ClientMisuseInlineTest, ACachedTaskThatThrewTakesItsSubmissionAlongAndTheOthersRunNext)
{
    testing::LogCapture log;
    const auto cache = std::make_shared<RenderCache>();
    cache->task(makeTask([] { throw std::runtime_error("cached"); }));
    cache->draw(DrawHandle(1));
    m_context->submit(cache);
    m_context->submit(cacheOfDraw(2));
    m_context->execute(true);
    EXPECT_EQ(log.take(), "RenderEngine exception: cached\n");
    m_trace.take();
    m_context->execute(true);
    EXPECT_EQ(m_trace.take(), runAndFinish({"begin", "CommandRender 2", "finish"}));
}

TEST_P(ClientMisuseInlineTest, ALogicErrorLeavesTheFrameWaitingAndTheFrameLockFree)
{
    const auto cache = std::make_shared<RenderCache>();
    cache->task(makeTask([] { throw std::logic_error("mine"); }));
    m_context->submit(cache);
    m_context->createBuffer(BufferProperties());
    EXPECT_THROW(m_context->execute(true), std::logic_error);
    EXPECT_EQ(m_trace.take(), (Lines{"makeCurrent", "begin", "CommandCreateBuffer 20", "CommandTask"}));
    EXPECT_TRUE(m_renderer->isFrameLockFree());
    EXPECT_EQ(m_renderer->getWaitingFrames(), 1u);
    m_context->execute(true);
    EXPECT_EQ(m_trace.take(), runAndFinish({"begin", "finish"}));
}

TEST_P(ClientMisuseInlineTest, AnEndTaskThatThrewRunsAgainAheadOfTheNextFrame)
{
    testing::LogCapture log;
    int runs = 0;
    m_context->addEndTask(makeTask(
        [&runs]
        {
            if (++runs == 1)
            {
                throw std::runtime_error("end");
            }
        }));
    m_context->execute(true);
    EXPECT_EQ(log.take(), "RenderEngine exception: end\n");
    m_context->execute(true);
    EXPECT_EQ(runs, 2);
}

class ClientMisuseThreadTest : public testing::RoadTest
{
};
INSTANTIATE_TEST_SUITE_P(Road, ClientMisuseThreadTest, ::testing::Values(Road::Thread), testing::roadName);

TEST_P(ClientMisuseThreadTest, ACacheRefilledWhileItsFrameIsRunningLeavesThatFrameAsItWas)
{
    std::promise<void> started;
    std::promise<void> gate;
    const auto cache = std::make_shared<RenderCache>();
    cache->task(makeTask(
        [&]
        {
            started.set_value();
            gate.get_future().wait();
        }));
    cache->draw(DrawHandle(1));
    m_context->submit(cache);
    m_context->execute(false);
    started.get_future().wait();
    cache->reset();
    cache->draw(DrawHandle(2));
    m_context->submit(cache);
    gate.set_value();
    m_context->execute(true);
    EXPECT_EQ(takeWithoutFinishFrame(),
              (Lines{"begin", "CommandTask", "CommandRender 1", "finish", "begin", "CommandRender 2", "finish"}));
}

TEST_P(ClientMisuseThreadTest, AContextDestroyedBehindAFloodRunsItAllBeforeItsThreadEnds)
{
    int runs = 0;
    const auto cache = std::make_shared<RenderCache>();
    cache->task(makeTask([&runs] { ++runs; }));
    for (int i = 0; i < 200; ++i)
    {
        m_context->submit(cache);
        m_context->execute(false);
    }
    m_context.reset();
    EXPECT_EQ(runs, 200);
    const Lines lines = takeWithoutFinishFrame();
    EXPECT_EQ(Lines(lines.end() - 3, lines.end()), (Lines{"destroy", "doneCurrent", "deleted"}));
}

} // namespace
} // namespace renderengine
