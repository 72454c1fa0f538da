#pragma once

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace renderengine
{

/// First-in, first-out queue without a bound. It has no lock.
///
/// It takes memory when it gets longer than ever before and at no other time. std::deque sets memory aside when it is
/// made, and again every few dozen elements even if it never holds more than one, so that a frame would now and then
/// cost more than others.
template <class T> class RingQueue
{
public:
    bool empty() const noexcept { return m_size == 0; }
    std::size_t size() const noexcept { return m_size; }

    /// The element that was pushed first; there must be one.
    T& front() noexcept { return m_ring[m_first]; }

    /// Appends at the back. Throws std::bad_alloc and leaves the queue as it was.
    void push(T value)
    {
        if (m_size == m_ring.size())
        {
            grow();
        }
        m_ring[(m_first + m_size) % m_ring.size()] = std::move(value);
        ++m_size;
    }

    /// Removes the front; there must be one.
    void pop()
    {
        // It goes when the queue is in order again: its destructor may be the client's.
        [[maybe_unused]] const T front = std::move(m_ring[m_first]);
        m_first = (m_first + 1) % m_ring.size();
        --m_size;
    }

private:
    void grow()
    {
        std::vector<T> ring(std::max<std::size_t>(4, 2 * m_ring.size()));
        for (std::size_t i = 0; i < m_size; ++i)
        {
            ring[i] = std::move(m_ring[(m_first + i) % m_ring.size()]);
        }
        m_ring.swap(ring);
        m_first = 0;
    }

    std::vector<T> m_ring; // elements outside the queue are moved-from
    std::size_t m_first = 0;
    std::size_t m_size = 0;
};

} // namespace renderengine
