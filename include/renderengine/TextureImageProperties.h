#pragma once

#include <cstdint>
#include <string>

#include <renderengine/Handle.h>

namespace renderengine
{

/// Describes the binding of a texture to an image unit (glBindImageTexture).
struct TextureImageProperties
{
    TextureImageProperties() : unit(0), access(0), layered(0) {}

    bool operator==(const TextureImageProperties& other) const
    {
        return texture == other.texture && name == other.name && layer == other.layer && level == other.level &&
               unit == other.unit && access == other.access && layered == other.layered;
    }
    bool operator!=(const TextureImageProperties& other) const { return !(*this == other); }

    /// The texture whose pixels the shader reads or writes.
    TextureHandle texture;
    /// Name of the image uniform in the shader.
    std::string name;
    /// Array layer or depth slice, when not the whole level is bound.
    uint16_t layer = 0;
    /// Mipmap level.
    uint8_t level = 0;
    /// Image unit; a unit above 7 is skipped.
    uint8_t unit : 5;
    /// 0 read, 1 write, 2 both.
    uint8_t access : 2;
    /// 1 binds all layers of the level.
    uint8_t layered : 1;
};

} // namespace renderengine
