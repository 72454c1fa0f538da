#pragma once

#include "context/ContextBase.h"
#include "context/ContextFactory.h"

#include <renderengine/ContextInfo.h>

#include <memory>

namespace renderengine::fuzz
{

/// A context without a device around the renderer under test.
class FuzzedContext : public ContextBase
{
public:
    FuzzedContext(bool threaded, std::unique_ptr<RendererBase> renderer)
        : ContextBase(threaded ? ContextShare | ContextMultithread : ContextShare, 1)
    {
        m_renderer = renderer.release();
    }
    ~FuzzedContext() override { stopRenderThread(); }

    bool isValid() override { return true; }
    void init() override
    {
        if (m_multithread)
        {
            startRenderThread();
        }
    }
    const ContextInfo& getContextInfo() override { return m_info; }
    bool makeCurrent() override { return true; }
    void doneCurrent() override {}

private:
    ContextInfo m_info;
};

} // namespace renderengine::fuzz
