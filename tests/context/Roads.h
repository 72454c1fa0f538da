#pragma once

#include "context/ContextFactory.h"
#include "context/FakeContext.h"
#include "renderer/RecordingRenderer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>

namespace renderengine::testing
{

/// The two roads of a context: its frames run on the calling thread, or on a render thread.
enum class Road
{
    Inline,
    Thread
};

inline std::string roadName(const ::testing::TestParamInfo<Road>& info)
{
    return info.param == Road::Inline ? "Inline" : "Thread";
}

/// A context with a recording renderer, once for each road. What the trace holds apart from the work itself differs:
/// between makeCurrent and doneCurrent on the calling thread, between the start and the end of the render thread there.
class RoadTest : public ::testing::TestWithParam<Road>
{
protected:
    RoadTest()
    {
        auto renderer = std::make_unique<RecordingRenderer>(m_trace);
        m_renderer = renderer.get();
        const uint8_t flags = GetParam() == Road::Thread ? ContextShare | ContextMultithread : ContextShare;
        m_context = std::make_unique<FakeContext>(flags, m_trace, renderer.release());
        m_context->init();
        m_context->executeResourceCommands(); // the render thread has started when this returns
        m_trace.take();
    }

    bool isThreaded() const { return GetParam() == Road::Thread; }

    /// Lines of work as the road traces them.
    Lines run(const Lines& work) const
    {
        Lines lines = work;
        if (!isThreaded())
        {
            lines.insert(lines.begin(), "makeCurrent");
            lines.push_back("doneCurrent");
        }
        return lines;
    }

    /// The same, with the end of a frame that execute() ran.
    Lines runAndFinish(const Lines& work) const
    {
        Lines lines = run(work);
        lines.push_back("finishFrame");
        return lines;
    }

    /// The trace without the line of the client's thread, which may come before or behind those of a frame that nobody
    /// waited for.
    Lines takeWithoutFinishFrame()
    {
        Lines lines = m_trace.take();
        lines.erase(std::remove(lines.begin(), lines.end(), "finishFrame"), lines.end());
        return lines;
    }

    Trace m_trace;
    RecordingRenderer* m_renderer = nullptr;
    std::unique_ptr<FakeContext> m_context;
};

} // namespace renderengine::testing
