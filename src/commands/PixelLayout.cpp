#include "commands/PixelLayout.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <limits>

namespace renderengine
{

namespace
{

/// Values of TextureProperties::type.
constexpr uint32_t Texture1DArray = 1;
constexpr uint32_t Texture2DArray = 4;
constexpr uint32_t Texture2DMultisampleArray = 5;
constexpr uint32_t Texture3D = 6;
constexpr uint32_t TextureCubeMap = 7;
constexpr uint32_t TextureCubeMapArray = 8;

/// Value of TextureUpdateBatchData::format.
constexpr uint32_t DepthStencilFormat = 2;

/// Values of TextureProperties::internalFormat whose pixels are packed.
constexpr uint32_t Depth24Stencil8 = 84;
constexpr uint32_t Depth32FStencil8 = 85;

constexpr uint32_t FacesOfCube = 6;

/// Components by pixel format index, from GL_DEPTH_COMPONENT to GL_BGRA_INTEGER.
constexpr uint8_t s_componentCounts[] = {
    1, // 0 DEPTH_COMPONENT
    1, // 1 STENCIL_INDEX
    2, // 2 DEPTH_STENCIL
    1, // 3 RED
    1, // 4 GREEN
    1, // 5 BLUE
    2, // 6 RG
    3, // 7 RGB
    4, // 8 RGBA
    3, // 9 BGR
    4, // 10 BGRA
    1, // 11 RED_INTEGER
    1, // 12 GREEN_INTEGER
    1, // 13 BLUE_INTEGER
    2, // 14 RG_INTEGER
    3, // 15 RGB_INTEGER
    4, // 16 RGBA_INTEGER
    3, // 17 BGR_INTEGER
    4, // 18 BGRA_INTEGER
};

uint64_t levelSize(uint32_t size, uint64_t level)
{
    return level < 32 ? std::max<uint64_t>(1, size >> level) : 1;
}

/// A product that stays at the largest number when it would not fit, so that the allocation of it fails.
template <class... Factors> uint64_t product(uint64_t first, Factors... others)
{
    uint64_t result = first;
    const auto multiply = [&result](uint64_t factor)
    {
        const uint64_t limit = std::numeric_limits<uint64_t>::max();
        result = factor != 0 && result > limit / factor ? limit : result * factor;
    };
    (multiply(others), ...);
    return result;
}

uint64_t compressedSize(const TextureProperties& properties, uint64_t level)
{
    return level < properties.sizes.size() ? properties.sizes[static_cast<std::size_t>(level)] : 0;
}

} // namespace

uint32_t componentCount(uint32_t format)
{
    return format < std::size(s_componentCounts) ? s_componentCounts[format] : 4;
}

uint32_t bytesPerPixel(uint32_t format, SbDataType dataType)
{
    return componentCount(format) * dataType.getSize();
}

uint32_t batchPixelSize(uint32_t format, SbDataType dataType)
{
    const bool isDepth24Stencil8 = format == DepthStencilFormat && dataType == SbDataType(SbDataType::UNSIGNED_INT);
    return isDepth24Stencil8 ? 4 : bytesPerPixel(format, dataType);
}

uint32_t bytesPerPixel(uint32_t format, SbDataType dataType, uint32_t internalFormat)
{
    switch (internalFormat)
    {
    case Depth24Stencil8:
        return 4;
    case Depth32FStencil8:
        return 8;
    default:
        return bytesPerPixel(format, dataType);
    }
}

PixelBlockCount pixelBlockCount(const TextureProperties& properties)
{
    const bool hasFaces = properties.type == TextureCubeMap || properties.type == TextureCubeMapArray;
    PixelBlockCount count;
    count.faces = std::min<uint64_t>(properties.data.size(), hasFaces ? FacesOfCube : 1);
    count.levels = properties.compressed != 0 || count.faces == 0 ? 1 : properties.data.size() / count.faces;
    return count;
}

uint64_t copiedBlockSize(const TextureProperties& properties, uint64_t level)
{
    if (properties.compressed != 0)
    {
        return compressedSize(properties, level);
    }
    const bool hasDepth = properties.type == Texture2DArray || properties.type == Texture2DMultisampleArray ||
                          properties.type == Texture3D || properties.type == TextureCubeMapArray;
    return product(bytesPerPixel(properties.format, properties.dataType, properties.internalFormat),
                   levelSize(properties.width, level), levelSize(properties.height, level),
                   levelSize(hasDepth ? properties.depth : 1, level));
}

uint64_t uploadedBlockSize(const TextureProperties& properties, uint64_t level)
{
    if (properties.compressed != 0)
    {
        return compressedSize(properties, level);
    }
    const uint64_t pixelSize = bytesPerPixel(properties.format, properties.dataType, properties.internalFormat);
    const uint64_t width = levelSize(properties.width, level);
    const uint64_t height = levelSize(properties.height, level);
    switch (properties.type)
    {
    case Texture1DArray:
        return product(pixelSize, width, properties.height);
    case Texture2DArray:
    case Texture2DMultisampleArray:
    case TextureCubeMapArray:
        return product(pixelSize, width, height, properties.depth);
    case Texture3D:
        return product(pixelSize, width, height, levelSize(properties.depth, level));
    default:
        return product(pixelSize, width, height);
    }
}

namespace
{

DataBlock copyBlock(const void* source, uint64_t copied, uint64_t uploaded)
{
    if (source != nullptr && copied >= uploaded)
    {
        return copyToBlock(source, copied);
    }
    DataBlock block = makeZeroedBlock(std::max(copied, uploaded));
    if (source != nullptr)
    {
        std::memcpy(block.get(), source, static_cast<std::size_t>(copied));
    }
    return block;
}

DataBlock joinLevel(const TextureProperties& properties, uint64_t level, const void* const* faces, uint64_t faceCount)
{
    if (properties.compressed != 0)
    {
        const uint64_t faceSize = compressedSize(properties, level);
        const bool hasLayers = properties.depth != 0 && faceSize % properties.depth == 0;
        const uint64_t layers = hasLayers ? properties.depth : 1;
        return joinCubeArrayFaces(faces, faceCount, faceSize / layers, layers, layers);
    }
    const uint64_t imageSize = product(bytesPerPixel(properties.format, properties.dataType, properties.internalFormat),
                                       levelSize(properties.width, level), levelSize(properties.height, level));
    return joinCubeArrayFaces(faces, faceCount, imageSize, levelSize(properties.depth, level), properties.depth);
}

} // namespace

bool joinsFaces(const TextureProperties& properties)
{
    const uint64_t faces = pixelBlockCount(properties).faces;
    // Fewer than six compressed images are levels that were joined already.
    return properties.type == TextureCubeMapArray && (properties.compressed != 0 ? faces == FacesOfCube : faces != 0);
}

std::vector<DataBlock> copyTexturePixels(const TextureProperties& properties)
{
    PixelBlockCount count = pixelBlockCount(properties);
    const bool joined = joinsFaces(properties);
    if (properties.type == TextureCubeMapArray && !joined)
    {
        count.faces = std::min<uint64_t>(count.faces, 1);
    }
    std::vector<DataBlock> blocks;
    blocks.reserve(static_cast<std::size_t>(joined ? count.levels : count.faces * count.levels));
    for (uint64_t level = 0; level < count.levels; ++level)
    {
        const void* const* faces = properties.data.data() + level * count.faces;
        if (joined)
        {
            blocks.push_back(joinLevel(properties, level, faces, count.faces));
            continue;
        }
        for (uint64_t face = 0; face < count.faces; ++face)
        {
            blocks.push_back(
                copyBlock(faces[face], copiedBlockSize(properties, level), uploadedBlockSize(properties, level)));
        }
    }
    return blocks;
}

DataBlock copyBatchEntryPixels(const TextureUpdateBatchData& entry)
{
    const uint64_t pixelSize = batchPixelSize(entry.format, entry.dataType);
    const uint64_t rowSize = pixelSize * entry.width;
    // An update of fewer dimensions does not look at the sizes of the others.
    const uint64_t uploaded =
        product(rowSize, std::max<uint64_t>(1, entry.height), std::max<uint64_t>(1, entry.depth), FacesOfCube);
    DataBlock block = makeZeroedBlock(uploaded);
    if (entry.data == nullptr || rowSize == 0)
    {
        return block;
    }
    const uint64_t sourceRowSize = pixelSize * (entry.rowLength != 0 ? entry.rowLength : entry.width);
    const uint64_t sourceImageSize = sourceRowSize * (entry.imageHeight != 0 ? entry.imageHeight : entry.height);
    uint8_t* target = block.get();
    for (uint64_t z = 0; z < entry.depth; ++z)
    {
        const uint8_t* source = static_cast<const uint8_t*>(entry.data) + z * sourceImageSize;
        for (uint64_t y = 0; y < entry.height; ++y)
        {
            std::memcpy(target, source, static_cast<std::size_t>(rowSize));
            target += rowSize;
            source += sourceRowSize;
        }
    }
    return block;
}

DataBlock joinCubeArrayFaces(const void* const* faces, uint64_t faceCount, uint64_t imageSize, uint64_t copiedLayers,
                             uint64_t layers)
{
    DataBlock block = makeZeroedBlock(product(imageSize, std::max(copiedLayers, layers), FacesOfCube));
    if (imageSize == 0)
    {
        // Nothing bounds the number of layers then.
        return block;
    }
    for (uint64_t layer = 0; layer < copiedLayers; ++layer)
    {
        for (uint64_t face = 0; face < faceCount; ++face)
        {
            if (faces[face] != nullptr)
            {
                std::memcpy(block.get() + (layer * FacesOfCube + face) * imageSize,
                            static_cast<const uint8_t*>(faces[face]) + layer * imageSize,
                            static_cast<std::size_t>(imageSize));
            }
        }
    }
    return block;
}

} // namespace renderengine
