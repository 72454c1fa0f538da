// The cost of handing an empty frame to the render thread and waiting for it, beside its floor: two threads that wake
// each other through bare condition variables. All threads share one processor, so that neither side can gain by
// polling and the time to wake another processor does not count.

#include "context/ContextBase.h"
#include "context/ContextFactory.h"
#include "renderer/RendererNull.h"

#include <renderengine/ContextInfo.h>

#include <benchmark/benchmark.h>

#include <sched.h>

#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <thread>

namespace
{

using namespace renderengine;

/// A context with a render thread and without a device.
class ThreadedContext : public ContextBase
{
public:
    ThreadedContext() : ContextBase(ContextMultithread, 1)
    {
        m_renderer = new RendererNull(false);
        startRenderThread();
    }
    ~ThreadedContext() override { stopRenderThread(); }

    bool isValid() override { return true; }
    void init() override {}
    const ContextInfo& getContextInfo() override { return m_info; }
    bool makeCurrent() override { return true; }
    void doneCurrent() override {}

private:
    ContextInfo m_info;
};

/// A thread that answers each request, and nothing else.
class PingPong
{
public:
    PingPong() : m_thread([this] { answer(); }) {}

    ~PingPong()
    {
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_stop = true;
            m_asked.notify_one();
        }
        m_thread.join();
    }

    void ask()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_request = true;
        m_asked.notify_one();
        m_answered.wait(lock, [this] { return !m_request; });
    }

private:
    void answer()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        for (;;)
        {
            m_asked.wait(lock, [this] { return m_request || m_stop; });
            if (m_stop)
            {
                return;
            }
            m_request = false;
            m_answered.notify_one();
        }
    }

    std::mutex m_mutex;
    std::condition_variable m_asked;
    std::condition_variable m_answered;
    bool m_request = false;
    bool m_stop = false;
    std::thread m_thread;
};

void executeEngine(benchmark::State& state)
{
    ThreadedContext context;
    for (auto _ : state)
    {
        context.execute(true);
    }
}

void executeFloor(benchmark::State& state)
{
    PingPong pingPong;
    for (auto _ : state)
    {
        pingPong.ask();
    }
}

// The two threads take turns, so real time is what a caller waits.
BENCHMARK(executeEngine)->Name("BM_ExecuteEmptyFrame/engine")->UseRealTime();
BENCHMARK(executeFloor)->Name("BM_ExecuteEmptyFrame/floor")->UseRealTime();

/// Keeps this thread, and those it makes, on the processor where it is now.
bool stayOnOneProcessor()
{
    cpu_set_t processors;
    CPU_ZERO(&processors);
    CPU_SET(static_cast<unsigned>(sched_getcpu()), &processors);
    return sched_setaffinity(0, sizeof(processors), &processors) == 0;
}

} // namespace

int main(int count, char** arguments)
{
    if (!stayOnOneProcessor())
    {
        std::fprintf(stderr, "renderer_bench: the threads cannot be kept on one processor\n");
        return 1;
    }
    benchmark::Initialize(&count, arguments);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
