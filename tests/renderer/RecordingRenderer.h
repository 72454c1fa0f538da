#pragma once

#include "commands/CommandList.h"
#include "renderer/RendererBase.h"

#include <mutex>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace renderengine::testing
{

/// What happened, as lines of text, in the order in which it happened. Any thread may add.
class Trace
{
public:
    void add(const std::string& line)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_lines.push_back(line);
    }

    /// The lines so far, which are then forgotten.
    std::vector<std::string> take()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return std::exchange(m_lines, {});
    }

private:
    std::mutex m_mutex;
    std::vector<std::string> m_lines;
};

using Lines = std::vector<std::string>;

template <class Command, class = void> struct HasHandle : std::false_type
{
};
template <class Command>
struct HasHandle<Command, std::void_t<decltype(std::declval<Command&>().handle)>> : std::true_type
{
};

/// A renderer that writes what it is told to do to a trace: each command by the name of its class and the number of its
/// handle, each operation of the frame by its name. Tasks run. It gives out rising numbers of each concept.
class RecordingRenderer : public RendererBase
{
public:
    explicit RecordingRenderer(Trace& trace, bool debug = false) : RendererBase(debug), m_trace(trace) {}
    ~RecordingRenderer() override { m_trace.add("deleted"); }

    using RendererBase::execute;
#define RENDERENGINE_TRACE_COMMAND(COMMAND) \
    void execute(COMMAND& command) override \
    {                                       \
        traceCommand(#COMMAND, command);    \
    }
    RENDERENGINE_COMMANDS_BEFORE_TASK(RENDERENGINE_TRACE_COMMAND)
    void execute(CommandTask& command) override
    {
        m_trace.add("CommandTask");
        RendererBase::execute(command);
    }
    RENDERENGINE_COMMANDS_AFTER_TASK(RENDERENGINE_TRACE_COMMAND)
#undef RENDERENGINE_TRACE_COMMAND

    void* getMappedBufferPointer(const BufferHandle& handle) override
    {
        m_trace.add("getMappedBufferPointer " + std::to_string(handle.id));
        return m_mapped;
    }
    void begin() override
    {
        m_trace.add("begin");
    }
    void finish() override
    {
        m_trace.add("finish");
    }
    void init() override
    {
        m_trace.add("init");
    }
    void destroy() override
    {
        m_trace.add("destroy");
    }
    void readbackTexture(const TextureHandle& handle, void*, size_t size) override
    {
        m_trace.add("readbackTexture " + std::to_string(handle.id) + " " + std::to_string(size));
    }
    void presentFrameSync() override
    {
        m_trace.add("presentFrameSync");
    }
    void finishFrame() override
    {
        m_trace.add("finishFrame");
    }
    const FramebufferParameterEventArg* updatePresentEventArg() override
    {
        m_trace.add("updatePresentEventArg");
        return m_presentArgument;
    }

    DrawHandle generateDrawHandle() override
    {
        return next<DrawHandle>(0);
    }
    DrawPropertiesHandle generateDrawPropertiesHandle() override
    {
        return next<DrawPropertiesHandle>(1);
    }
    BufferHandle generateBufferHandle() override
    {
        return next<BufferHandle>(2);
    }
    VertexBufferHandle generateVertexBufferHandle() override
    {
        return next<VertexBufferHandle>(3);
    }
    IndexBufferHandle generateIndexBufferHandle() override
    {
        return next<IndexBufferHandle>(4);
    }
    ShaderBufferHandle generateShaderBufferHandle() override
    {
        return next<ShaderBufferHandle>(5);
    }
    TextureImageHandle generateTextureImageHandle() override
    {
        return next<TextureImageHandle>(6);
    }
    SamplerHandle generateSamplerHandle() override
    {
        return next<SamplerHandle>(7);
    }
    TextureHandle generateTextureHandle() override
    {
        return next<TextureHandle>(8);
    }
    RenderTargetHandle generateRenderTargetHandle() override
    {
        return next<RenderTargetHandle>(9);
    }
    ViewportHandle generateViewportHandle() override
    {
        return next<ViewportHandle>(10);
    }
    ShaderObjectHandle generateShaderObjectHandle() override
    {
        return next<ShaderObjectHandle>(11);
    }
    ShaderProgramHandle generateShaderProgramHandle() override
    {
        return next<ShaderProgramHandle>(12);
    }
    ShaderParameterHandle generateShaderParameterHandle() override
    {
        return next<ShaderParameterHandle>(13);
    }
    QueryHandle generateQueryHandle() override
    {
        return next<QueryHandle>(14);
    }

    /// Whether no frame and no resource list is running. To be called on a thread that runs neither.
    bool isFrameLockFree()
    {
        const std::unique_lock<std::mutex> lock(m_mutex, std::try_to_lock);
        return lock.owns_lock();
    }

    bool getDebug() const
    {
        return m_debug;
    }
    uint32_t getWidth() const
    {
        return m_width;
    }
    uint32_t getHeight() const
    {
        return m_height;
    }
    size_t getWaitingFrames() const
    {
        return m_frameQueue.size();
    }
    size_t getShaderObjectLogCount() const
    {
        return m_shaderObjectLogs.size();
    }
    size_t getShaderProgramLogCount() const
    {
        return m_shaderProgramLogs.size();
    }
    size_t getQueryResultCount() const
    {
        return m_queryResults.size();
    }
    void setQueryResult(const QueryHandle& handle, uint64_t result)
    {
        m_queryResults[handle] = result;
    }

    void* m_mapped = nullptr;
    const FramebufferParameterEventArg* m_presentArgument = nullptr;

private:
    template <class Command> void traceCommand(const char* name, const Command& command)
    {
        if constexpr (HasHandle<Command>::value)
        {
            m_trace.add(name + (" " + std::to_string(command.handle.id)));
        }
        else
        {
            m_trace.add(name);
        }
    }

    // The first number is ten times the place of the concept, so that a number shows its concept.
    template <class HandleType> HandleType next(uint32_t concept_)
    {
        return HandleType(10 * concept_ + m_given[concept_]++);
    }

    Trace& m_trace;
    uint32_t m_given[15] = {};
};

} // namespace renderengine::testing
