#pragma once

#include "context/ContextBase.h"
#include "renderer/RecordingRenderer.h"

#include <renderengine/ContextInfo.h>

#include <functional>
#include <string>
#include <utility>

namespace renderengine::testing
{

/// A context without a device, whose makeCurrent() and doneCurrent() write to a trace.
class FakeContext : public ContextBase
{
public:
    /// Takes the renderer.
    FakeContext(uint8_t flags, Trace& trace, RendererBase* renderer, uint16_t count = 1)
        : ContextBase(flags, count), m_trace(trace)
    {
        m_renderer = renderer;
    }
    ~FakeContext() override { stopRenderThread(); }

    bool isValid() override { return m_renderer != nullptr; }

    /// The last step of a concrete context's init(): the renderer is there already.
    void init() override
    {
        if (isValid() && m_multithread)
        {
            startRenderThread();
        }
    }
    const ContextInfo& getContextInfo() override { return m_info; }

    bool makeCurrent() override
    {
        m_trace.add("makeCurrent");
        return m_makeCurrentResult;
    }
    void doneCurrent() override { m_trace.add("doneCurrent"); }

    using ContextBase::createDebugRenderer;
    using ContextBase::stopRenderThread;

    bool getMultithread() const { return m_multithread; }
    bool getShareContext() const { return m_shareContext; }
    bool getDebug() const { return m_debug; }
    uint16_t getCount() const { return m_count; }
    bool hasRenderThread() const { return m_renderThread != nullptr; }

    bool m_makeCurrentResult = true;

private:
    Trace& m_trace;
    ContextInfo m_info;
};

} // namespace renderengine::testing
