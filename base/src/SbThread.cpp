#include <kavelor/SbThread.h>

#include <string>
#include <utility>

#if defined(_WIN32)
#include <windows.h>
#else
#include <pthread.h>
#include <sys/syscall.h>
#include <unistd.h>
#endif

SbThread::SbThread(std::function<void()> function) : m_thread(std::move(function)) {}

SbThread::~SbThread()
{
    join();
}

std::unique_ptr<SbThread> SbThread::create(std::function<void()> function)
{
    return std::unique_ptr<SbThread>(new SbThread(std::move(function)));
}

void SbThread::join()
{
    if (m_thread.joinable())
    {
        m_thread.join();
    }
}

#if defined(_WIN32)

namespace
{

/// The record that debuggers look for behind the naming exception.
struct ThreadNameInfo
{
    DWORD type = 0x1000;
    LPCSTR name = nullptr;
    DWORD threadId = 0;
    DWORD flags = 0;
};

constexpr DWORD ThreadNameException = 0x406D1388;

} // namespace

std::uint64_t SbThread::getCurrentId()
{
    return GetCurrentThreadId();
}

void SbThread::setCurrentName(const SbString& name)
{
    // Only a debugger swallows the exception; without one it would end the process.
    if (!IsDebuggerPresent())
    {
        return;
    }
    ThreadNameInfo info;
    info.name = name.getString();
    info.threadId = GetCurrentThreadId();
    ULONG_PTR arguments[sizeof(info) / sizeof(ULONG_PTR)] = {};
    static_assert(sizeof(arguments) == sizeof(info));
    CopyMemory(arguments, &info, sizeof(info));
    RaiseException(ThreadNameException, 0, static_cast<DWORD>(sizeof(info) / sizeof(ULONG_PTR)), arguments);
}

#else

std::uint64_t SbThread::getCurrentId()
{
    return static_cast<std::uint64_t>(::syscall(SYS_gettid));
}

void SbThread::setCurrentName(const SbString& name)
{
    // The kernel takes 16 bytes with the null and refuses longer names.
    constexpr std::size_t limit = 15;
    const std::string cut = name.toStdString().substr(0, limit);
    pthread_setname_np(pthread_self(), cut.c_str());
}

#endif
