#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "commands/CommandBuffer.h"
#include "commands/DrawCommands.h"
#include "commands/TaskCommands.h"

namespace
{

using namespace renderengine;

/// A command of a chosen size that checks its own bytes when it goes.
template <std::size_t Size> struct FilledCommand : CommandBase
{
    FilledCommand() = default;
    ~FilledCommand() override
    {
        for (const uint8_t byte : bytes)
        {
            if (damaged != nullptr && byte != fill)
            {
                *damaged = true;
            }
        }
    }
    void set(uint8_t value, bool* damagedFlag) noexcept
    {
        fill = value;
        damaged = damagedFlag;
        std::fill(std::begin(bytes), std::end(bytes), value);
    }
    void execute(RendererBase&) override {}

    bool* damaged = nullptr;
    uint8_t fill = 0;
    uint8_t bytes[Size];
};

/// Makes a list long enough to have an arena, and empties it: from now on its commands come from there.
void openArena(CommandBuffer& buffer)
{
    for (int i = 0; i < 20; ++i)
    {
        buffer.add<CommandRender>();
    }
    buffer.clear();
}

TEST(CommandArena, KeepsCommandsOfAllSizesApart)
{
    bool damaged = false;
    {
        CommandBuffer buffer;
        for (int i = 0; i < 3000; ++i)
        {
            const auto fill = static_cast<uint8_t>(i);
            switch (i % 5)
            {
            case 0:
                buffer.record<FilledCommand<1>>(fill, &damaged);
                break;
            case 1:
                buffer.record<FilledCommand<37>>(fill, &damaged);
                break;
            case 2:
                buffer.record<FilledCommand<200>>(fill, &damaged);
                break;
            case 3:
                buffer.record<FilledCommand<1000>>(fill, &damaged);
                break;
            default:
                buffer.record<FilledCommand<5000>>(fill, &damaged);
                break;
            }
        }
        EXPECT_EQ(buffer.size(), 3000u);
    }
    EXPECT_FALSE(damaged);
}

TEST(CommandArena, TakesNoRoomInTheControlBlock)
{
    // The block is the control block with its two counts and the command behind it, and one draw follows the other.
    CommandBuffer buffer;
    openArena(buffer);
    auto* const first = reinterpret_cast<char*>(buffer.add<CommandRender>());
    auto* const second = reinterpret_cast<char*>(buffer.add<CommandRender>());
    EXPECT_LE(second - first, 32);
    EXPECT_GE(second - first, static_cast<std::ptrdiff_t>(sizeof(CommandRender)));
}

TEST(CommandArena, AlignsEveryCommand)
{
    CommandBuffer buffer;
    openArena(buffer);
    for (int i = 0; i < 200; ++i)
    {
        EXPECT_EQ(reinterpret_cast<uintptr_t>(buffer.add<CommandRender>()) % alignof(CommandRender), 0u);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(buffer.add<FilledCommand<3>>()) % alignof(FilledCommand<3>), 0u);
        buffer.clear();
    }
    struct alignas(64) AlignedCommand : CommandRender
    {
    };
    for (int i = 0; i < 20; ++i)
    {
        EXPECT_EQ(reinterpret_cast<uintptr_t>(buffer.add<AlignedCommand>()) % 64, 0u);
    }
}

TEST(CommandArena, CommandsOutliveTheirList)
{
    std::vector<std::shared_ptr<CommandBase>> held;
    {
        CommandBuffer buffer;
        for (uint32_t i = 0; i < 10000; ++i)
        {
            buffer.record<CommandRender>(DrawHandle(i));
        }
        for (std::size_t i = 0; i < 10000; i += 100)
        {
            held.push_back(*std::next(buffer.begin(), static_cast<std::ptrdiff_t>(i)));
        }
    }
    for (std::size_t i = 0; i < held.size(); ++i)
    {
        EXPECT_EQ(dynamic_cast<CommandRender&>(*held[i]).handle.id, i * 100);
    }
}

TEST(CommandArena, StartsItsChunkOverWhenAllCommandsAreGone)
{
    CommandBuffer buffer;
    openArena(buffer);
    buffer.add<CommandRender>();
    buffer.clear();
    const void* const first = buffer.add<CommandRender>();
    buffer.clear();
    for (int i = 0; i < 1000; ++i)
    {
        EXPECT_EQ(buffer.add<CommandRender>(), first);
        buffer.clear();
    }
}

TEST(CommandArena, DoesNotStartItsChunkOverWhileACommandIsHeld)
{
    CommandBuffer buffer;
    openArena(buffer);
    buffer.record<CommandRender>(DrawHandle(7));
    const std::shared_ptr<CommandBase> held = *buffer.begin();
    for (uint32_t i = 0; i < 1000; ++i)
    {
        buffer.clear();
        buffer.record<CommandRender>(DrawHandle(i + 100));
    }
    EXPECT_EQ(dynamic_cast<CommandRender&>(*held).handle.id, 7u);
}

