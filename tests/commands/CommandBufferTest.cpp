#include <iterator>
#include <memory>
#include <stdexcept>
#include <vector>

#include <gtest/gtest.h>

#include "commands/CommandBuffer.h"
#include "commands/DrawCommands.h"

namespace
{

using namespace renderengine;

std::vector<uint32_t> drawIds(const CommandBuffer& buffer)
{
    std::vector<uint32_t> ids;
    for (const std::shared_ptr<CommandBase>& command : buffer)
    {
        ids.push_back(dynamic_cast<const CommandRender&>(*command).handle.id);
    }
    return ids;
}

void recordDraws(CommandBuffer& buffer, uint32_t count)
{
    for (uint32_t i = 0; i < count; ++i)
    {
        buffer.record<CommandRender>(DrawHandle(i));
    }
}

TEST(CommandBuffer, AddAppendsAnUnfilledCommandThatTheListOwns)
{
    CommandBuffer buffer;
    CommandRender* const command = buffer.add<CommandRender>();
    EXPECT_FALSE(command->handle.isValid());
    ASSERT_EQ(buffer.size(), 1u);
    EXPECT_EQ(buffer.begin()->get(), command);
    EXPECT_EQ(buffer.begin()->use_count(), 1);
}

TEST(CommandBuffer, KeepsTheOrderOfRecording)
{
    CommandBuffer buffer;
    recordDraws(buffer, 4);
    EXPECT_EQ(drawIds(buffer), (std::vector<uint32_t>{0, 1, 2, 3}));
}

TEST(CommandBuffer, AppendSharesTheCommandsOfTheOtherList)
{
    CommandBuffer first;
    CommandBuffer second;
    recordDraws(first, 2);
    recordDraws(second, 3);
    first.append(second);
    EXPECT_EQ(drawIds(first), (std::vector<uint32_t>{0, 1, 0, 1, 2}));
    EXPECT_EQ(second.size(), 3u);
    EXPECT_EQ(*std::next(first.begin(), 2), *second.begin());
    EXPECT_EQ(second.begin()->use_count(), 2);
}

TEST(CommandBuffer, AppendsARangeWithoutItsEnd)
{
    CommandBuffer source;
    recordDraws(source, 10);
    CommandBuffer target;
    target.append(source, SbVec2i32(2, 5));
    EXPECT_EQ(drawIds(target), (std::vector<uint32_t>{2, 3, 4}));
    target.append(source, SbVec2i32(3, 3));
    EXPECT_EQ(target.size(), 3u);
}

TEST(CommandBuffer, AppendsItself)
{
    CommandBuffer buffer;
    recordDraws(buffer, 3);
    buffer.append(buffer);
    EXPECT_EQ(drawIds(buffer), (std::vector<uint32_t>{0, 1, 2, 0, 1, 2}));
    buffer.append(buffer, SbVec2i32(1, 2));
    EXPECT_EQ(drawIds(buffer), (std::vector<uint32_t>{0, 1, 2, 0, 1, 2, 1}));
}

TEST(CommandBuffer, ClearDestroysNoCommandThatIsHeldElsewhere)
{
    CommandBuffer source;
    recordDraws(source, 3);
    CommandBuffer holder;
    holder.append(source, SbVec2i32(1, 3));
    const std::weak_ptr<CommandBase> dropped = *source.begin();
    const std::weak_ptr<CommandBase> held = *std::next(source.begin());
    source.clear();
    EXPECT_EQ(source.size(), 0u);
    EXPECT_TRUE(dropped.expired());
    EXPECT_FALSE(held.expired());
    recordDraws(source, 100);
    EXPECT_EQ(drawIds(holder), (std::vector<uint32_t>{1, 2}));
}

TEST(CommandBuffer, MovesItsCommandsAlong)
{
    CommandBuffer source;
    recordDraws(source, 50);
    CommandBuffer target;
    recordDraws(target, 5);
    target = std::move(source);
    EXPECT_EQ(target.size(), 50u);
    recordDraws(target, 1);
    EXPECT_EQ(target.size(), 51u);
    CommandBuffer third(std::move(target));
    EXPECT_EQ(third.size(), 51u);
    recordDraws(third, 100);
    EXPECT_EQ(drawIds(third).back(), 99u);
}

struct FailingCommand : CommandBase
{
    void set(int) { throw std::runtime_error("no memory for the payload"); }
    void execute(RendererBase&) override {}
};

TEST(CommandBuffer, IsAsBeforeWhenFillingACommandFails)
{
    CommandBuffer buffer;
    recordDraws(buffer, 2);
    EXPECT_THROW(buffer.record<FailingCommand>(1), std::runtime_error);
    EXPECT_EQ(drawIds(buffer), (std::vector<uint32_t>{0, 1}));
}

} // namespace
