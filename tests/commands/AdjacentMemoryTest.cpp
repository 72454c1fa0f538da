// Allocators may hand out memory without a gap, so that the end of one block is the start of another. This program's
// operators do, from the top down.

#include "commands/CommandSequence.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <new>
#include <vector>

#include <gtest/gtest.h>

namespace
{

constexpr std::size_t SIZE = 1u << 24;
alignas(16) char s_memory[SIZE];
std::size_t s_left = SIZE;

} // namespace

void* operator new(std::size_t size)
{
    const std::size_t rounded = (size + 15) / 16 * 16;
    if (rounded <= s_left)
    {
        s_left -= rounded;
        return s_memory + s_left;
    }
    void* const memory = std::malloc(rounded);
    if (memory == nullptr)
    {
        throw std::bad_alloc();
    }
    return memory;
}

void operator delete(void* memory) noexcept
{
    const auto address = reinterpret_cast<uintptr_t>(memory);
    const auto first = reinterpret_cast<uintptr_t>(s_memory);
    if (address < first || address >= first + SIZE)
    {
        std::free(memory);
    }
}

void operator delete(void* memory, std::size_t) noexcept
{
    ::operator delete(memory);
}

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
