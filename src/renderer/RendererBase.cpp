#include "renderer/RendererBase.h"

#include "commands/TaskCommands.h"
#include "renderer/Frame.h"

#include <renderengine/PresentFrame.h>
#include <renderengine/TaskInterface.h>

#include <utility>

namespace renderengine
{

// The virtual operations: the destructor, the four of presenting, the overloads, the frame and the mapped pointer, two
// overloads a parameter record, ten from begin() to captureFrame(), and the generators of the fifteen concepts.
#define RENDERENGINE_COUNT(ENTRY) +1
static_assert(1 + 4 RENDERENGINE_COMMANDS(RENDERENGINE_COUNT) + 2 +
                      2 * (0 RENDERENGINE_SHADER_PARAMETERS(RENDERENGINE_COUNT)) + 10 + 15 ==
                  173,
              "a renderer has 173 virtual operations");
#undef RENDERENGINE_COUNT

// Moves the content of the resource list out for its run and drops it when the run is over. When a command threw, the
// content goes back ahead of what was recorded meanwhile, since a list is only cleared behind a whole run.
class RendererBase::TakenResourceCommands
{
public:
    explicit TakenResourceCommands(RendererBase& renderer) : m_renderer(renderer)
    {
        const std::lock_guard<std::mutex> lock(m_renderer.m_resourceMutex);
        std::swap(m_renderer.m_resourceCommands, m_renderer.m_takenResourceCommands);
    }

    ~TakenResourceCommands()
    {
        if (!m_hasRun)
        {
            const std::lock_guard<std::mutex> lock(m_renderer.m_resourceMutex);
            m_renderer.m_takenResourceCommands.append(m_renderer.m_resourceCommands);
            std::swap(m_renderer.m_resourceCommands, m_renderer.m_takenResourceCommands);
        }
        m_renderer.m_takenResourceCommands.clear();
    }

    TakenResourceCommands(const TakenResourceCommands&) = delete;
    TakenResourceCommands& operator=(const TakenResourceCommands&) = delete;

    void run()
    {
        m_renderer.executeCommands(m_renderer.m_takenResourceCommands);
        m_hasRun = true;
    }

private:
    RendererBase& m_renderer;
    bool m_hasRun = false;
};

RendererBase::RendererBase(bool debug)
    : m_debug(debug), m_frame(std::make_shared<Frame>()), m_width(0), m_height(0), m_sequenceCount(0), m_frameNumber(0)
{
    m_shaderObjectLogs.emplace(ShaderObjectHandle(), std::string());
    m_shaderProgramLogs.emplace(ShaderProgramHandle(), std::string());
    m_queryResults.emplace(QueryHandle(), 0);
}

RendererBase::~RendererBase() = default;

bool RendererBase::canPresent()
{
    return false;
}

PresentFrame* RendererBase::getPresentFrame()
{
    return nullptr;
}

bool RendererBase::present()
{
    if (!canPresent())
    {
        return false;
    }
    getPresentFrame()->presentFrame(updatePresentEventArg());
    return true;
}

ReversePresentFrame* RendererBase::getReversePresentFrame()
{
    return nullptr;
}

void RendererBase::execute(CommandTask& command)
{
    command.task.task->run();
}

void RendererBase::execute()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    begin();
    runResourceCommands();
    if (!m_frameQueue.empty())
    {
        m_frameQueue.front()->execute(*this);
        m_frameQueue.pop();
        finish();
    }
}

void RendererBase::init() {}

void RendererBase::executeResourceCommands()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    runResourceCommands();
}

void RendererBase::captureFrame(size_t /*frame*/) {}

void RendererBase::executeCommands(const CommandBuffer& commands)
{
    for (const auto& command : commands)
    {
        command->execute(*this);
    }
}

void RendererBase::submit(const std::shared_ptr<RenderCache>& cache)
{
    m_frame->submit(cache);
}

void RendererBase::submitFlush(const std::shared_ptr<RenderCache>& cache)
{
    m_frame->submit(cache);
}

std::shared_ptr<Frame> RendererBase::endFrame()
{
    auto next = std::make_shared<Frame>();
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_frameQueue.push(m_frame);
    m_frame.swap(next);
    return next;
}

void RendererBase::discardFrame()
{
    if (!m_frameQueue.empty())
    {
        m_frameQueue.front()->clear();
        m_frameQueue.pop();
    }
}

const std::string& RendererBase::getShaderObjectLog(const ShaderObjectHandle& handle) const
{
    const auto found = m_shaderObjectLogs.find(handle);
    return found != m_shaderObjectLogs.end() ? found->second : m_shaderObjectLogs.at(ShaderObjectHandle());
}

const std::string& RendererBase::getShaderProgramLog(const ShaderProgramHandle& handle) const
{
    const auto found = m_shaderProgramLogs.find(handle);
    return found != m_shaderProgramLogs.end() ? found->second : m_shaderProgramLogs.at(ShaderProgramHandle());
}

std::string& RendererBase::resetShaderObjectLog(const ShaderObjectHandle& handle)
{
    return m_shaderObjectLogs[handle] = std::string();
}

std::string& RendererBase::resetShaderProgramLog(const ShaderProgramHandle& handle)
{
    return m_shaderProgramLogs[handle] = std::string();
}

uint64_t RendererBase::getQueryResult(const QueryHandle& handle) const
{
    // A client may ask while the render thread stores the result of another query.
    const std::lock_guard<std::mutex> lock(m_queryMutex);
    const auto found = m_queryResults.find(handle);
    return found != m_queryResults.end() ? found->second : m_queryResults.at(QueryHandle());
}

void RendererBase::setSize(uint32_t width, uint32_t height)
{
    m_width = width;
    m_height = height;
}

void RendererBase::runResourceCommands()
{
    TakenResourceCommands taken(*this);
    taken.run();
}

} // namespace renderengine
