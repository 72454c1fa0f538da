#include <cstring>
#include <numeric>
#include <vector>

#include <gtest/gtest.h>

#include "commands/PixelLayout.h"

namespace
{

using namespace renderengine;

TextureProperties texture(uint32_t type, uint32_t width, uint32_t height, uint32_t depth)
{
    TextureProperties properties;
    properties.type = type;
    properties.width = width;
    properties.height = height;
    properties.depth = depth;
    properties.format = 3;
    return properties;
}

std::vector<uint8_t> bytesOf(const DataBlock& block, std::size_t size)
{
    return std::vector<uint8_t>(block.get(), block.get() + size);
}

std::vector<uint8_t> countingBytes(std::size_t size, uint8_t first = 1)
{
    std::vector<uint8_t> bytes(size);
    std::iota(bytes.begin(), bytes.end(), first);
    return bytes;
}

TEST(PixelLayout, CountsTheComponentsOfEachFormat)
{
    const uint32_t expected[19] = {1, 1, 2, 1, 1, 1, 2, 3, 4, 3, 4, 1, 1, 1, 2, 3, 4, 3, 4};
    for (uint32_t format = 0; format < 19; ++format)
    {
        EXPECT_EQ(componentCount(format), expected[format]) << format;
    }
    EXPECT_EQ(componentCount(19), 4u);
}

TEST(PixelLayout, CountsTheBytesOfAPixel)
{
    EXPECT_EQ(bytesPerPixel(8, SbDataType::UNSIGNED_BYTE, 21), 4u);
    EXPECT_EQ(bytesPerPixel(7, SbDataType::SHORT, 16), 6u);
    EXPECT_EQ(bytesPerPixel(6, SbDataType::FLOAT, 35), 8u);
    EXPECT_EQ(bytesPerPixel(3, SbDataType::DOUBLE, 34), 8u);
    EXPECT_EQ(bytesPerPixel(8, SbDataType::RESERVED_7, 21), 4u);
    EXPECT_EQ(bytesPerPixel(0, SbDataType::FLOAT, 83), 4u);
}

TEST(PixelLayout, CountsPackedDepthStencilPixelsAsAWhole)
{
    EXPECT_EQ(bytesPerPixel(2, SbDataType::UNSIGNED_BYTE, 84), 4u);
    EXPECT_EQ(bytesPerPixel(2, SbDataType::FLOAT, 85), 8u);
}

TEST(PixelLayout, CountsSixFacesForCubes)
{
    TextureProperties properties = texture(7, 2, 2, 1);
    properties.data.assign(12, nullptr);
    EXPECT_EQ(pixelBlockCount(properties).faces, 6u);
    EXPECT_EQ(pixelBlockCount(properties).levels, 2u);
    properties.data.assign(7, nullptr);
    EXPECT_EQ(pixelBlockCount(properties).faces, 6u);
    EXPECT_EQ(pixelBlockCount(properties).levels, 1u);
    properties.data.assign(3, nullptr);
    EXPECT_EQ(pixelBlockCount(properties).faces, 3u);
    EXPECT_EQ(pixelBlockCount(properties).levels, 1u);
    properties.type = 8;
    properties.data.assign(18, nullptr);
    EXPECT_EQ(pixelBlockCount(properties).faces, 6u);
    EXPECT_EQ(pixelBlockCount(properties).levels, 3u);
}

TEST(PixelLayout, CountsOneFaceOtherwise)
{
    TextureProperties properties = texture(2, 4, 4, 1);
    properties.data.assign(3, nullptr);
    EXPECT_EQ(pixelBlockCount(properties).faces, 1u);
    EXPECT_EQ(pixelBlockCount(properties).levels, 3u);
    properties.data.clear();
    EXPECT_EQ(pixelBlockCount(properties).faces, 0u);
    EXPECT_EQ(pixelBlockCount(properties).levels, 1u);
}

TEST(PixelLayout, CopiesOneLevelOfACompressedTexture)
{
    const std::vector<uint8_t> level0 = countingBytes(16);
    const std::vector<uint8_t> level1 = countingBytes(8);
    TextureProperties properties = texture(2, 8, 4, 1);
    properties.compressed = 1;
    properties.sizes = {16, 8};
    properties.data = {level0.data(), level1.data()};
    EXPECT_EQ(pixelBlockCount(properties).levels, 1u);
    EXPECT_EQ(copiedBlockSize(properties, 0), 16u);
    const std::vector<DataBlock> blocks = copyTexturePixels(properties);
    ASSERT_EQ(blocks.size(), 1u);
    EXPECT_EQ(bytesOf(blocks[0], 16), level0);
    properties.sizes.clear();
    EXPECT_EQ(copiedBlockSize(properties, 0), 0u);
    EXPECT_EQ(copyTexturePixels(properties).size(), 1u);
}

TEST(PixelLayout, LevelsNeverFallBelowOnePixel)
{
    const TextureProperties properties = texture(2, 4, 4, 1);
    EXPECT_EQ(copiedBlockSize(properties, 0), 16u);
    EXPECT_EQ(copiedBlockSize(properties, 1), 4u);
    EXPECT_EQ(copiedBlockSize(properties, 2), 1u);
    EXPECT_EQ(copiedBlockSize(properties, 3), 1u);
    EXPECT_EQ(copiedBlockSize(properties, 40), 1u);
    const TextureProperties wide = texture(2, 3, 1, 1);
    EXPECT_EQ(copiedBlockSize(wide, 0), 3u);
    EXPECT_EQ(copiedBlockSize(wide, 1), 1u);
}

TEST(PixelLayout, UsesTheDepthOfTypesThatHaveOne)
{
    for (uint32_t type = 0; type < 10; ++type)
    {
        const bool hasDepth = type == 4 || type == 5 || type == 6 || type == 8;
        EXPECT_EQ(copiedBlockSize(texture(type, 2, 2, 3), 0), hasDepth ? 12u : 4u) << type;
    }
}

TEST(PixelLayout, GivesLayersTheRoomThatTheUploadReads)
{
    const TextureProperties array = texture(4, 4, 4, 8);
    EXPECT_EQ(copiedBlockSize(array, 1), 2u * 2u * 4u);
    EXPECT_EQ(uploadedBlockSize(array, 1), 2u * 2u * 8u);
    const TextureProperties rows = texture(1, 4, 8, 1);
    EXPECT_EQ(copiedBlockSize(rows, 1), 2u * 4u);
    EXPECT_EQ(uploadedBlockSize(rows, 1), 2u * 8u);
    const TextureProperties volume = texture(6, 4, 4, 8);
    EXPECT_EQ(uploadedBlockSize(volume, 1), copiedBlockSize(volume, 1));
    const TextureProperties cubes = texture(8, 4, 4, 2);
    EXPECT_EQ(copiedBlockSize(cubes, 1), 2u * 2u);
    EXPECT_EQ(uploadedBlockSize(cubes, 1), 2u * 2u * 2u);
}

TEST(PixelLayout, FillsTheRoomBehindTheCopiedBytesWithZeros)
{
    const std::vector<uint8_t> level0 = countingBytes(2 * 2 * 2);
    const std::vector<uint8_t> level1 = {99};
    TextureProperties properties = texture(4, 2, 2, 2);
    properties.data = {level0.data(), level1.data()};
    const std::vector<DataBlock> blocks = copyTexturePixels(properties);
    ASSERT_EQ(blocks.size(), 2u);
    EXPECT_EQ(bytesOf(blocks[0], 8), level0);
    EXPECT_EQ(bytesOf(blocks[1], 2), (std::vector<uint8_t>{99, 0}));
}

TEST(PixelLayout, CopiesCubesLevelByLevelAndFaceByFace)
{
    std::vector<std::vector<uint8_t>> images;
    TextureProperties properties = texture(7, 2, 2, 1);
    for (uint8_t i = 0; i < 12; ++i)
    {
        images.push_back(std::vector<uint8_t>(i < 6 ? 4 : 1, i));
    }
    for (const std::vector<uint8_t>& image : images)
    {
        properties.data.push_back(image.data());
    }
    const std::vector<DataBlock> blocks = copyTexturePixels(properties);
    ASSERT_EQ(blocks.size(), 12u);
    for (std::size_t i = 0; i < 12; ++i)
    {
        EXPECT_EQ(bytesOf(blocks[i], images[i].size()), images[i]) << i;
    }
}

TEST(PixelLayout, GivesZerosForANullImage)
{
    TextureProperties properties = texture(2, 2, 1, 1);
    properties.data = {nullptr};
    const std::vector<DataBlock> blocks = copyTexturePixels(properties);
    ASSERT_EQ(blocks.size(), 1u);
    EXPECT_EQ(bytesOf(blocks[0], 2), (std::vector<uint8_t>{0, 0}));
}

TEST(PixelLayout, CopiesNothingForATextureWithoutImages)
{
    EXPECT_TRUE(copyTexturePixels(texture(2, 4, 4, 1)).empty());
}

TEST(PixelLayout, TightensTheBoxOfABatchEntry)
{
    // A source of 4 by 3 pixels an image, of which a box of 2 by 2 by 2 is taken.
    const std::vector<uint8_t> pixels = countingBytes(24);
    TextureUpdateBatchData entry;
    entry.width = 2;
    entry.height = 2;
    entry.depth = 2;
    entry.format = 3;
    entry.rowLength = 4;
    entry.imageHeight = 3;
    entry.data = pixels.data();
    EXPECT_EQ(bytesOf(copyBatchEntryPixels(entry), 8), (std::vector<uint8_t>{1, 2, 5, 6, 13, 14, 17, 18}));
    entry.rowLength = 0;
    entry.imageHeight = 0;
    EXPECT_EQ(bytesOf(copyBatchEntryPixels(entry), 8), countingBytes(8));
}

TEST(PixelLayout, GivesABatchEntryRoomForSixFacesOfZeros)
{
    const std::vector<uint8_t> pixels = countingBytes(2);
    TextureUpdateBatchData entry;
    entry.width = 1;
    entry.height = 1;
    entry.depth = 2;
    entry.format = 3;
    entry.data = pixels.data();
    EXPECT_EQ(bytesOf(copyBatchEntryPixels(entry), 12), (std::vector<uint8_t>{1, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST(PixelLayout, CopiesPackedDepthStencilPixelsOfABatchEntryAsAWhole)
{
    const std::vector<uint8_t> pixels = countingBytes(8);
    TextureUpdateBatchData entry;
    entry.width = 1;
    entry.height = 2;
    entry.depth = 1;
    entry.format = 2;
    entry.dataType = SbDataType::UNSIGNED_INT;
    entry.data = pixels.data();
    std::vector<uint8_t> expected = pixels;
    expected.resize(2 * 4 * 6, 0);
    EXPECT_EQ(bytesOf(copyBatchEntryPixels(entry), expected.size()), expected);
    EXPECT_EQ(batchPixelSize(2, SbDataType::FLOAT), 8u);
    EXPECT_EQ(batchPixelSize(0, SbDataType::UNSIGNED_INT), 4u);
}

TEST(PixelLayout, CopiesAnEmptyBoxAndANullPointerAsZeros)
{
    const uint8_t pixel = 9;
    TextureUpdateBatchData entry;
    entry.format = 3;
    entry.data = &pixel;
    EXPECT_NE(copyBatchEntryPixels(entry), nullptr);
    entry.width = 1;
    EXPECT_EQ(bytesOf(copyBatchEntryPixels(entry), 1), (std::vector<uint8_t>{0}));
    entry.height = 1;
    entry.depth = 1;
    entry.data = nullptr;
    EXPECT_EQ(bytesOf(copyBatchEntryPixels(entry), 1), (std::vector<uint8_t>{0}));
}

TEST(PixelLayout, JoinsTheFacesOfACubeArrayInLayerFaceOrder)
{
    std::vector<std::vector<uint8_t>> images;
    for (uint8_t face = 0; face < 6; ++face)
    {
        images.push_back({static_cast<uint8_t>(face * 10), static_cast<uint8_t>(face * 10 + 1)});
    }
    const void* faces[6] = {images[0].data(), images[1].data(), images[2].data(),
                            nullptr,          images[4].data(), images[5].data()};
    EXPECT_EQ(bytesOf(joinCubeArrayFaces(faces, 6, 1, 2, 2), 12),
              (std::vector<uint8_t>{0, 10, 20, 0, 40, 50, 1, 11, 21, 0, 41, 51}));
    EXPECT_EQ(bytesOf(joinCubeArrayFaces(faces, 2, 1, 1, 2), 12),
              (std::vector<uint8_t>{0, 10, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST(PixelLayout, GivesOneJoinedBlockForEachLevelOfACubeArray)
{
    // Two layers on both levels for the device; the second level copies one layer of each face.
    std::vector<std::vector<uint8_t>> images;
    TextureProperties properties = texture(8, 2, 1, 2);
    for (uint8_t i = 0; i < 12; ++i)
    {
        images.push_back(std::vector<uint8_t>(i < 6 ? 4 : 1, static_cast<uint8_t>(i + 1)));
    }
    for (const std::vector<uint8_t>& image : images)
    {
        properties.data.push_back(image.data());
    }
    EXPECT_TRUE(joinsFaces(properties));
    const std::vector<DataBlock> blocks = copyTexturePixels(properties);
    ASSERT_EQ(blocks.size(), 2u);
    EXPECT_EQ(bytesOf(blocks[0], 24),
              (std::vector<uint8_t>{1, 1, 2, 2, 3, 3, 4, 4, 5, 5, 6, 6, 1, 1, 2, 2, 3, 3, 4, 4, 5, 5, 6, 6}));
    EXPECT_EQ(bytesOf(blocks[1], 12), (std::vector<uint8_t>{7, 8, 9, 10, 11, 12, 0, 0, 0, 0, 0, 0}));
}

TEST(PixelLayout, JoinsSixCompressedFacesOfACubeArray)
{
    std::vector<std::vector<uint8_t>> images;
    TextureProperties properties = texture(8, 4, 4, 2);
    properties.compressed = 1;
    properties.sizes = {4};
    for (uint8_t i = 0; i < 6; ++i)
    {
        images.push_back({i, i, static_cast<uint8_t>(i + 10), static_cast<uint8_t>(i + 10)});
    }
    for (const std::vector<uint8_t>& image : images)
    {
        properties.data.push_back(image.data());
    }
    const std::vector<DataBlock> blocks = copyTexturePixels(properties);
    ASSERT_EQ(blocks.size(), 1u);
    EXPECT_EQ(bytesOf(blocks[0], 24), (std::vector<uint8_t>{0,  0,  1,  1,  2,  2,  3,  3,  4,  4,  5,  5,
                                                            10, 10, 11, 11, 12, 12, 13, 13, 14, 14, 15, 15}));
    // A level that comes joined stays one block.
    properties.data.resize(2);
    EXPECT_FALSE(joinsFaces(properties));
    EXPECT_EQ(copyTexturePixels(properties).size(), 1u);
}

TEST(PixelLayout, StaysAtTheLargestSizeInsteadOfWrapping)
{
    const TextureProperties huge = texture(6, 0xFFFFFFFFu, 0xFFFFFFFFu, 0xFFFFFFFFu);
    EXPECT_EQ(copiedBlockSize(huge, 0), ~uint64_t(0));
    EXPECT_EQ(uploadedBlockSize(huge, 0), ~uint64_t(0));
}

TEST(PixelLayout, JoinsEmptyImagesOfAnyNumberOfLayersAtOnce)
{
    const uint8_t pixel = 0;
    TextureProperties properties = texture(8, 4, 4, 0xFFFFFFFFu);
    properties.compressed = 1;
    properties.sizes = {0};
    properties.data.assign(6, &pixel);
    EXPECT_EQ(copyTexturePixels(properties).size(), 1u);
}

} // namespace
