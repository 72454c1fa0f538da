#include "renderer/RenderLoop.h"

#include "context/ContextBase.h"
#include "renderer/Assertion.h"
#include "renderer/RendererBase.h"

#include <utility>

namespace renderengine
{

RenderLoop::RenderLoop(ContextBase& context) : m_context(&context), m_running(false) {}

void RenderLoop::operator()()
{
    RendererBase* const renderer = m_context->getRenderer();
    RENDERENGINE_ASSERT(renderer, "src/renderer/RenderLoop");

    m_running = m_context->makeCurrent();
    renderer->init();
    while (m_running)
    {
        if (const std::shared_ptr<EventObject> event = waitForEvent())
        {
            handle(event->m_type, *renderer);

            const std::lock_guard<std::mutex> lock(m_mutex);
            event->m_done = true;
            m_eventDone.notify_one();
        }
    }
    renderer->destroy();
    m_context->doneCurrent();
}

void RenderLoop::pushEvent(uint32_t type, bool wait)
{
    const auto event = std::make_shared<EventObject>(EventObject{type, false});

    std::unique_lock<std::mutex> lock(m_mutex);
    m_events.push(event);
    m_eventPushed.notify_one();
    while (wait && !event->m_done)
    {
        m_eventDone.wait(lock);
    }
}

void RenderLoop::stop()
{
    pushEvent(Stop, true);
}

std::shared_ptr<RenderLoop::EventObject> RenderLoop::waitForEvent()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    while (m_events.empty())
    {
        m_eventPushed.wait(lock);
    }
    std::shared_ptr<EventObject> event = std::move(m_events.front());
    m_events.pop();
    return event;
}

void RenderLoop::handle(uint32_t type, RendererBase& renderer)
{
    switch (type)
    {
    case ResourceCommands:
        renderer.executeResourceCommands();
        break;
    case Frame:
        renderer.execute();
        break;
    case Stop:
        m_running = false;
        break;
    default:
        break;
    }
}

} // namespace renderengine
