#include "commands/CommandBuffer.h"

namespace renderengine
{

void CommandBuffer::append(const CommandBuffer& other)
{
    append(other, SbVec2i32(0, static_cast<int32_t>(other.m_commands.size())));
}

void CommandBuffer::append(const CommandBuffer& other, const SbVec2i32& range)
{
    if (this == &other)
    {
        // Inserting a vector's own elements is undefined, so they are taken by index once there is room.
        m_commands.reserve(m_commands.size() + static_cast<std::size_t>(range[1] - range[0]));
        for (int32_t i = range[0]; i < range[1]; ++i)
        {
            m_commands.push_back(m_commands[static_cast<std::size_t>(i)]);
        }
        return;
    }
    m_commands.insert(m_commands.end(), other.m_commands.begin() + range[0], other.m_commands.begin() + range[1]);
}

void CommandBuffer::clear()
{
    {
        const CommandArena::FreeBatch batch;
        m_commands.clear();
    }
    m_arena.recycle();
}

void CommandBuffer::grow()
{
    // By half instead of twice: the unused end of the list counts in the memory that a recording takes.
    m_commands.reserve(m_commands.size() + m_commands.size() / 2 + 8);
}

} // namespace renderengine
