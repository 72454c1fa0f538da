// Runs with the operators of AdjacentAllocator.cpp.

#include "commands/CommandSequence.h"

#include <cstddef>
#include <vector>

#include <gtest/gtest.h>

namespace
{

using namespace renderengine;

std::size_t countByIterators(const CommandSequence& sequence)
{
    std::size_t count = 0;
    for (auto position = sequence.begin(); position != sequence.end(); ++position)
    {
        ++count;
    }
    return count;
}

TEST(AdjacentMemoryTest, ASequenceIsWalkedToItsEndThoughItsLastBlockEndsWhereAnotherStarts)
{
    CommandSequence sequence;
    for (std::size_t size = 1; size <= 2000; ++size)
    {
        sequence.reserveOne();
        sequence.push(nullptr);
        ASSERT_EQ(countByIterators(sequence), size);
    }
}

TEST(AdjacentMemoryTest, SoIsOneThatWasAppendedTo)
{
    CommandSequence source;
    source.reserveOne();
    source.push(nullptr);
    std::vector<CommandSequence> targets(20);
    for (std::size_t size = 1; size <= 200; ++size)
    {
        for (CommandSequence& target : targets)
        {
            target.append(source, 0, 1);
            ASSERT_EQ(countByIterators(target), size);
        }
    }
}

} // namespace
