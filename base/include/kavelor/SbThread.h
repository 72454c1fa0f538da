#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <thread>

#include <kavelor/KavelorApi.h>
#include <kavelor/SbString.h>

/// A thread of execution. Joined at the latest when it is destroyed. An exception that leaves the function ends the
/// process.
class KAVELOR_API SbThread
{
public:
    /// Starts a thread that runs function. Throws std::system_error when the system has none to give.
    static std::unique_ptr<SbThread> create(std::function<void()> function);

    ~SbThread();
    SbThread(const SbThread&) = delete;
    SbThread& operator=(const SbThread&) = delete;

    /// Waits until the function has returned. A second call does nothing. Not to be called by the thread itself.
    void join();

    /// The system's number of the calling thread, the one that debuggers show; unique while the thread lives.
    static std::uint64_t getCurrentId();

    /// Names the calling thread for debuggers. The name is cut where the system has a limit, on Linux after 15 bytes.
    static void setCurrentName(const SbString& name);

private:
    explicit SbThread(std::function<void()> function);

    std::thread m_thread;
};
