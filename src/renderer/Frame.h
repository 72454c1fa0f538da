#pragma once

#include "commands/CommandBuffer.h"
#include "renderer/LockedQueue.h"

#include <memory>

namespace renderengine
{

class RenderCache;
class RendererBase;

/// The unit of execution: everything recorded between two runs of a context.
///
/// The client's thread fills a frame while it is the renderer's current one; after that it belongs to the thread that
/// runs it.
class Frame
{
public:
    /// Queues the commands of \p cache, led by the head commands recorded so far, which leave the head list. The cache
    /// shares its commands and is not changed.
    void submit(const std::shared_ptr<RenderCache>& cache);

    /// Runs the head commands, the queued buffers and the tail commands on \p renderer, each cleared after its run. An
    /// exception of a command leaves what has not run where it is, except the buffer in which it arose.
    void execute(RendererBase& renderer);

    /// Throws the work away without running it. Commands that a cache still holds stay alive there.
    void clear();

    CommandBuffer& getHeadCommands() { return m_headCommands; }
    CommandBuffer& getTailCommands() { return m_tailCommands; }

private:
    CommandBuffer m_headCommands;
    CommandBuffer m_tailCommands;
    LockedQueue<std::shared_ptr<CommandBuffer>> m_commandBuffers;
};

} // namespace renderengine
