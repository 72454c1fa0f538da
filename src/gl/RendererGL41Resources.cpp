// Draws and their properties, viewports, samplers and render targets.

#include "gl/RendererGL41.h"

#include "gl/DebugGroup.h"
#include "gl/RendererGL41Find.h"

#include <algorithm>

namespace renderengine
{

// Draws

void RendererGL41::execute(CommandCreateDraw& command)
{
    if (command.handle.isValid())
    {
        createResource(m_tables.draws, command.handle)
            .setState(command.gfxState, command.shaderState, m_gfxStateSharing);
    }
}

void RendererGL41::execute(CommandUpdateDraw& command)
{
    if (DrawGL* draw =
            findOrReport(m_tables.draws, command.handle, "[RendererGL] Trying to update an invalid draw call."))
    {
        draw->setState(command.gfxState, command.shaderState, m_gfxStateSharing);
    }
}

void RendererGL41::execute(CommandDestroyDraw& command)
{
    DrawGL* draw =
        findOrReport(m_tables.draws, command.handle, "[RendererGL] Trying to destroy an invalid draw command.");
    if (draw == nullptr)
    {
        return;
    }
    for (const DrawPropertiesHandle& member : draw->drawProperties)
    {
        unlistDraw(member, command.handle);
    }
    releaseBatches(*draw);
    m_tables.draws.destroy(command.handle);
    command.handle = DrawHandle();
}

void RendererGL41::execute(CommandAddDrawProperties& command)
{
    DrawGL* draw = findOrReport(m_tables.draws, command.handle, "[RendererGL] Trying to update an invalid draw call.");
    DrawPropertiesGL* member = find(m_tables.drawProperties, command.drawProperties);
    if (draw == nullptr || member == nullptr)
    {
        return;
    }
    draw->drawProperties.push_back(command.drawProperties);
    draw->batchesValid = false;
    member->draws.push_back(command.handle);
}

void RendererGL41::execute(CommandRemoveDrawProperties& command)
{
    DrawGL* draw = find(m_tables.draws, command.handle);
    if (draw == nullptr || find(m_tables.drawProperties, command.drawProperties) == nullptr)
    {
        spdlog::error("[RendererGL] Trying to remove an invalid draw property.");
        return;
    }
    // The batches stay as they are: a draw goes on showing what they hold until something else changes them.
    const auto member = std::find(draw->drawProperties.begin(), draw->drawProperties.end(), command.drawProperties);
    if (member != draw->drawProperties.end())
    {
        draw->drawProperties.erase(member);
        unlistDraw(command.drawProperties, command.handle);
    }
}

void RendererGL41::execute(CommandRemoveAllDrawProperties& command)
{
    DrawGL* draw = findOrReport(m_tables.draws, command.handle,
                                "[RendererGL] Trying to remove draw properties from an invalid draw command.");
    if (draw == nullptr)
    {
        return;
    }
    for (const DrawPropertiesHandle& member : draw->drawProperties)
    {
        unlistDraw(member, command.handle);
    }
    draw->drawProperties.clear();
}

void RendererGL41::execute(CommandCreateDrawProperties& command)
{
    if (command.handle.isValid())
    {
        createResource(m_tables.drawProperties, command.handle).properties =
            std::make_shared<const DrawProperties>(command.properties);
    }
}

void RendererGL41::execute(CommandUpdateDrawProperties& command)
{
    if (DrawPropertiesGL* drawProperties = findOrReport(m_tables.drawProperties, command.handle,
                                                        "[RendererGL] Trying to update invalid draw properties."))
    {
        drawProperties->properties = std::make_shared<const DrawProperties>(command.properties);
        invalidateBatches(*drawProperties);
    }
}

void RendererGL41::execute(CommandDestroyDrawProperties& command)
{
    const DrawPropertiesGL* drawProperties = findOrReport(m_tables.drawProperties, command.handle,
                                                          "[RendererGL] Trying to destroy an invalid draw properties.");
    if (drawProperties == nullptr)
    {
        return;
    }
    invalidateBatches(*drawProperties);
    for (const DrawHandle& handle : drawProperties->draws)
    {
        if (DrawGL* draw = find(m_tables.draws, handle))
        {
            std::vector<DrawPropertiesHandle>& members = draw->drawProperties;
            members.erase(std::remove(members.begin(), members.end(), command.handle), members.end());
        }
    }
    m_tables.drawProperties.destroy(command.handle);
    command.handle = DrawPropertiesHandle();
}

void RendererGL41::invalidateBatches(const DrawPropertiesGL& drawProperties)
{
    for (const DrawHandle& handle : drawProperties.draws)
    {
        if (DrawGL* draw = find(m_tables.draws, handle))
        {
            draw->batchesValid = false;
        }
    }
}

void RendererGL41::unlistDraw(const DrawPropertiesHandle& properties, const DrawHandle& draw)
{
    if (DrawPropertiesGL* member = find(m_tables.drawProperties, properties))
    {
        const auto entry = std::find(member->draws.begin(), member->draws.end(), draw);
        if (entry != member->draws.end())
        {
            member->draws.erase(entry);
        }
    }
}

// Viewports

void RendererGL41::execute(CommandCreateViewport& command)
{
    if (command.handle.isValid())
    {
        createResource(m_tables.viewports, command.handle).create(command.properties);
    }
}

void RendererGL41::execute(CommandUpdateViewport& command)
{
    if (ViewportGL* viewport = find(m_tables.viewports, command.handle))
    {
        viewport->update(command.properties);
        forgetViewport(command.handle);
    }
}

void RendererGL41::execute(CommandDestroyViewport& command)
{
    forgetViewport(command.handle);
    destroyResource(m_tables.viewports, command.handle, "[RendererGL] Trying to destroy an invalid viewport.");
}

void RendererGL41::forgetViewport(const ViewportHandle& handle)
{
    if (handle.isValid() && handle == m_currentViewport)
    {
        m_currentViewport.reset();
    }
}

// Samplers

void RendererGL41::execute(CommandCreateSampler& command)
{
    RENDERENGINE_DEBUG_GROUP(GL_DEBUG_SOURCE_THIRD_PARTY, "renderengine::RendererGL41::execute CommandCreateSampler");
    if (command.handle.isValid())
    {
        createResource(m_tables.samplers, command.handle).create(command.properties);
    }
}

void RendererGL41::execute(CommandUpdateSampler& command)
{
    if (SamplerGL* sampler =
            findOrReport(m_tables.samplers, command.handle, "[RendererGL] Trying to update an invalid sampler."))
    {
        RENDERENGINE_DEBUG_GROUP(GL_DEBUG_SOURCE_THIRD_PARTY,
                                 "renderengine::RendererGL41::execute CommandUpdateSampler");
        sampler->update(command.properties);
    }
}

void RendererGL41::execute(CommandDestroySampler& command)
{
    const TextureUnitProperties& current = m_currentShaderState.textures;
    for (uint32_t unit = 0; unit < 32; ++unit)
    {
        if ((current.mask >> unit & 1) != 0 && command.handle.isValid() && current.samplers[unit] == command.handle)
        {
            m_stateUnknown = true;
        }
    }
    destroyResource(m_tables.samplers, command.handle, "[RendererGL] Trying to destroy an invalid sampler.");
}

// Render targets

void RendererGL41::execute(CommandCreateRenderTarget& command)
{
    if (command.handle.isValid())
    {
        createResource(m_tables.renderTargets, command.handle);
        CommandUpdateRenderTarget update;
        update.set(command.handle, command.properties);
        execute(update);
    }
}

void RendererGL41::execute(CommandUpdateRenderTarget& command)
{
    RenderTargetGL* target = find(m_tables.renderTargets, command.handle);
    if (target == nullptr)
    {
        return;
    }
    RENDERENGINE_DEBUG_GROUP(GL_DEBUG_SOURCE_THIRD_PARTY, "renderengine::RendererGL41::execute Update RenderTarget");
    RenderTargetProperties properties;
    properties.srgb = command.properties.srgb;
    RenderTargetGL::TextureList textures;
    for (const RenderTextureProperty& attachment : command.properties.attachments)
    {
        if (find(m_tables.textures, attachment.texture) != nullptr)
        {
            properties.attachments.push_back(attachment);
            textures.push_back(m_tables.textures.get(attachment.texture));
        }
    }
    target->update(properties, textures);
}

void RendererGL41::execute(CommandDestroyRenderTarget& command)
{
    // The number may come back for another target, which must not count as bound.
    if (command.handle.isValid() && command.handle == m_currentRenderTarget)
    {
        m_stateUnknown = true;
    }
    destroyResource(m_tables.renderTargets, command.handle, "[RendererGL] Trying to destroy an invalid render target.");
}

} // namespace renderengine
