#include "renderer/LogResources.h"

#include "renderer/TraceLine.h"

#include <renderengine/DrawProperties.h>
#include <renderengine/GfxStateProperties.h>
#include <renderengine/IndexBufferProperties.h>
#include <renderengine/RenderTargetProperties.h>
#include <renderengine/SamplerProperties.h>
#include <renderengine/ShaderStateCoreProperties.h>
#include <renderengine/TextureProperties.h>
#include <renderengine/VertexBufferProperties.h>
#include <renderengine/ViewportProperties.h>

#include <algorithm>
#include <iterator>

namespace renderengine
{

namespace
{

constexpr const char* QUERY_TYPE_NAMES[] = {
    "QUERY_SAMPLES_PASSED",
    "QUERY_ANY_SAMPLES_PASSED",
    "QUERY_ANY_SAMPLES_PASSED_CONSERVATIVE",
    "QUERY_PRIMITIVES_GENERATED",
    "QUERY_TRANSFORM_FEEDBACK_PRIMITIVES_WRITTEN",
    "QUERY_TIME_ELAPSED",
    "QUERY_TIMESTAMP",
};

std::string joinVertexBuffers(const DrawProperties& properties)
{
    std::string list;
    for (const VertexBufferHandle& vertexBuffer : properties.vertexBuffers)
    {
        list += std::to_string(vertexBuffer.id) + " ";
    }
    return list;
}

void traceTexture(const char* operation, uint32_t id, uint32_t width, uint32_t height, uint32_t depth)
{
    traceLine(operation, "id =", id, "size =", width, height, depth);
}

void traceViewport(const char* operation, uint32_t id, const ViewportProperties& properties)
{
    const SbVec4i32& rectangle = properties.rectangle;
    traceLine(operation, "id =", id, "size =", rectangle[0], rectangle[1], rectangle[2], rectangle[3]);
}

} // namespace

void DrawLog::create(const std::shared_ptr<const ShaderStateCoreProperties>& newShaderState,
                     const std::shared_ptr<const GfxStateProperties>& newGfxState)
{
    setState("renderengine::DrawLog::create", newShaderState, newGfxState);
}

void DrawLog::update(const std::shared_ptr<const ShaderStateCoreProperties>& newShaderState,
                     const std::shared_ptr<const GfxStateProperties>& newGfxState)
{
    setState("renderengine::DrawLog::update", newShaderState, newGfxState);
}

void DrawLog::destroy()
{
    traceLine("renderengine::DrawLog::destroy", "id =", id);
    shaderState.reset();
    gfxState.reset();
    drawProperties.clear();
}

void DrawLog::addDrawProperties(uint32_t drawPropertiesId)
{
    traceLine("renderengine::DrawLog::addDrawProperties", "id =", id, "DrawProperties =", drawPropertiesId);
    drawProperties.push_back(drawPropertiesId);
}

void DrawLog::removeDrawProperties(uint32_t drawPropertiesId)
{
    traceLine("renderengine::DrawLog::removeDrawProperties", "id =", id, "DrawProperties =", drawPropertiesId);
    const auto found = std::find(drawProperties.begin(), drawProperties.end(), drawPropertiesId);
    if (found != drawProperties.end())
    {
        drawProperties.erase(found);
    }
}

void DrawLog::removeAllDrawProperties()
{
    traceLine("renderengine::DrawLog::removeAllDrawProperties", "id =", id);
    drawProperties.clear();
}

void DrawLog::setState(const char* operation, const std::shared_ptr<const ShaderStateCoreProperties>& newShaderState,
                       const std::shared_ptr<const GfxStateProperties>& newGfxState)
{
    shaderState = newShaderState;
    gfxState = newGfxState;

    // A draw without a state record has the default one.
    const ShaderStateCoreProperties shaderDefaults;
    const GfxStateProperties gfxDefaults;
    const ShaderStateCoreProperties& shader = shaderState ? *shaderState : shaderDefaults;
    const DepthStencilProperties& depthStencil = gfxState ? gfxState->depthStencil : gfxDefaults.depthStencil;
    traceLine(operation, "id =", id, "RenderTarget =", shader.renderTarget.id, "Viewport =", shader.viewport.id,
              "DepthTest =", depthStencil.depthTest, "StencilTest =", depthStencil.stencilTest);
}

void DrawPropertiesLog::create(const DrawProperties& properties)
{
    traceLine("renderengine::DrawPropertiesLog::create", "id =", id, "vertexBuffers =", joinVertexBuffers(properties));
}

void DrawPropertiesLog::update(const DrawProperties& properties)
{
    traceLine("renderengine::DrawPropertiesLog::update", "id =", id, "vertexBuffers =", joinVertexBuffers(properties));
}

void DrawPropertiesLog::destroy()
{
    traceLine("renderengine::DrawPropertiesLog::destroy", "id =", id);
}

void IndexBufferLog::create(const IndexBufferProperties& /*properties*/)
{
    traceLine("renderengine::IndexBufferLog::create", "id =", id);
}

void IndexBufferLog::update(const IndexBufferProperties& /*properties*/)
{
    traceLine("renderengine::IndexBufferLog::update", "id =", id);
}

void IndexBufferLog::destroy()
{
    traceLine("renderengine::IndexBufferLog::destroy", "id =", id);
}

void QueryLog::create(uint32_t type)
{
    const char* name = type < std::size(QUERY_TYPE_NAMES) ? QUERY_TYPE_NAMES[type] : "null";
    traceLine("renderengine::QueryLog::create", "id =", id, "type =", name);
}

void QueryLog::destroy()
{
    traceLine("renderengine::QueryLog::destroy", "id =", id);
}

void RenderTargetLog::create(const RenderTargetProperties& properties)
{
    constexpr const char* OPERATION = "renderengine::RenderTargetLog::create";
    const auto texture = [&properties](size_t index) { return properties.attachments[index].texture.id; };
    const size_t count = properties.attachments.size();
    switch (count)
    {
    case 1:
        traceLine(OPERATION, "id =", id, "attachment =", texture(0));
        break;
    case 2:
        traceLine(OPERATION, "id =", id, "attachments =", texture(0), texture(1));
        break;
    case 3:
        traceLine(OPERATION, "id =", id, "attachments =", texture(0), texture(1), texture(2));
        break;
    case 4:
        traceLine(OPERATION, "id =", id, "attachments =", texture(0), texture(1), texture(2), texture(3));
        break;
    default:
        traceLine(OPERATION, "id =", id, "#attachments =", count);
        break;
    }
}

void RenderTargetLog::destroy()
{
    traceLine("renderengine::RenderTargetLog::destroy", "id =", id);
}

void SamplerLog::create(const SamplerProperties& properties)
{
    // These two labels end in a blank of their own, so that two stand before the value.
    traceLine("renderengine::SamplerLog::create", "id =", id, "minFilter = ", uint32_t{properties.minFilter},
              "magFilter = ", uint32_t{properties.magFilter});
}

void SamplerLog::destroy()
{
    traceLine("renderengine::SamplerLog::destroy", "id =", id);
}

void TextureLog::create(const TextureProperties& properties)
{
    traceTexture("renderengine::TextureLog::create", id, properties.width, properties.height, properties.depth);
}

void TextureLog::update(const TextureProperties& properties)
{
    traceTexture("renderengine::TextureLog::update", id, properties.width, properties.height, properties.depth);
}

void TextureLog::resize(uint32_t width, uint32_t height, uint32_t depth)
{
    traceTexture("renderengine::TextureLog::resize", id, width, height, depth);
}

void TextureLog::destroy()
{
    traceLine("renderengine::TextureLog::destroy", "id =", id);
}

void VertexBufferLog::create(const VertexBufferProperties& properties)
{
    traceLine("renderengine::VertexBufferLog::create", "id =", id, "name =", properties.name);
}

void VertexBufferLog::update(const VertexBufferProperties& properties)
{
    traceLine("renderengine::VertexBufferLog::update", "id =", id, "name =", properties.name);
}

void VertexBufferLog::destroy()
{
    traceLine("renderengine::VertexBufferLog::destroy", "id =", id);
}

void ViewportLog::create(const ViewportProperties& properties)
{
    traceViewport("renderengine::ViewportLog::create", id, properties);
}

void ViewportLog::update(const ViewportProperties& properties)
{
    traceViewport("renderengine::ViewportLog::update", id, properties);
}

void ViewportLog::destroy()
{
    traceLine("renderengine::ViewportLog::destroy", "id =", id);
}

} // namespace renderengine
