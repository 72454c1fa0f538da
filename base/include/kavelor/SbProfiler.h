#pragma once

#include <kavelor/KavelorApi.h>

namespace kavelor::helper
{

/// What a profiler has to offer to see the zones of this process. Called on the thread that runs the zone, zones of one
/// thread properly nested. Labels are literals and live as long as the process.
class KAVELOR_API SbProfilerHook
{
public:
    virtual ~SbProfilerHook();
    virtual void beginZone(const char* label) = 0;
    virtual void endZone(const char* label) = 0;
};

/// A profiled zone: from its making to the end of its scope. Without a hook it costs one atomic read.
class KAVELOR_API SbProfiler
{
public:
    /// The label is not copied and must outlive the hook: give a literal.
    explicit SbProfiler(const char* label);
    ~SbProfiler();
    SbProfiler(const SbProfiler&) = delete;
    SbProfiler& operator=(const SbProfiler&) = delete;

    /// Installs a hook for all threads, null for none, and returns the former one. The hook is not owned. Zones that
    /// are open end with the hook they began with, so it has to live until they have.
    static SbProfilerHook* setHook(SbProfilerHook* hook);

private:
    SbProfilerHook* m_hook;
    const char* m_label;
};

} // namespace kavelor::helper
