#include "renderer/RendererLog.h"

#include "commands/BufferViewCommands.h"
#include "commands/ComputeCommands.h"
#include "commands/DrawCommands.h"
#include "commands/QueryCommands.h"
#include "commands/RenderTargetCommands.h"
#include "commands/SamplerCommands.h"
#include "commands/TextureCommands.h"
#include "renderer/TraceLine.h"

#include <memory>

namespace renderengine
{

namespace
{

constexpr uint32_t CAPACITY = 65536;
constexpr const char* EXECUTE = "renderengine::RendererLog::execute";

template <class HandleType, class Log, class... Arguments>
void createLog(ResourceTable<HandleType, Log>& table, const HandleType& handle, const Arguments&... arguments)
{
    if (!handle.isValid())
    {
        return;
    }
    auto& slot = table.get(handle);
    slot = std::make_shared<Log>();
    slot->id = handle.id;
    slot->create(arguments...);
}

template <class HandleType, class Log> void destroyLog(ResourceTable<HandleType, Log>& table, HandleType& handle)
{
    // By value: destroying the slot must not end the object while its number is still to be marked.
    const std::shared_ptr<Log> object = table.get(handle);
    if (!object)
    {
        return;
    }
    object->destroy();
    object->id = HandleType().id;
    table.destroy(handle);
    handle = HandleType();
}

} // namespace

RendererLog::RendererLog(bool debug)
    : RendererBase(debug), m_indexBuffers(CAPACITY), m_vertexBuffers(CAPACITY), m_samplers(CAPACITY),
      m_textures(CAPACITY), m_renderTargets(CAPACITY), m_viewports(CAPACITY), m_queries(CAPACITY), m_draws(CAPACITY),
      m_drawProperties(CAPACITY)
{
    traceLine("renderengine::RendererLog::RendererLog", "debug =", debug);
}

RendererLog::~RendererLog()
{
    traceLine("renderengine::RendererLog::~RendererLog");
}

void RendererLog::begin()
{
    traceLine("renderengine::RendererLog::begin");
}

void RendererLog::finish()
{
    traceLine("renderengine::RendererLog::finish");
}

void RendererLog::finishFrame()
{
    traceLine("renderengine::RendererLog::finishFrame");
}

void RendererLog::execute(CommandClearRT& command)
{
    traceLine(EXECUTE, "CommandClearRT", "target =", command.handle.id, "flags =", command.properties.flags);
}

void RendererLog::execute(CommandRender& command)
{
    traceLine(EXECUTE, "CommandRender", "drawID =", command.handle.id);
}

void RendererLog::execute(CommandCompute& /*command*/)
{
    traceLine(EXECUTE, "CommandCompute");
}

void RendererLog::execute(CommandBeginQuery& command)
{
    traceLine(EXECUTE, "CommandBeginQuery", "queryID =", command.handle.id);
}

void RendererLog::execute(CommandEndQuery& command)
{
    traceLine(EXECUTE, "CommandEndQuery", "queryID =", command.handle.id);
}

void RendererLog::execute(CommandGetQueryResult& command)
{
    traceLine(EXECUTE, "CommandGetQueryResult", "queryID =", command.handle.id);
}

void RendererLog::execute(CommandGenerateMipmap& command)
{
    traceLine(EXECUTE, "CommandGenerateMipmap", "textureID =", command.handle.id);
}

void RendererLog::execute(CommandCreateDraw& command)
{
    createLog(m_draws, command.handle, command.shaderState, command.gfxState);
}

void RendererLog::execute(CommandUpdateDraw& command)
{
    if (auto& object = m_draws.get(command.handle))
    {
        object->update(command.shaderState, command.gfxState);
    }
}

void RendererLog::execute(CommandDestroyDraw& command)
{
    destroyLog(m_draws, command.handle);
}

void RendererLog::execute(CommandAddDrawProperties& command)
{
    if (auto& object = m_draws.get(command.handle))
    {
        object->addDrawProperties(command.drawProperties.id);
    }
}

void RendererLog::execute(CommandRemoveDrawProperties& command)
{
    if (auto& object = m_draws.get(command.handle))
    {
        object->removeDrawProperties(command.drawProperties.id);
    }
}

void RendererLog::execute(CommandRemoveAllDrawProperties& command)
{
    if (auto& object = m_draws.get(command.handle))
    {
        object->removeAllDrawProperties();
    }
}

void RendererLog::execute(CommandCreateDrawProperties& command)
{
    createLog(m_drawProperties, command.handle, command.properties);
}

void RendererLog::execute(CommandUpdateDrawProperties& command)
{
    if (auto& object = m_drawProperties.get(command.handle))
    {
        object->update(command.properties);
    }
}

void RendererLog::execute(CommandDestroyDrawProperties& command)
{
    destroyLog(m_drawProperties, command.handle);
}

void RendererLog::execute(CommandCreateVertexBuffer& command)
{
    createLog(m_vertexBuffers, command.handle, command.properties);
}

void RendererLog::execute(CommandUpdateVertexBuffer& command)
{
    if (auto& object = m_vertexBuffers.get(command.handle))
    {
        object->update(command.properties);
    }
}

void RendererLog::execute(CommandDestroyVertexBuffer& command)
{
    destroyLog(m_vertexBuffers, command.handle);
}

void RendererLog::execute(CommandCreateIndexBuffer& command)
{
    createLog(m_indexBuffers, command.handle, command.properties);
}

void RendererLog::execute(CommandUpdateIndexBuffer& command)
{
    if (auto& object = m_indexBuffers.get(command.handle))
    {
        object->update(command.properties);
    }
}

void RendererLog::execute(CommandDestroyIndexBuffer& command)
{
    destroyLog(m_indexBuffers, command.handle);
}

void RendererLog::execute(CommandCreateTexture& command)
{
    createLog(m_textures, command.handle, command.properties);
}

void RendererLog::execute(CommandUpdateTexture& command)
{
    if (auto& object = m_textures.get(command.handle))
    {
        object->update(command.properties);
    }
}

void RendererLog::execute(CommandDestroyTexture& command)
{
    destroyLog(m_textures, command.handle);
}

void RendererLog::execute(CommandResizeTexture& command)
{
    if (auto& object = m_textures.get(command.handle))
    {
        object->resize(command.width, command.height, command.depth);
    }
}

void RendererLog::execute(CommandCreateSampler& command)
{
    createLog(m_samplers, command.handle, command.properties);
}

void RendererLog::execute(CommandDestroySampler& command)
{
    destroyLog(m_samplers, command.handle);
}

void RendererLog::execute(CommandCreateRenderTarget& command)
{
    createLog(m_renderTargets, command.handle, command.properties);
}

void RendererLog::execute(CommandDestroyRenderTarget& command)
{
    destroyLog(m_renderTargets, command.handle);
}

void RendererLog::execute(CommandCreateViewport& command)
{
    createLog(m_viewports, command.handle, command.properties);
}

void RendererLog::execute(CommandUpdateViewport& command)
{
    if (auto& object = m_viewports.get(command.handle))
    {
        object->update(command.properties);
    }
}

void RendererLog::execute(CommandDestroyViewport& command)
{
    destroyLog(m_viewports, command.handle);
}

void RendererLog::execute(CommandCreateQuery& command)
{
    createLog(m_queries, command.handle, command.type);
}

void RendererLog::execute(CommandDestroyQuery& command)
{
    destroyLog(m_queries, command.handle);
}

DrawHandle RendererLog::generateDrawHandle()
{
    DrawHandle handle;
    return m_draws.create(handle);
}

DrawPropertiesHandle RendererLog::generateDrawPropertiesHandle()
{
    DrawPropertiesHandle handle;
    return m_drawProperties.create(handle);
}

BufferHandle RendererLog::generateBufferHandle()
{
    return BufferHandle();
}

VertexBufferHandle RendererLog::generateVertexBufferHandle()
{
    VertexBufferHandle handle;
    return m_vertexBuffers.create(handle);
}

IndexBufferHandle RendererLog::generateIndexBufferHandle()
{
    IndexBufferHandle handle;
    return m_indexBuffers.create(handle);
}

ShaderBufferHandle RendererLog::generateShaderBufferHandle()
{
    return ShaderBufferHandle();
}

TextureImageHandle RendererLog::generateTextureImageHandle()
{
    return TextureImageHandle();
}

SamplerHandle RendererLog::generateSamplerHandle()
{
    SamplerHandle handle;
    return m_samplers.create(handle);
}

TextureHandle RendererLog::generateTextureHandle()
{
    TextureHandle handle;
    return m_textures.create(handle);
}

RenderTargetHandle RendererLog::generateRenderTargetHandle()
{
    RenderTargetHandle handle;
    return m_renderTargets.create(handle);
}

ViewportHandle RendererLog::generateViewportHandle()
{
    ViewportHandle handle;
    return m_viewports.create(handle);
}

ShaderObjectHandle RendererLog::generateShaderObjectHandle()
{
    return ShaderObjectHandle();
}

ShaderProgramHandle RendererLog::generateShaderProgramHandle()
{
    return ShaderProgramHandle();
}

ShaderParameterHandle RendererLog::generateShaderParameterHandle()
{
    return ShaderParameterHandle();
}

QueryHandle RendererLog::generateQueryHandle()
{
    QueryHandle handle;
    return m_queries.create(handle);
}

} // namespace renderengine
