#pragma once

#include <functional>
#include <mutex>
#include <utility>

/// A handler that may be replaced while other threads call it. Handlers are called without the lock, so that they may
/// post or replace themselves.
template <class... Arguments> class MessageHandler
{
public:
    using Function = std::function<void(Arguments...)>;

    Function set(Function function)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        std::swap(m_function, function);
        return function;
    }

    /// The handler of this moment, empty for the default.
    Function get() const
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_function;
    }

private:
    mutable std::mutex m_mutex;
    Function m_function;
};
