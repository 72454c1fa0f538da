#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <new>
#include <utility>
#include <vector>

#include "commands/CommandBase.h"

namespace renderengine
{

/// The shared pointers of a list of commands, in order.
///
/// They stand in blocks that never move, so that growing copies nothing and sets little more aside than is used: a
/// vector of a million would be copied several times on its way there, and would have room for half a million more.
/// All blocks in front of the last one are full. Iterators stay valid until the sequence changes.
class CommandSequence
{
    struct Block
    {
        std::shared_ptr<CommandBase>* first;
        uint64_t capacity;
        uint64_t offset; // pointers in the blocks ahead of it
    };

public:
    using Pointer = std::shared_ptr<CommandBase>;

    class Iterator
    {
    public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = Pointer;
        using difference_type = std::ptrdiff_t;
        using pointer = const Pointer*;
        using reference = const Pointer&;

        Iterator() = default;

        reference operator*() const noexcept { return *m_position; }
        pointer operator->() const noexcept { return m_position; }

        Iterator& operator++() noexcept
        {
            ++m_position;
            if (m_position == m_blockEnd && m_block != m_lastBlock)
            {
                enter(m_block + 1);
            }
            return *this;
        }

        Iterator operator++(int) noexcept
        {
            const Iterator former = *this;
            ++*this;
            return former;
        }

        // The position alone would not do: the end of one block may be the start of another.
        bool operator==(const Iterator& other) const noexcept
        {
            return m_position == other.m_position && m_block == other.m_block;
        }
        bool operator!=(const Iterator& other) const noexcept { return !(*this == other); }

    private:
        friend class CommandSequence;

        Iterator(const Block* block, const Block* lastBlock) noexcept : m_lastBlock(lastBlock) { enter(block); }
        Iterator(const Block* block, const Pointer* position) noexcept : m_position(position), m_block(block) {}

        void enter(const Block* block) noexcept
        {
            m_block = block;
            m_position = block->first;
            m_blockEnd = block->first + block->capacity;
        }

        const Pointer* m_position = nullptr;
        const Pointer* m_blockEnd = nullptr;
        const Block* m_block = nullptr;
        const Block* m_lastBlock = nullptr;
    };

    CommandSequence() noexcept = default;
    CommandSequence(CommandSequence&& other) noexcept { swap(other); }
    CommandSequence& operator=(CommandSequence&& other) noexcept
    {
        CommandSequence former(std::move(other));
        swap(former);
        return *this;
    }
    ~CommandSequence();

    /// Makes room for one more pointer. Throws std::bad_alloc.
    void reserveOne()
    {
        if (m_end == m_blockEnd)
        {
            openBlock();
        }
    }

    /// Makes room for that many more pointers. Throws std::bad_alloc.
    void reserve(uint64_t count);

    /// Appends a pointer, for which there must be room.
    void push(Pointer&& pointer) noexcept
    {
        new (m_end) Pointer(std::move(pointer));
        ++m_end;
    }

    /// Drops the pointer that was pushed last, with nothing done in between.
    void pop() noexcept
    {
        --m_end;
        m_end->~Pointer();
    }

    /// Appends those of another sequence, or of itself, from index `first` up to but not including `last`. Sets memory
    /// aside once at most, or not at all when there is room, and changes nothing when there is none: throws
    /// std::bad_alloc.
    void append(const CommandSequence& other, uint64_t first, uint64_t last);

    /// Drops all pointers and keeps the blocks.
    void clear() noexcept;

    uint64_t size() const noexcept
    {
        return m_blocksInUse == 0 ? 0 : current().offset + static_cast<uint64_t>(m_end - current().first);
    }

    Iterator begin() const noexcept { return m_blocksInUse == 0 ? Iterator() : Iterator(m_blocks.data(), &current()); }
    Iterator end() const noexcept { return m_blocksInUse == 0 ? Iterator() : Iterator(&current(), m_end); }

private:
    const Block& current() const noexcept { return m_blocks[m_blocksInUse - 1]; }

    void openBlock();
    void addBlock(uint64_t capacity);
    void enter(std::size_t block) noexcept;
    void copyInto(const Pointer* source, uint64_t count);
    void swap(CommandSequence& other) noexcept;

    /// Where the next pointer comes, and the end of the block.
    Pointer* m_end = nullptr;
    Pointer* m_blockEnd = nullptr;
    /// Blocks up to the one that takes pointers now; those behind it are empty.
    std::size_t m_blocksInUse = 0;
    std::vector<Block> m_blocks;
};

} // namespace renderengine
