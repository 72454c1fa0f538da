#include "commands/ResourceTable.h"

namespace renderengine
{

ResourceTableBase::ResourceTableBase(uint32_t capacity)
{
    m_entries.reserve(capacity);
}

uint32_t ResourceTableBase::allocate()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_firstFree < m_entries.size())
    {
        const uint32_t id = m_firstFree;
        m_firstFree = m_entries[id].next;
        m_entries[id].next = None;
        return id;
    }
    const auto id = static_cast<uint32_t>(m_entries.size());
    m_entries.resize(m_entries.size() + 1);
    return id;
}

void ResourceTableBase::release(uint32_t id)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    // With an empty list nothing is linked: the entry of a number in use holds None, which ends the list.
    if (m_firstFree < m_entries.size())
    {
        m_entries[id].next = m_firstFree;
    }
    m_firstFree = id;
}

void ResourceTableBase::clear()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_entries.clear();
    m_firstFree = None;
}

} // namespace renderengine
