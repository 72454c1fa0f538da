#include <cstdint>
#include <iterator>
#include <memory>
#include <vector>

#include <gtest/gtest.h>

#include <renderengine/BufferedRenderCache.h>

#include "commands/CommandBuffer.h"

namespace
{

using namespace renderengine;

/// Starts the ids over, so that a case does not depend on the ones before it.
struct FreshIds : BufferedRenderCache
{
    static void restart() { s_nextId = 0; }
    static uint64_t next() { return s_nextId; }
};

class BufferedRenderCacheTest : public testing::Test
{
protected:
    BufferedRenderCacheTest() { FreshIds::restart(); }
};

TEST_F(BufferedRenderCacheTest, StartsWithIdsZeroAndOne)
{
    BufferedRenderCache cache;
    EXPECT_EQ(cache.getBufferedRenderCacheId(), 0u);
    EXPECT_EQ(cache.getRenderCacheId(), 1u);
    const BufferedRenderCache second;
    EXPECT_EQ(second.getBufferedRenderCacheId(), 2u);
    EXPECT_EQ(second.getRenderCacheId(), 3u);
}

TEST_F(BufferedRenderCacheTest, SwapKeepsTheRecordedIdAndTakesOneNewId)
{
    BufferedRenderCache cache;
    cache.swap();
    EXPECT_EQ(cache.getBufferedRenderCacheId(), 1u);
    EXPECT_EQ(cache.getRenderCacheId(), 2u);
    EXPECT_EQ(FreshIds::next(), 3u);
}

TEST_F(BufferedRenderCacheTest, GivesItsTwoCachesInTurn)
{
    BufferedRenderCache cache;
    const std::shared_ptr<RenderCache> first = cache.getRenderCache();
    cache.swap();
    const std::shared_ptr<RenderCache> second = cache.getRenderCache();
    EXPECT_NE(first, second);
    cache.swap();
    EXPECT_EQ(cache.getRenderCache(), first);
    cache.swap();
    EXPECT_EQ(cache.getRenderCache(), second);
}

TEST_F(BufferedRenderCacheTest, SwapEmptiesTheSideThatReceivesCommands)
{
    BufferedRenderCache cache;
    cache.getRenderCache()->draw(DrawHandle(1));
    const std::shared_ptr<RenderCache> recorded = cache.getRenderCache();
    cache.swap();
    EXPECT_EQ(recorded->getCommandBufferSize(), 1u);
    EXPECT_EQ(cache.getRenderCache()->getCommandBufferSize(), 0u);
    // The empty side becomes the previous one.
    cache.swap();
    EXPECT_EQ(recorded->getCommandBufferSize(), 0u);
    cache.copy(SbVec2i32(0, 0));
    EXPECT_EQ(cache.getRenderCache()->getCommandBufferSize(), 0u);
}

TEST_F(BufferedRenderCacheTest, TwoSwapsInARowLeaveThePreviousSideEmpty)
{
    BufferedRenderCache cache;
    cache.getRenderCache()->draw(DrawHandle(1));
    cache.swap();
    const std::shared_ptr<RenderCache> second = cache.getRenderCache();
    cache.swap();
    EXPECT_NE(cache.getRenderCache(), second);
    EXPECT_EQ(second->getCommandBufferSize(), 0u);
    EXPECT_EQ(cache.getBufferedRenderCacheId(), 2u);
}

TEST_F(BufferedRenderCacheTest, InvalidateEmptiesBothSidesAndTakesTwoIds)
{
    BufferedRenderCache cache;
    const std::shared_ptr<RenderCache> first = cache.getRenderCache();
    first->draw(DrawHandle(1));
    cache.swap();
    const std::shared_ptr<RenderCache> second = cache.getRenderCache();
    second->draw(DrawHandle(2));
    cache.invalidate();
    EXPECT_EQ(first->getCommandBufferSize(), 0u);
    EXPECT_EQ(second->getCommandBufferSize(), 0u);
    EXPECT_EQ(cache.getRenderCache(), first);
    EXPECT_EQ(cache.getBufferedRenderCacheId(), 3u);
    EXPECT_EQ(cache.getRenderCacheId(), 4u);
    cache.invalidate();
    EXPECT_EQ(cache.getRenderCache(), first);
    EXPECT_EQ(cache.getBufferedRenderCacheId(), 5u);
    EXPECT_EQ(cache.getRenderCacheId(), 6u);
}

TEST_F(BufferedRenderCacheTest, CopiesNothingFromAFreshObject)
{
    BufferedRenderCache cache;
    cache.copy(SbVec2i32(0, 0));
    EXPECT_EQ(cache.getRenderCache()->getCommandBufferSize(), 0u);
}

TEST_F(BufferedRenderCacheTest, CopySharesCommandsOfThePreviousSide)
{
    BufferedRenderCache cache;
    const std::shared_ptr<RenderCache> previous = cache.getRenderCache();
    previous->draw(DrawHandle(1));
    previous->draw(DrawHandle(2));
    previous->draw(DrawHandle(3));
    cache.swap();
    cache.copy(SbVec2i32(1, 3));
    const auto source = previous->getCommandBuffer();
    const auto target = cache.getRenderCache()->getCommandBuffer();
    ASSERT_EQ(target->size(), 2u);
    EXPECT_EQ(*target->begin(), *std::next(source->begin()));
    EXPECT_EQ(*std::next(target->begin()), *std::next(source->begin(), 2));
}

TEST_F(BufferedRenderCacheTest, ACopySharesTheCachesButNotTheIndices)
{
    BufferedRenderCache cache;
    BufferedRenderCache copy(cache);
    EXPECT_EQ(FreshIds::next(), 2u);
    EXPECT_EQ(copy.getRenderCache(), cache.getRenderCache());
    EXPECT_EQ(copy.getRenderCacheId(), cache.getRenderCacheId());
    cache.swap();
    EXPECT_NE(copy.getRenderCache(), cache.getRenderCache());
    EXPECT_EQ(copy.getRenderCacheId(), 1u);
    EXPECT_EQ(cache.getRenderCacheId(), 2u);
    copy = cache;
    EXPECT_EQ(copy.getRenderCache(), cache.getRenderCache());
    EXPECT_EQ(copy.getRenderCacheId(), 2u);
}

} // namespace
