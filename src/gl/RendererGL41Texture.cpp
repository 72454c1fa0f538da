// Textures and texture images.

#include "gl/RendererGL41.h"

#include "gl/DebugGroup.h"
#include "gl/RendererGL41Find.h"

#include <algorithm>
#include <cstring>

namespace renderengine
{

// Textures

void RendererGL41::execute(CommandCreateTexture& command)
{
    RENDERENGINE_DEBUG_GROUP(GL_DEBUG_SOURCE_THIRD_PARTY, "renderengine::RendererGL41::execute Create Texture");
    if (command.handle.isValid())
    {
        createResource(m_tables.textures, command.handle, command.properties);
    }
}

void RendererGL41::execute(CommandResizeTexture& command)
{
    if (TextureGL* texture =
            findOrReport(m_tables.textures, command.handle, "[RendererGL] Trying to resize an invalid texture."))
    {
        RENDERENGINE_DEBUG_GROUP(GL_DEBUG_SOURCE_THIRD_PARTY, "renderengine::RendererGL41::execute Resize Texture");
        forgetTextures();
        texture->resize(command.width, command.height, command.depth);
        forgetDirtyRenderTarget();
    }
}

void RendererGL41::execute(CommandUpdateTexture& command)
{
    if (TextureGL* texture =
            findOrReport(m_tables.textures, command.handle, "[RendererGL] Trying to update an invalid texture."))
    {
        RENDERENGINE_DEBUG_GROUP(GL_DEBUG_SOURCE_THIRD_PARTY,
                                 "renderengine::RendererGL41::execute CommandUpdateTexture");
        forgetTextures();
        texture->update(command.properties);
        forgetDirtyRenderTarget();
    }
}

void RendererGL41::execute(CommandUpdateTextureBatchData& command)
{
    if (TextureGL* texture =
            findOrReport(m_tables.textures, command.handle, "[RendererGL] Trying to update an invalid texture."))
    {
        RENDERENGINE_DEBUG_GROUP(GL_DEBUG_SOURCE_THIRD_PARTY,
                                 "renderengine::RendererGL41::execute CommandUpdateTextureBatchData");
        texture->updateImages(command.properties);
        forgetDirtyRenderTarget();
    }
}

void RendererGL41::execute(CommandReadbackTexture& command)
{
    if (TextureGL* texture =
            findOrReport(m_tables.textures, command.handle, "[RendererGL] Trying to read back an invalid texture."))
    {
        texture->readback();
    }
}

void RendererGL41::execute(CommandGenerateMipmap& command)
{
    if (TextureGL* texture = find(m_tables.textures, command.handle))
    {
        texture->generateMipmap();
    }
}

void RendererGL41::execute(CommandDestroyTexture& command)
{
    if (find(m_tables.textures, command.handle) != nullptr)
    {
        forgetTextures();
    }
    destroyResource(m_tables.textures, command.handle, "[RendererGL] Trying to destroy an invalid texture.");
    forgetDirtyRenderTarget();
}

void RendererGL41::readbackTexture(const TextureHandle& handle, void* destination, size_t size)
{
    const TextureGL* texture =
        findOrReport(m_tables.textures, handle, "[RendererGL] Trying to readback an invalid texture.");
    if (texture != nullptr && texture->getReadbackData() != nullptr)
    {
        std::memcpy(destination, texture->getReadbackData(), std::min<uint64_t>(size, texture->getReadbackSize()));
    }
}

/// The next draw binds the current target again, which rebuilds it, when a texture of it got a new GL name.
void RendererGL41::forgetDirtyRenderTarget()
{
    if (!m_currentRenderTarget)
    {
        return;
    }
    const RenderTargetGL* target = find(m_tables.renderTargets, *m_currentRenderTarget);
    if (target != nullptr && target->isDirty())
    {
        m_currentRenderTarget.reset();
    }
}

// Texture images

void RendererGL41::execute(CommandCreateTextureImage& command)
{
    if (command.handle.isValid())
    {
        createResource(m_tables.textureImages, command.handle, command.properties);
    }
}

void RendererGL41::execute(CommandUpdateTextureImage& command)
{
    if (TextureImageGL* image = find(m_tables.textureImages, command.handle))
    {
        image->update(command.properties);
    }
}

void RendererGL41::execute(CommandDestroyTextureImage& command)
{
    destroyResource(m_tables.textureImages, command.handle, "[RendererGL] Trying to destroy an invalid texture image.");
}

} // namespace renderengine
