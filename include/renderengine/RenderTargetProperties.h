#pragma once

#include <cstdint>
#include <vector>

#include <renderengine/Handle.h>

namespace renderengine
{

/// One attachment of a render target.
struct RenderTextureProperty
{
    bool operator==(const RenderTextureProperty& other) const
    {
        return texture == other.texture && layer == other.layer && attachment == other.attachment &&
               level == other.level;
    }
    bool operator!=(const RenderTextureProperty& other) const { return !(*this == other); }

    /// The attached texture.
    TextureHandle texture;
    /// Array layer, depth slice or cube face.
    uint16_t layer = 0;
    /// Attachment index: 0 to 15 colour, 17 depth, 18 stencil, 19 depth and stencil. Above 19 the entry is skipped.
    uint8_t attachment = 0;
    /// Mipmap level.
    uint8_t level = 0;
};

static_assert(sizeof(RenderTextureProperty) == 8, "a handle and one word");

/// Describes a render target (a framebuffer object).
struct RenderTargetProperties
{
    bool operator==(const RenderTargetProperties& other) const
    {
        return attachments == other.attachments && srgb == other.srgb;
    }
    bool operator!=(const RenderTargetProperties& other) const { return !(*this == other); }

    /// The attachments, in the order in which they are attached.
    std::vector<RenderTextureProperty> attachments;
    /// Not 0: values are converted to sRGB on writing (GL_FRAMEBUFFER_SRGB).
    uint8_t srgb = 0;
};

} // namespace renderengine
