#include "commands/CommandBuffer.h"

namespace renderengine
{

void CommandBuffer::reserve(uint64_t count)
{
    m_commands.reserve(count);
}

void CommandBuffer::append(const CommandBuffer& other)
{
    m_commands.append(other.m_commands, 0, other.m_commands.size());
}

void CommandBuffer::append(const CommandBuffer& other, const SbVec2i32& range)
{
    m_commands.append(other.m_commands, static_cast<uint64_t>(range[0]), static_cast<uint64_t>(range[1]));
}

void CommandBuffer::clear()
{
    {
        const CommandArena::FreeBatch batch;
        m_commands.clear();
    }
    m_arena.recycle();
}

} // namespace renderengine
