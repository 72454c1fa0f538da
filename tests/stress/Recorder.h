#pragma once

#include <renderengine/RenderCache.h>

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>

namespace renderengine::testing
{

/// A filled cache on its way from its recorder to the client.
struct Recording
{
    std::shared_ptr<RenderCache> cache;
    uint64_t draws = 0;
    uint64_t sum = 0;      // of the numbers of the draws
    uint64_t pixelSum = 0; // of the first bytes of the textures
};

/// A queue of recordings between threads. An empty recording ends it.
class RecordingQueue
{
public:
    void push(Recording recording);

    /// Waits for a recording.
    Recording pop();

private:
    std::mutex m_mutex;
    std::condition_variable m_pushed;
    std::deque<Recording> m_recordings;
};

/// A thread that fills caches of its own for the client, which gives them back when it has submitted them. A cache is
/// refilled as soon as it comes back, while frames that hold its former commands may still run.
class Recorder
{
public:
    /// Filled caches go to \p ready.
    Recorder(uint32_t seed, RecordingQueue& ready);

    /// Ends and joins the thread.
    ~Recorder();
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;

    /// Takes a cache back to fill it again. Its recorder is told from the cache.
    void giveBack(const Recording& recording) { m_free.push(recording); }

    /// Whether the cache is one of this recorder's.
    bool owns(const std::shared_ptr<RenderCache>& cache) const;

private:
    static constexpr uint32_t CACHES = 3;

    void run();
    void fill(Recording& recording);

    std::shared_ptr<RenderCache> m_caches[CACHES];
    std::shared_ptr<RenderCache> m_kept; // commands recorded earlier and shared with frames; used by the thread only
    uint64_t m_keptSum = 0;
    uint32_t m_keptDraws = 0;
    RecordingQueue& m_ready;
    RecordingQueue m_free;
    uint32_t m_random;
    std::thread m_thread;
};

} // namespace renderengine::testing
