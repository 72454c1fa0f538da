#include "renderer/Frame.h"

#include "renderer/RecordingRenderer.h"
#include "renderer/Task.h"

#include <renderengine/RenderCache.h>

#include <kavelor/SbProfiler.h>

#include <gtest/gtest.h>

#include <stdexcept>

namespace renderengine
{
namespace
{

using testing::Lines;

class FrameTest : public ::testing::Test
{
protected:
    std::shared_ptr<RenderCache> cacheOfDraws(std::initializer_list<uint32_t> ids)
    {
        auto cache = std::make_shared<RenderCache>();
        for (const uint32_t id : ids)
        {
            cache->draw(DrawHandle(id));
        }
        return cache;
    }

    void recordHead(uint32_t id) { m_frame.getHeadCommands().add<CommandRender>()->set(DrawHandle(id)); }
    void recordTail(uint32_t id) { m_frame.getTailCommands().add<CommandRender>()->set(DrawHandle(id)); }

    Lines run()
    {
        m_frame.execute(m_renderer);
        return m_trace.take();
    }

    testing::Trace m_trace;
    testing::RecordingRenderer m_renderer{m_trace};
    Frame m_frame;
};

TEST_F(FrameTest, RunsHeadThenBuffersInOrderOfSubmissionThenTail)
{
    recordTail(9);
    m_frame.submit(cacheOfDraws({1, 2}));
    m_frame.submit(cacheOfDraws({3}));
    recordHead(0);
    EXPECT_EQ(run(),
              (Lines{"CommandRender 0", "CommandRender 1", "CommandRender 2", "CommandRender 3", "CommandRender 9"}));
}

TEST_F(FrameTest, SubmitMovesTheHeadCommandsAheadOfTheCachesCommands)
{
    m_frame.submit(cacheOfDraws({1}));
    recordHead(2);
    m_frame.submit(cacheOfDraws({3}));
    EXPECT_EQ(m_frame.getHeadCommands().size(), 0u);
    EXPECT_EQ(run(), (Lines{"CommandRender 1", "CommandRender 2", "CommandRender 3"}));
}

TEST_F(FrameTest, HeadCommandsBehindTheLastSubmissionRunFirstOfAll)
{
    recordHead(1);
    m_frame.submit(cacheOfDraws({2}));
    recordHead(3);
    EXPECT_EQ(run(), (Lines{"CommandRender 3", "CommandRender 1", "CommandRender 2"}));
}

TEST_F(FrameTest, ACacheSubmittedTwiceRunsTwiceAndTheHeadOnce)
{
    const auto cache = cacheOfDraws({1});
    recordHead(0);
    m_frame.submit(cache);
    m_frame.submit(cache);
    EXPECT_EQ(run(), (Lines{"CommandRender 0", "CommandRender 1", "CommandRender 1"}));
}

TEST_F(FrameTest, SubmitLeavesTheCacheAsItWas)
{
    const auto cache = cacheOfDraws({1, 2});
    m_frame.submit(cache);
    EXPECT_EQ(cache->getCommandBufferSize(), 2u);
    run();
    EXPECT_EQ(cache->getCommandBufferSize(), 2u);
    m_frame.submit(cache);
    EXPECT_EQ(run(), (Lines{"CommandRender 1", "CommandRender 2"}));
}

TEST_F(FrameTest, ACacheMayBeResetBehindItsSubmission)
{
    const auto cache = cacheOfDraws({1});
    m_frame.submit(cache);
    cache->reset();
    EXPECT_EQ(run(), (Lines{"CommandRender 1"}));
}

TEST_F(FrameTest, ExecuteLeavesNothingToRunAgain)
{
    recordHead(0);
    m_frame.submit(cacheOfDraws({1}));
    recordHead(2);
    recordTail(3);
    run();
    EXPECT_EQ(run(), Lines());
}

TEST_F(FrameTest, ClearEmptiesAllThreePartsAndDestroysNoCommandThatACacheHolds)
{
    bool destroyed = false;
    auto cache = std::make_shared<RenderCache>();
    cache->task(testing::makeTask([guard = std::shared_ptr<void>(nullptr, [&](void*) { destroyed = true; })] {}));
    m_frame.submit(cache);
    recordHead(0);
    recordTail(1);

    m_frame.clear();
    EXPECT_EQ(run(), Lines());
    EXPECT_FALSE(destroyed);
    EXPECT_EQ(cache->getCommandBufferSize(), 1u);
    cache.reset();
    EXPECT_TRUE(destroyed);
}

TEST_F(FrameTest, ACommandThatThrowsKeepsTheTailAndTheLaterBuffersWaiting)
{
    auto failing = std::make_shared<RenderCache>();
    failing->task(testing::makeTask([] { throw std::runtime_error("stop"); }));
    failing->draw(DrawHandle(1));
    m_frame.submit(failing);
    m_frame.submit(cacheOfDraws({2}));
    recordHead(0);
    recordTail(3);

    EXPECT_THROW(m_frame.execute(m_renderer), std::runtime_error);
    EXPECT_EQ(m_trace.take(), (Lines{"CommandRender 0", "CommandTask"}));
    EXPECT_EQ(run(), (Lines{"CommandRender 2", "CommandRender 3"}));
}

class ZoneRecorder : public kavelor::helper::SbProfilerHook
{
public:
    explicit ZoneRecorder(testing::Trace& trace) : m_trace(trace) {}
    void beginZone(const char* label) override { m_trace.add(std::string("begin ") + label); }
    void endZone(const char* label) override { m_trace.add(std::string("end ") + label); }

private:
    testing::Trace& m_trace;
};

TEST_F(FrameTest, TheWholeRunIsOneProfiledZone)
{
    ZoneRecorder recorder(m_trace);
    auto* former = kavelor::helper::SbProfiler::setHook(&recorder);
    recordHead(0);
    recordTail(1);
    const Lines lines = run();
    kavelor::helper::SbProfiler::setHook(former);
    EXPECT_EQ(lines, (Lines{"begin renderengine::Frame::execute", "CommandRender 0", "CommandRender 1",
                            "end renderengine::Frame::execute"}));
}

} // namespace
} // namespace renderengine