TEST(CommandArena, AShortListDoesWithout)
{
    // Commands of the heap stand further apart than those of an arena, and wherever there is room.
    std::vector<std::shared_ptr<CommandBase>> held;
    {
        CommandBuffer buffer;
        for (uint32_t i = 0; i < 1000; ++i)
        {
            buffer.clear();
            buffer.record<CommandRender>(DrawHandle(i));
            buffer.record<CommandRender>(DrawHandle(i + 1));
            held.push_back(*std::next(buffer.begin()));
        }
    }
    for (std::size_t i = 0; i < held.size(); ++i)
    {
        EXPECT_EQ(dynamic_cast<CommandRender&>(*held[i]).handle.id, i + 1);
        EXPECT_EQ(held[i].use_count(), 1);
    }
}

struct HeldList final : TaskInterface
{
    void run() override {}

    CommandBuffer commands;
};

TEST(CommandArena, DropsListsInsideLists)
{
    auto inner = std::make_shared<HeldList>();
    for (uint32_t i = 0; i < 500; ++i)
    {
        inner->commands.record<CommandRender>(DrawHandle(i));
    }
    const std::weak_ptr<TaskInterface> watch = inner;
    CommandBuffer outer;
    for (int i = 0; i < 500; ++i)
    {
        outer.record<CommandRender>(DrawHandle(0));
    }
    outer.record<CommandTask>(TaskProperties{inner});
    inner.reset();
    for (int i = 0; i < 500; ++i)
    {
        outer.record<CommandRender>(DrawHandle(0));
    }
    outer.clear();
    EXPECT_TRUE(watch.expired());
}

TEST(CommandArena, FreesCommandsOnOtherThreads)
{
    constexpr uint32_t Count = 20000;
    CommandBuffer recorded;
    for (int frame = 0; frame < 5; ++frame)
    {
        recorded.clear();
        for (uint32_t i = 0; i < Count; ++i)
        {
            recorded.record<CommandRender>(DrawHandle(i));
        }
        auto submitted = std::make_unique<CommandBuffer>();
        submitted->append(recorded);
        uint64_t sum = 0;
        std::thread render(
            [&submitted, &sum]
            {
                for (const std::shared_ptr<CommandBase>& command : *submitted)
                {
                    sum += static_cast<const CommandRender&>(*command).handle.id;
                }
                submitted.reset();
            });
        recorded.clear();
        for (uint32_t i = 0; i < Count; ++i)
        {
            recorded.record<CommandRender>(DrawHandle(i + 1));
        }
        render.join();
        EXPECT_EQ(sum, uint64_t(Count) * (Count - 1) / 2);
    }
}

TEST(CommandArena, SharesAChunkBetweenThreadsThatFreeAtOnce)
{
    constexpr int Threads = 4;
    constexpr uint32_t Count = 8000;
    std::vector<CommandBuffer> parts(Threads);
    {
        CommandBuffer recorded;
        for (uint32_t i = 0; i < Count; ++i)
        {
            recorded.record<CommandRender>(DrawHandle(i));
            const auto index = static_cast<int32_t>(i);
            parts[i % Threads].append(recorded, SbVec2i32(index, index + 1));
        }
    }
    std::vector<std::thread> threads;
    std::vector<uint64_t> sums(Threads, 0);
    for (std::size_t t = 0; t < Threads; ++t)
    {
        threads.emplace_back(
            [&parts, &sums, t]
            {
                for (const std::shared_ptr<CommandBase>& command : parts[t])
                {
                    sums[t] += static_cast<const CommandRender&>(*command).handle.id;
                }
                parts[t].clear();
            });
    }
    uint64_t sum = 0;
    for (std::size_t t = 0; t < Threads; ++t)
    {
        threads[t].join();
        sum += sums[t];
    }
    EXPECT_EQ(sum, uint64_t(Count) * (Count - 1) / 2);
}

TEST(CommandArena, RecordsOnSeveralThreadsAtOnce)
{
    constexpr int Threads = 4;
    constexpr uint32_t Count = 5000;
    std::vector<CommandBuffer> buffers(Threads);
    std::vector<std::thread> threads;
    for (CommandBuffer& buffer : buffers)
    {
        threads.emplace_back(
            [&buffer]
            {
                for (uint32_t i = 0; i < Count; ++i)
                {
                    buffer.record<CommandRender>(DrawHandle(i));
                }
            });
    }
    for (std::size_t t = 0; t < Threads; ++t)
    {
        threads[t].join();
        uint32_t expected = 0;
        for (const std::shared_ptr<CommandBase>& command : buffers[t])
        {
            ASSERT_EQ(static_cast<const CommandRender&>(*command).handle.id, expected++);
        }
        EXPECT_EQ(expected, Count);
    }
}

} // namespace
