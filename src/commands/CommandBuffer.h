#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>

#include <kavelor/SbVec.h>

#include "commands/CommandArena.h"
#include "commands/CommandSequence.h"

namespace renderengine
{

/// A list of commands in recording order. It has no lock.
///
/// Commands are shared: a list drops its references, and a command goes with the last of them, on whatever thread that
/// happens. The commands that a long list makes itself come from an arena of its own, see CommandArena.
class CommandBuffer
{
public:
    CommandBuffer() = default;
    CommandBuffer(CommandBuffer&&) noexcept = default;
    CommandBuffer& operator=(CommandBuffer&&) noexcept = default;
    ~CommandBuffer() { clear(); }

    /// Makes a command and appends it. The list keeps the ownership; the pointer is for filling the command.
    template <class T> T* add()
    {
        m_commands.reserveOne();
        std::shared_ptr<T> command = make<T>();
        T* const added = command.get();
        m_commands.push(std::move(command));
        return added;
    }

    /// Appends a command and fills it with the arguments. When filling throws, the list is as before.
    template <class T, class... Arguments> void record(Arguments&&... arguments)
    {
        T* const command = add<T>();
        if constexpr (noexcept(command->set(std::forward<Arguments>(arguments)...)))
        {
            command->set(std::forward<Arguments>(arguments)...);
        }
        else
        {
            try
            {
                command->set(std::forward<Arguments>(arguments)...);
            }
            catch (...)
            {
                m_commands.pop();
                throw;
            }
        }
    }

    /// Makes room for appending that many commands. Throws std::bad_alloc.
    void reserve(uint64_t count);

    /// Appends the commands of another list, which goes on sharing them. When there is no memory for all of them it
    /// changes nothing and throws std::bad_alloc.
    void append(const CommandBuffer& other);

    /// Appends the commands of another list from index `range[0]` up to but not including `range[1]`, which must lie
    /// inside that list.
    void append(const CommandBuffer& other, const SbVec2i32& range);

    /// Drops all commands and keeps the room that they took in the list.
    void clear();

    /// The number of commands.
    uint64_t size() const { return m_commands.size(); }

    CommandSequence::Iterator begin() const { return m_commands.begin(); }
    CommandSequence::Iterator end() const { return m_commands.end(); }

private:
    /// A list of fewer commands takes them from the heap one by one: a chunk would stay unused for the most part.
    static constexpr uint64_t LongList = 8;

    template <class T> std::shared_ptr<T> make()
    {
        if (!m_arena.isOpen() && m_commands.size() < LongList)
        {
            return std::make_shared<T>();
        }
        CommandArena::s_current = &m_arena;
        return std::allocate_shared<T>(CommandAllocator<T>());
    }

    CommandSequence m_commands;
    CommandArena m_arena;
};

} // namespace renderengine
