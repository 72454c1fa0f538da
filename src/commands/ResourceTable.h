#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

namespace renderengine
{

/// Gives out the numbers of one concept and takes them back.
///
/// Free numbers form a stack inside the entries: the last one released is the first one reused, and the table grows
/// only when none is free. Any thread may allocate; release and clear belong to the thread that executes commands.
class ResourceTableBase
{
public:
    /// Makes an empty table with room for `capacity` numbers. It grows past it when need be.
    explicit ResourceTableBase(uint32_t capacity);

    ResourceTableBase(const ResourceTableBase&) = delete;
    ResourceTableBase& operator=(const ResourceTableBase&) = delete;

    /// Gives out a number.
    uint32_t allocate();

    /// Takes a number back. Releasing a number twice without allocating it in between corrupts the free list.
    void release(uint32_t id);

    /// Forgets all numbers; the next one is 0.
    void clear();

protected:
    static constexpr uint32_t None = 0xFFFFFFFFu;

    struct HandleEntry
    {
        /// The free number behind this one; None in a number in use and at the end of the list.
        uint32_t next = None;
    };

    std::mutex m_mutex;
    std::vector<HandleEntry> m_entries;
    /// Top of the stack of free numbers. The list is empty when this is not below the number of entries.
    uint32_t m_firstFree = None;
};

/// The numbers of one concept and the objects behind them.
///
/// Numbers and objects are two arrays since they have two lifetimes: a number exists from the client's call on, its
/// object only once the create command has run. The slots have no lock and belong to the thread that executes commands.
template <class HandleType, class Resource> class ResourceTable : public ResourceTableBase
{
public:
    /// Shared, so that a user can hold an object beyond a change of its slot; resetting the last holder destroys it.
    using Slot = std::shared_ptr<Resource>;

    /// Makes an empty table with room for `capacity` numbers and objects.
    explicit ResourceTable(uint32_t capacity) : ResourceTableBase(capacity) { m_resources.reserve(capacity); }

    /// Gives out a new handle into the argument. Any thread may call it.
    HandleType& create(HandleType& handle)
    {
        handle = HandleType(allocate());
        return handle;
    }

    /// The slot of the handle, empty when it has no object. Slots grow up to the handle when it lies beyond them; the
    /// invalid handle gets an empty slot of its own. The reference holds until the slots grow.
    Slot& get(const HandleType& handle)
    {
        if (!handle.isValid())
        {
            m_invalidSlot.reset();
            return m_invalidSlot;
        }
        if (handle.id >= m_resources.size())
        {
            m_resources.resize(static_cast<std::size_t>(handle.id) + 1);
        }
        return m_resources[handle.id];
    }

    /// The object of the handle, or null. Never grows, so a thread that waits for the executing one may call it.
    Resource* find(const HandleType& handle) const
    {
        return handle.id < m_resources.size() ? m_resources[handle.id].get() : nullptr;
    }

    /// Drops the object of the handle and takes its number back. A handle without an object is left alone.
    void destroy(const HandleType& handle)
    {
        if (handle.id >= m_resources.size() || !m_resources[handle.id])
        {
            return;
        }
        m_resources[handle.id].reset();
        release(handle.id);
    }

    /// Calls `destroy()` of each object, drops them all and forgets all numbers.
    void destroyAll()
    {
        for (Slot& slot : m_resources)
        {
            if (slot)
            {
                slot->destroy();
                slot.reset();
            }
        }
        m_resources.clear();
        clear();
    }

private:
    std::vector<Slot> m_resources;
    Slot m_invalidSlot;
};

} // namespace renderengine
