#include "commands/CommandSequence.h"

#include <algorithm>

#include "commands/CommandMemory.h"

namespace renderengine
{

namespace
{

constexpr uint64_t SmallestBlock = 8;
constexpr uint64_t LargestBlock = CommandMemory::PieceSize / sizeof(CommandSequence::Pointer);
/// A block is this part of what the blocks ahead of it hold, and so is what stays unused.
constexpr uint64_t GrowthDivisor = 16;

CommandSequence::Pointer* allocateBlock(uint64_t capacity)
{
    using Pointer = CommandSequence::Pointer;
    return capacity == LargestBlock ? static_cast<Pointer*>(CommandMemory::take())
                                    : std::allocator<Pointer>().allocate(capacity);
}

void releaseBlock(CommandSequence::Pointer* block, uint64_t capacity) noexcept
{
    if (capacity == LargestBlock)
    {
        CommandMemory::give(block);
    }
    else
    {
        std::allocator<CommandSequence::Pointer>().deallocate(block, capacity);
    }
}

} // namespace

CommandSequence::~CommandSequence()
{
    clear();
    for (const Block& block : m_blocks)
    {
        releaseBlock(block.first, block.capacity);
    }
}

void CommandSequence::append(const CommandSequence& other, uint64_t first, uint64_t last)
{
    if (first >= last)
    {
        return;
    }
    reserve(last - first);
    const auto behind = [](uint64_t index, const Block& block) { return index < block.offset; };
    const auto found = std::upper_bound(other.m_blocks.begin(), other.m_blocks.end(), first, behind);
    for (auto i = static_cast<std::size_t>(found - other.m_blocks.begin()) - 1; first != last; ++i)
    {
        const Block& block = other.m_blocks[i];
        const uint64_t count = std::min(last, block.offset + block.capacity) - first;
        copyInto(block.first + (first - block.offset), count);
        first += count;
    }
}

void CommandSequence::clear() noexcept
{
    for (std::size_t i = 0; i < m_blocksInUse; ++i)
    {
        const Block& block = m_blocks[i];
        std::destroy(block.first, i + 1 == m_blocksInUse ? m_end : block.first + block.capacity);
    }
    if (m_blocksInUse != 0)
    {
        enter(0);
    }
}

void CommandSequence::openBlock()
{
    if (m_blocksInUse == m_blocks.size())
    {
        addBlock(SmallestBlock);
    }
    enter(m_blocksInUse);
}

void CommandSequence::reserve(uint64_t count)
{
    const uint64_t room = m_blocks.empty() ? 0 : m_blocks.back().offset + m_blocks.back().capacity - size();
    if (count > room)
    {
        addBlock(count - room);
    }
}

/// Adds a block of at least that many pointers behind all others.
void CommandSequence::addBlock(uint64_t capacity)
{
    const uint64_t offset = m_blocks.empty() ? 0 : m_blocks.back().offset + m_blocks.back().capacity;
    const uint64_t chosen = std::max(capacity, std::min(offset / GrowthDivisor, LargestBlock));
    if (m_blocks.size() == m_blocks.capacity())
    {
        m_blocks.reserve(2 * m_blocks.size() + 1); // ahead of the block, which nobody would free if this failed
    }
    m_blocks.push_back({allocateBlock(chosen), chosen, offset});
}

void CommandSequence::enter(std::size_t block) noexcept
{
    m_blocksInUse = block + 1;
    m_end = m_blocks[block].first;
    m_blockEnd = m_end + m_blocks[block].capacity;
}

void CommandSequence::copyInto(const Pointer* source, uint64_t count)
{
    while (count != 0)
    {
        reserveOne();
        const uint64_t part = std::min(count, static_cast<uint64_t>(m_blockEnd - m_end));
        m_end = std::uninitialized_copy_n(source, part, m_end);
        source += part;
        count -= part;
    }
}

void CommandSequence::swap(CommandSequence& other) noexcept
{
    std::swap(m_end, other.m_end);
    std::swap(m_blockEnd, other.m_blockEnd);
    std::swap(m_blocksInUse, other.m_blocksInUse);
    m_blocks.swap(other.m_blocks);
}

} // namespace renderengine
