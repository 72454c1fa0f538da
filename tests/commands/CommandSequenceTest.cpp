#include "commands/CommandSequence.h"

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "commands/DrawCommands.h"

namespace
{

using namespace renderengine;

/// Pointers without an object count nothing and are told apart by their address.
CommandSequence::Pointer numbered(uint64_t number)
{
    return CommandSequence::Pointer(CommandSequence::Pointer(), reinterpret_cast<CommandBase*>(8 * (number + 1)));
}

void push(CommandSequence& sequence, uint64_t first, uint64_t last)
{
    for (uint64_t i = first; i < last; ++i)
    {
        sequence.reserveOne();
        sequence.push(numbered(i));
    }
}

std::vector<uint64_t> numbers(const CommandSequence& sequence)
{
    std::vector<uint64_t> result;
    for (const CommandSequence::Pointer& pointer : sequence)
    {
        result.push_back(reinterpret_cast<uintptr_t>(pointer.get()) / 8 - 1);
    }
    return result;
}

std::vector<uint64_t> counted(uint64_t first, uint64_t last)
{
    std::vector<uint64_t> result;
    for (uint64_t i = first; i < last; ++i)
    {
        result.push_back(i);
    }
    return result;
}

TEST(CommandSequence, IsEmptyAtFirst)
{
    CommandSequence sequence;
    EXPECT_EQ(sequence.size(), 0u);
    EXPECT_TRUE(sequence.begin() == sequence.end());
    sequence.clear();
    sequence.reserveOne();
    EXPECT_EQ(sequence.size(), 0u);
    EXPECT_TRUE(sequence.begin() == sequence.end());
}

TEST(CommandSequence, KeepsTheOrderOverAllItsBlocks)
{
    CommandSequence sequence;
    for (uint64_t size = 1; size <= 700; ++size)
    {
        push(sequence, size - 1, size);
        ASSERT_EQ(sequence.size(), size);
        ASSERT_EQ(numbers(sequence), counted(0, size));
    }
    push(sequence, 700, 100000); // past the largest block
    EXPECT_EQ(numbers(sequence), counted(0, 100000));
}

TEST(CommandSequence, APointerNeverMoves)
{
    CommandSequence sequence;
    push(sequence, 0, 1);
    const CommandSequence::Pointer* const first = &*sequence.begin();
    push(sequence, 1, 50000);
    EXPECT_EQ(&*sequence.begin(), first);
}

TEST(CommandSequence, DropsThePointerPushedLast)
{
    for (const uint64_t size : {1u, 8u, 9u, 16u, 17u, 300u})
    {
        CommandSequence sequence;
        push(sequence, 0, size);
        sequence.pop();
        EXPECT_EQ(numbers(sequence), counted(0, size - 1)) << size;
        push(sequence, size - 1, size + 20);
        EXPECT_EQ(numbers(sequence), counted(0, size + 20)) << size;
    }
}

TEST(CommandSequence, AppendsEveryRange)
{
    CommandSequence source;
    push(source, 0, 60);
    for (uint64_t first = 0; first <= 60; ++first)
    {
        for (uint64_t last = first; last <= 60; ++last)
        {
            CommandSequence target;
            push(target, 0, 5);
            target.append(source, first, last);
            std::vector<uint64_t> expected = counted(0, 5);
            const std::vector<uint64_t> range = counted(first, last);
            expected.insert(expected.end(), range.begin(), range.end());
            ASSERT_EQ(numbers(target), expected) << first << " to " << last;
        }
    }
}

TEST(CommandSequence, AppendsItself)
{
    CommandSequence sequence;
    push(sequence, 0, 40);
    sequence.append(sequence, 0, 40);
    std::vector<uint64_t> expected = counted(0, 40);
    const std::vector<uint64_t> again = counted(0, 40);
    expected.insert(expected.end(), again.begin(), again.end());
    EXPECT_EQ(numbers(sequence), expected);
}

TEST(CommandSequence, KeepsItsBlocksWhenItIsCleared)
{
    CommandSequence sequence;
    push(sequence, 0, 20000);
    const CommandSequence::Pointer* const last = &*std::next(sequence.begin(), 19999);
    sequence.clear();
    EXPECT_EQ(sequence.size(), 0u);
    EXPECT_TRUE(sequence.begin() == sequence.end());
    push(sequence, 0, 20000);
    EXPECT_EQ(&*std::next(sequence.begin(), 19999), last);
    EXPECT_EQ(numbers(sequence), counted(0, 20000));
}

TEST(CommandSequence, AppendsIntoTheBlocksOfAnEarlierUse)
{
    CommandSequence source;
    push(source, 0, 5000);
    CommandSequence target;
    push(target, 0, 300);
    target.clear();
    target.append(source, 10, 5000);
    EXPECT_EQ(numbers(target), counted(10, 5000));
    push(target, 5000, 5100);
    EXPECT_EQ(numbers(target), counted(10, 5100));
}

TEST(CommandSequence, DropsItsReferencesOnce)
{
    const std::shared_ptr<CommandBase> command = std::make_shared<CommandRender>();
    {
        CommandSequence sequence;
        for (int i = 0; i < 1000; ++i)
        {
            sequence.reserveOne();
            sequence.push(std::shared_ptr<CommandBase>(command));
        }
        EXPECT_EQ(command.use_count(), 1001);
        sequence.pop();
        EXPECT_EQ(command.use_count(), 1000);
        sequence.append(sequence, 0, 500);
        EXPECT_EQ(command.use_count(), 1500);
        CommandSequence other(std::move(sequence));
        EXPECT_EQ(command.use_count(), 1500);
        other.clear();
        EXPECT_EQ(command.use_count(), 1);
        other.append(other, 0, 0);
        other.reserveOne();
        other.push(std::shared_ptr<CommandBase>(command));
    }
    EXPECT_EQ(command.use_count(), 1);
}

TEST(CommandSequence, MovesItsPointersAlong)
{
    CommandSequence source;
    push(source, 0, 100);
    CommandSequence target;
    push(target, 0, 7);
    target = std::move(source);
    EXPECT_EQ(numbers(target), counted(0, 100));
    push(target, 100, 200);
    EXPECT_EQ(numbers(target), counted(0, 200));
    source = CommandSequence();
    push(source, 0, 3);
    EXPECT_EQ(numbers(source), counted(0, 3));
}

} // namespace
