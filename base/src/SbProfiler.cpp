#include <kavelor/SbProfiler.h>

#include <atomic>

namespace kavelor::helper
{

namespace
{

std::atomic<SbProfilerHook*> s_hook{nullptr};

} // namespace

SbProfilerHook::~SbProfilerHook() = default;

SbProfiler::SbProfiler(const char* label) : m_hook(s_hook.load(std::memory_order_acquire)), m_label(label)
{
    if (m_hook)
    {
        m_hook->beginZone(m_label);
    }
}

SbProfiler::~SbProfiler()
{
    if (m_hook)
    {
        m_hook->endZone(m_label);
    }
}

SbProfilerHook* SbProfiler::setHook(SbProfilerHook* hook)
{
    return s_hook.exchange(hook, std::memory_order_acq_rel);
}

} // namespace kavelor::helper
