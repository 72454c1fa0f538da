#pragma once

#include "renderer/RingQueue.h"

#include <mutex>
#include <utility>

namespace renderengine
{

/// First-in, first-out queue whose operations lock it for their whole length. T is a pointer type or another type
/// whose default value means "none".
template <class T> class LockedQueue
{
public:
    /// Appends at the back.
    void push(const T& value)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_queue.push(value);
    }

    /// Removes the front and returns it; returns an empty T at once when the queue is empty.
    T pop()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return popFront();
    }

    /// Whether nothing is queued at this moment.
    bool empty() const
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_queue.empty();
    }

    /// Drops everything queued.
    void clear()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        while (!m_queue.empty())
        {
            popFront();
        }
    }

private:
    T popFront()
    {
        T front{};
        if (!m_queue.empty())
        {
            front = std::move(m_queue.front());
            m_queue.pop();
        }
        return front;
    }

    mutable std::mutex m_mutex;
    RingQueue<T> m_queue;
};

} // namespace renderengine
