// What recording and replaying cost in memory, counted by the program's own operators `new` and `delete`.

#include "commands/BufferViewCommands.h"
#include "context/ContextBase.h"
#include "context/ContextFactory.h"
#include "renderer/RendererNull.h"
#include "support/AllocationCounter.h"

#include <renderengine/ContextInfo.h>
#include <renderengine/RenderCache.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <vector>

namespace renderengine
{
namespace
{

using testing::getAllocationCounts;

/// A context without a device. It keeps no trace, which would allocate.
class QuietContext : public ContextBase
{
public:
    explicit QuietContext(uint8_t flags = ContextShare) : ContextBase(flags, 1)
    {
        m_renderer = new RendererNull(false);
        if (m_multithread)
        {
            startRenderThread();
        }
    }
    ~QuietContext() override { stopRenderThread(); }

    bool isValid() override { return true; }
    void init() override {}
    const ContextInfo& getContextInfo() override { return m_info; }
    bool makeCurrent() override { return true; }
    void doneCurrent() override {}

private:
    ContextInfo m_info;
};

std::shared_ptr<RenderCache> cacheOfDraws(uint32_t count)
{
    auto cache = std::make_shared<RenderCache>();
    for (uint32_t i = 0; i < count; ++i)
    {
        cache->draw(DrawHandle(i));
    }
    return cache;
}

/// A cache that holds all memory that the process keeps for commands, so that others have to ask the allocator for
/// theirs.
std::shared_ptr<RenderCache> holdKeptMemory()
{
    return cacheOfDraws(400000);
}

uint64_t allocationsOfAFrame(QuietContext& context, const std::shared_ptr<RenderCache>& cache)
{
    const uint64_t before = getAllocationCounts().allocations;
    context.submit(cache);
    context.execute(true);
    return getAllocationCounts().allocations - before;
}

TEST(AllocationTest, TheOperatorsAreCounted)
{
    const testing::AllocationCounts before = getAllocationCounts();
    auto bytes = std::make_unique<std::vector<char>>(1000);
    const testing::AllocationCounts during = getAllocationCounts();
    EXPECT_EQ(during.allocations - before.allocations, 2u);
    EXPECT_GE(during.liveBytes - before.liveBytes, 1000u);
    bytes.reset();
    EXPECT_EQ(getAllocationCounts().liveBytes, before.liveBytes);
}

void expectFramesToAllocateAlike(QuietContext& context)
{
    allocationsOfAFrame(context, cacheOfDraws(1)); // what the first frame makes once
    const uint64_t small = allocationsOfAFrame(context, cacheOfDraws(10));
    EXPECT_GT(small, 0u);
    for (const uint32_t count : {100u, 1000u, 10000u, 100000u})
    {
        const std::shared_ptr<RenderCache> cache = cacheOfDraws(count);
        for (int frame = 0; frame < 100; ++frame)
        {
            ASSERT_EQ(allocationsOfAFrame(context, cache), small) << count << " draws, frame " << frame;
        }
    }
}

TEST(AllocationTest, EveryFrameThatReplaysAKeptCacheAllocatesAsOftenWhateverTheCachesSize)
{
    QuietContext context;
    expectFramesToAllocateAlike(context);
}

TEST(AllocationTest, SoDoesEveryFrameOfARenderThread)
{
    QuietContext context(ContextShare | ContextMultithread);
    expectFramesToAllocateAlike(context);
}

TEST(AllocationTest, AFrameOfThreeSubmissionsAllocatesTheSameInEveryFrame)
{
    QuietContext context;
    const std::shared_ptr<RenderCache> cache = cacheOfDraws(1000);
    const auto frame = [&]
    {
        const uint64_t before = getAllocationCounts().allocations;
        for (int i = 0; i < 3; ++i)
        {
            context.submit(cache);
        }
        context.execute(true);
        return getAllocationCounts().allocations - before;
    };
    frame();
    const uint64_t second = frame();
    for (int i = 0; i < 100; ++i)
    {
        ASSERT_EQ(frame(), second) << "frame " << i;
    }
}

uint64_t bytesOfPendingIndexBuffers(uint32_t count)
{
    QuietContext context;
    const uint64_t before = getAllocationCounts().liveBytes;
    for (uint32_t i = 0; i < count; ++i)
    {
        context.createIndexBuffer(IndexBufferProperties());
    }
    return getAllocationCounts().liveBytes - before;
}

TEST(AllocationTest, PendingResourceCommandsTakeLittleMoreThanTheirOwnSize)
{
    // The command, the two counts of its pointer, the allocator's head, and the pointer in the list with room to grow.
    constexpr uint64_t COMMAND = sizeof(CommandCreateIndexBuffer) + 16 + 16 + 2 * sizeof(std::shared_ptr<CommandBase>);
    for (const uint32_t count : {1u, 2u, 10u, 100u, 1000u, 20000u})
    {
        EXPECT_LE(bytesOfPendingIndexBuffers(count), count * COMMAND + 512) << count;
    }
}

TEST(AllocationTest, ARecordedDrawTakesAtMost53Bytes)
{
    const std::shared_ptr<RenderCache> holder = holdKeptMemory();
    for (uint32_t count = 1000; count <= 200000; count += count / 3)
    {
        const uint64_t before = getAllocationCounts().liveBytes;
        const std::shared_ptr<RenderCache> cache = cacheOfDraws(count);
        const uint64_t bytes = getAllocationCounts().liveBytes - before;
        EXPECT_LE(static_cast<double>(bytes) / count, 53.0) << count;
    }
}

TEST(AllocationTest, RefillingACacheAllocatesNothingOnceItsMemoryIsThere)
{
    // Few enough for one chunk of commands, whose memory a cache that was emptied keeps.
    const std::shared_ptr<RenderCache> cache = cacheOfDraws(16);
    cache->reset();
    const uint64_t before = getAllocationCounts().allocations;
    for (int i = 0; i < 100; ++i)
    {
        cache->reset();
        for (uint32_t id = 0; id < 16; ++id)
        {
            cache->draw(DrawHandle(id));
        }
    }
    EXPECT_EQ(getAllocationCounts().allocations, before);
}

TEST(AllocationTest, AShortCacheThatIsResetWhileItsCommandsWaitKeepsToShortChunks)
{
    constexpr uint32_t drawCount = 10;
    constexpr uint64_t mostBytes = 16384;
    RenderCache cache;
    std::shared_ptr<RenderCache> waiting;
    const auto fill = [&cache, &waiting]
    {
        cache.reset();
        for (uint32_t i = 0; i < drawCount; ++i)
        {
            cache.draw(DrawHandle(i));
        }
        // Like a frame that has not run when the next one is recorded.
        waiting = std::make_shared<RenderCache>();
        waiting->copy(cache, SbVec2i32(0, drawCount));
    };
    fill();
    const uint64_t before = getAllocationCounts().liveBytes;
    uint64_t most = 0;
    for (int i = 0; i < 10000; ++i)
    {
        fill();
        most = std::max(most, getAllocationCounts().liveBytes);
    }
    EXPECT_LT(most, before + mostBytes);
}

} // namespace
} // namespace renderengine
