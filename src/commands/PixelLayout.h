#pragma once

#include <cstdint>
#include <vector>

#include <kavelor/SbDataType.h>

#include <renderengine/TextureProperties.h>
#include <renderengine/TextureUpdateBatchDataProperties.h>

#include "commands/DataBlock.h"

namespace renderengine
{

// How many bytes the pixels of a texture take in the client's memory, and how recording copies them. The blocks made
// here are zeroed and at least as large as what the device reads of them, so that an upload never runs past their end.

/// Components of a pixel of the pixel format with that index; 4 when the index names none.
uint32_t componentCount(uint32_t format);

/// Bytes of a pixel of a format and component type.
uint32_t bytesPerPixel(uint32_t format, SbDataType dataType);

/// Bytes of a pixel of the data of a texture. The packed depth-stencil formats replace the component type: 4 bytes for
/// DEPTH24_STENCIL8 (84), 8 bytes for DEPTH32F_STENCIL8 (85).
uint32_t bytesPerPixel(uint32_t format, SbDataType dataType, uint32_t internalFormat);

/// Bytes of a pixel of a partial update, which does not know its texture. Depth and stencil are always packed together:
/// UNSIGNED_INT stands for the 4 bytes of DEPTH24_STENCIL8.
uint32_t batchPixelSize(uint32_t format, SbDataType dataType);

/// How the pixel blocks of a texture are ordered: level by level, faces inside a level.
struct PixelBlockCount
{
    /// Blocks of a level: up to 6 for cube maps and cube map arrays, else up to 1.
    uint64_t faces = 0;
    /// Levels that have blocks; a compressed texture has one.
    uint64_t levels = 0;
};

/// The blocks that recording copies of a texture.
PixelBlockCount pixelBlockCount(const TextureProperties& properties);

/// Bytes that recording copies for each block of a level. Each dimension halves from level to level down to 1, also
/// the one that counts layers.
uint64_t copiedBlockSize(const TextureProperties& properties, uint64_t level);

/// Bytes that the device reads of each block of a level: layers keep their number from level to level.
uint64_t uploadedBlockSize(const TextureProperties& properties, uint64_t level);

/// Whether the blocks of a level are the faces of a cube map array, which the device reads as one image.
bool joinsFaces(const TextureProperties& properties);

/// Copies the pixel blocks of a texture, in their order; a null pointer in the list gives a block of zeros. The faces
/// of a level of a cube map array are joined into one block.
std::vector<DataBlock> copyTexturePixels(const TextureProperties& properties);

/// Copies the box of a partial update so that it is tightly packed. The block has room for six such boxes, since the
/// device reads that many when the texture turns out to be a cube map array; the rest is zero.
DataBlock copyBatchEntryPixels(const TextureUpdateBatchData& entry);

/// Joins faces of a level of a cube map array into one image in the device's order: the six faces of the first layer,
/// then those of the next, up to `layers`. Each of the faces holds `copiedLayers` images of `imageSize` bytes, one
/// after the other. What a face does not give is zero, and so is a face that is null or missing.
DataBlock joinCubeArrayFaces(const void* const* faces, uint64_t faceCount, uint64_t imageSize, uint64_t copiedLayers,
                             uint64_t layers);

} // namespace renderengine
