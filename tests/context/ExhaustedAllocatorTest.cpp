// What recording and submitting leave behind when the allocator gives nothing more: everything that was there before.

#include "commands/CommandBuffer.h"
#include "commands/DrawCommands.h"
#include "renderer/Frame.h"
#include "renderer/RendererNull.h"
#include "support/AllocationCounter.h"

#include <renderengine/RenderCache.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <new>
#include <numeric>
#include <vector>

namespace renderengine
{
namespace
{

using testing::AllocationLimit;

using Numbers = std::vector<uint32_t>;

Numbers numbersUpTo(uint32_t count)
{
    Numbers numbers(count);
    std::iota(numbers.begin(), numbers.end(), 0u);
    return numbers;
}

Numbers drawsOf(const CommandBuffer& commands)
{
    Numbers numbers;
    for (const std::shared_ptr<CommandBase>& command : commands)
    {
        numbers.push_back(dynamic_cast<const CommandRender&>(*command).handle.id);
    }
    return numbers;
}

Numbers drawsOf(const RenderCache& cache)
{
    return drawsOf(*cache.getCommandBuffer());
}

void recordDraws(RenderCache& cache, uint32_t first, uint32_t last)
{
    for (uint32_t id = first; id < last; ++id)
    {
        cache.draw(DrawHandle(id));
    }
}

/// Runs `action` with room for so many allocations; false when it ran out of them.
bool runWithin(uint64_t allocations, const std::function<void()>& action)
{
    const AllocationLimit limit(allocations);
    try
    {
        action();
        return true;
    }
    catch (const std::bad_alloc&)
    {
        return false;
    }
}

TEST(ExhaustedAllocatorTest, ARecordingThatFailsLeavesTheCommandsBeforeItAndGoesOnLater)
{
    constexpr uint32_t drawCount = 3000;
    bool finished = false;
    for (uint64_t allowed = 0; !finished; ++allowed)
    {
        RenderCache cache;
        uint32_t recorded = 0;
        finished = runWithin(allowed,
                             [&]
                             {
                                 for (; recorded < drawCount; ++recorded)
                                 {
                                     cache.draw(DrawHandle(recorded));
                                 }
                             });
        ASSERT_EQ(cache.getCommandBufferSize(), recorded) << allowed;
        ASSERT_EQ(drawsOf(cache), numbersUpTo(recorded)) << allowed;
        recordDraws(cache, recorded, drawCount + 1);
        ASSERT_EQ(drawsOf(cache), numbersUpTo(drawCount + 1)) << allowed;
    }
}

TEST(ExhaustedAllocatorTest, EndingABufferListIsDoneWholeOrNotAtAll)
{
    bool finished = false;
    uint64_t allowed = 0;
    for (; !finished; ++allowed)
    {
        RenderCache cache;
        recordDraws(cache, 0, 10);
        cache.beginBufferList(3);
        for (uint32_t i = 0; i < 3; ++i)
        {
            cache.setBufferListIndex(i);
            recordDraws(cache, 10 + 100 * i, 110 + 100 * i);
        }
        finished = runWithin(allowed, [&] { cache.endBufferList(); });
        if (!finished)
        {
            ASSERT_EQ(cache.getCommandBufferSize(), 100u) << allowed;
            cache.endBufferList();
        }
        ASSERT_EQ(drawsOf(cache), numbersUpTo(310)) << allowed;
    }
    EXPECT_GT(allowed, 1u) << "it never failed";
}

TEST(ExhaustedAllocatorTest, BeginningABufferListIsDoneWholeOrNotAtAll)
{
    bool finished = false;
    uint64_t allowed = 0;
    for (; !finished; ++allowed)
    {
        RenderCache cache;
        recordDraws(cache, 0, 10);
        finished = runWithin(allowed, [&] { cache.beginBufferList(5); });
        ASSERT_EQ(cache.getCommandBufferSize(), finished ? 0u : 10u) << allowed;
    }
    EXPECT_GT(allowed, 5u);
}

TEST(ExhaustedAllocatorTest, CopyingIsDoneWholeOrNotAtAll)
{
    RenderCache source;
    recordDraws(source, 10, 310);
    bool finished = false;
    uint64_t allowed = 0;
    for (; !finished; ++allowed)
    {
        RenderCache cache;
        recordDraws(cache, 0, 10);
        finished = runWithin(allowed, [&] { cache.copy(source, SbVec2i32(0, 300)); });
        ASSERT_EQ(drawsOf(cache), numbersUpTo(finished ? 310 : 10)) << allowed;
    }
    EXPECT_GT(allowed, 1u) << "it never failed";
}

/// Keeps the numbers of the draws that it runs.
class DrawCollector : public RendererNull
{
public:
    DrawCollector() : RendererNull(false) {}

    using RendererNull::execute;
    void execute(CommandRender& command) override { draws.push_back(command.handle.id); }

    Numbers draws;
};

TEST(ExhaustedAllocatorTest, ASubmissionThatFailsLosesNothingOfTheFrame)
{
    const auto cache = std::make_shared<RenderCache>();
    recordDraws(*cache, 5, 300);
    bool finished = false;
    uint64_t allowed = 0;
    for (; !finished; ++allowed)
    {
        Frame frame;
        DrawCollector renderer;
        for (uint32_t id = 0; id < 5; ++id)
        {
            frame.getHeadCommands().add<CommandRender>()->set(DrawHandle(id));
        }
        finished = runWithin(allowed, [&] { frame.submit(cache); });
        ASSERT_EQ(frame.getHeadCommands().size(), finished ? 0u : 5u) << allowed;
        if (!finished)
        {
            frame.submit(cache);
        }
        frame.execute(renderer);
        ASSERT_EQ(renderer.draws, numbersUpTo(300)) << allowed;
    }
    EXPECT_GT(allowed, 2u) << "it never failed";
}

} // namespace
} // namespace renderengine
