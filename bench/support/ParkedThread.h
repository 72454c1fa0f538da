#pragma once

#include <condition_variable>
#include <mutex>
#include <thread>

namespace bench
{

/// A second thread that sleeps. With one alive the standard library's shared pointers count with atomic operations, as
/// they do beside a render thread.
class ParkedThread
{
public:
    ParkedThread() : m_thread([this] { wait(); }) {}

    ~ParkedThread()
    {
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_stop = true;
        }
        m_condition.notify_one();
        m_thread.join();
    }

private:
    void wait()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_condition.wait(lock, [this] { return m_stop; });
    }

    std::mutex m_mutex;
    std::condition_variable m_condition;
    bool m_stop = false;
    std::thread m_thread;
};

} // namespace bench
