#pragma once

#include <cstdint>
#include <vector>

#include <kavelor/SbDataType.h>

namespace renderengine
{

/// One box of pixels that replaces a part of a texture (glTexSubImage).
struct TextureUpdateBatchData
{
    bool operator==(const TextureUpdateBatchData& other) const
    {
        return x == other.x && y == other.y && z == other.z && width == other.width && height == other.height &&
               depth == other.depth && face == other.face && format == other.format && dataType == other.dataType &&
               rowLength == other.rowLength && imageHeight == other.imageHeight && level == other.level &&
               data == other.data && flags == other.flags;
    }
    bool operator!=(const TextureUpdateBatchData& other) const { return !(*this == other); }

    /// First column that is replaced.
    uint32_t x = 0;
    /// First row that is replaced.
    uint32_t y = 0;
    /// First slice or layer that is replaced.
    uint32_t z = 0;
    /// Columns that are replaced; at least 1 for an update with an effect.
    uint32_t width = 0;
    /// Rows that are replaced; at least 1 for an update with an effect.
    uint32_t height = 0;
    /// Slices or layers that are replaced; at least 1 for an update with an effect.
    uint32_t depth = 0;
    /// Face of a cube map, 0 to 5.
    uint8_t face = 0;
    /// Index of the pixel format of `data`; 8 is RGBA.
    uint32_t format = 8;
    /// Type of a component of `data`. Pixels of depth and stencil (`format` 2) are packed as their texture is:
    /// UNSIGNED_INT for 4 bytes a pixel (DEPTH24_STENCIL8), FLOAT for 8 (DEPTH32F_STENCIL8); GL refuses other types.
    SbDataType dataType{SbDataType::UNSIGNED_BYTE};
    /// Pixels from one row of `data` to the next; 0 means tightly packed.
    uint32_t rowLength = 0;
    /// Rows from one image of `data` to the next; 0 means tightly packed.
    uint32_t imageHeight = 0;
    /// Mipmap level.
    uint32_t level = 0;
    /// The pixels. The client's memory, unless bit 1 of `flags` is set.
    const void* data = nullptr;
    /// Bit 0: copy the pixels at recording; without it they must stay valid until the command has run.
    /// Bit 1: the command that holds the entry owns the block; set by the engine only.
    uint8_t flags = 1;
};

/// A list of partial updates of one texture, run in order.
using TextureUpdateBatchDataProperties = std::vector<TextureUpdateBatchData>;

} // namespace renderengine
