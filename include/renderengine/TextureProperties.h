#pragma once

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <vector>

#include <kavelor/SbDataType.h>
#include <kavelor/SbString.h>

namespace renderengine
{

/// Describes a texture and, optionally, its pixels.
struct TextureProperties
{
    bool operator==(const TextureProperties& other) const
    {
        return type == other.type && immutable == other.immutable && compressed == other.compressed &&
               width == other.width && height == other.height && depth == other.depth && baseLevel == other.baseLevel &&
               maxLevel == other.maxLevel && samples == other.samples && format == other.format &&
               internalFormat == other.internalFormat &&
               std::equal(std::begin(swizzle), std::end(swizzle), std::begin(other.swizzle)) &&
               dataType == other.dataType && data == other.data && sizes == other.sizes && name == other.name;
    }
    bool operator!=(const TextureProperties& other) const { return !(*this == other); }

    /// 0 1D, 1 1D array, 2 2D, 3 2D multisample, 4 2D array, 5 2D multisample array, 6 3D, 7 cube map,
    /// 8 cube map array, 9 buffer.
    uint32_t type = 2;
    /// Not 0: storage of a fixed size (glTexStorage).
    uint8_t immutable = 0;
    /// Not 0: the blocks hold compressed images, and level sizes come from `sizes`.
    uint8_t compressed = 0;
    /// Width of level 0 in pixels.
    uint32_t width = 1;
    /// Height of level 0 in pixels; counts the layers of a 1D array.
    uint32_t height = 1;
    /// Depth of level 0 in pixels; counts the layers of the other array types.
    uint32_t depth = 1;
    /// First level that sampling reads (GL_TEXTURE_BASE_LEVEL).
    uint16_t baseLevel = 0;
    /// Last level that sampling reads (GL_TEXTURE_MAX_LEVEL). A sampler that filters mipmaps needs it above 0.
    uint16_t maxLevel = 0;
    /// Samples of a pixel of the multisample types.
    uint8_t samples = 1;
    /// Index of the pixel format of `data`; 8 is RGBA.
    uint32_t format = 8;
    /// Index of the format in which the device stores the texture; 21 is RGBA8.
    uint32_t internalFormat = 21;
    /// What red, green, blue and alpha read: 0 red, 1 blue, 2 green, 3 alpha, 4 zero, 5 one. Blue stands before green.
    uint32_t swizzle[4] = {0, 2, 1, 3};
    /// Type of a component of `data`.
    SbDataType dataType{SbDataType::UNSIGNED_BYTE};
    /// Pixel blocks, level by level, faces inside a level; tightly packed and not owned. Creating a texture keeps the
    /// pointers until the command has run, updating one copies the pixels at once.
    std::vector<const void*> data;
    /// Size in bytes of each level of a compressed texture.
    std::vector<uint32_t> sizes;
    /// Name of the texture, for people.
    SbString name;
};

} // namespace renderengine
