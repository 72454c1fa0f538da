#include "renderer/Frame.h"

#include "renderer/RendererBase.h"

#include <renderengine/RenderCache.h>

#include <kavelor/SbProfiler.h>

namespace renderengine
{

void Frame::submit(const std::shared_ptr<RenderCache>& cache)
{
    auto commands = std::make_shared<CommandBuffer>();
    commands->append(m_headCommands);
    commands->append(*cache->getCommandBuffer());
    m_commandBuffers.push(commands);
    m_headCommands.clear(); // last, so that an exhausted allocator leaves the frame as it was
}

void Frame::execute(RendererBase& renderer)
{
    const kavelor::helper::SbProfiler zone("renderengine::Frame::execute");

    renderer.executeCommands(m_headCommands);
    m_headCommands.clear();
    while (const std::shared_ptr<CommandBuffer> commands = m_commandBuffers.pop())
    {
        renderer.executeCommands(*commands);
        commands->clear();
    }
    renderer.executeCommands(m_tailCommands);
    m_tailCommands.clear();
}

void Frame::clear()
{
    m_headCommands.clear();
    while (const std::shared_ptr<CommandBuffer> commands = m_commandBuffers.pop())
    {
        commands->clear();
    }
    m_commandBuffers.clear();
    m_tailCommands.clear();
}

} // namespace renderengine
