#pragma once

#include "renderer/RingQueue.h"

#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>

namespace renderengine
{

class ContextBase;
class RendererBase;

/// The body of a render thread: sleeps until an event comes, and tells the renderer of its context what to do next.
///
/// The device context is current on the thread for its whole life. Nothing is caught there: an exception that leaves a
/// command ends the process. Events are handled one at a time, in the order queued, and are never refused.
class RenderLoop
{
public:
    /// What an event asks for. Events of other values are marked done and do nothing.
    enum EventType : uint32_t
    {
        ResourceCommands = 0, ///< Run the resource list.
        Frame = 1,            ///< Run the resource list and the oldest waiting frame, if there is one.
        Stop = 2              ///< Leave the loop.
    };

    struct EventObject
    {
        uint32_t m_type;
        bool m_done;
    };

    /// \p context owns the loop and outlives it.
    explicit RenderLoop(ContextBase& context);

    /// The whole life of the render thread. When the device context cannot be made current, no event is ever handled,
    /// and whoever waits for one waits for ever.
    void operator()();

    /// Queues an event; with \p wait, returns when it has been handled. Any thread may call it, but only one at a time
    /// may wait: a handled event wakes one waiter, whichever that is.
    void pushEvent(uint32_t type, bool wait);

    /// Queues the end of the loop behind all pending events and waits until it is reached.
    void stop();

private:
    std::shared_ptr<EventObject> waitForEvent();
    void handle(uint32_t type, RendererBase& renderer);

    ContextBase* m_context;
    bool m_running;
    RingQueue<std::shared_ptr<EventObject>> m_events;
    std::mutex m_mutex; // guards m_events and m_done of each event; never held while the renderer works
    std::condition_variable m_eventPushed;
    std::condition_variable m_eventDone;
};

} // namespace renderengine
