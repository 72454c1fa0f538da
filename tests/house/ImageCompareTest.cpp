#include "support/ImageCompare.h"
#include "support/ImageAssertions.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <stdexcept>
#include <string>
#include <vector>

using namespace renderengine::testing;

namespace
{

Image gradient(int width, int height)
{
    Image image{width, height, std::vector<std::uint8_t>(static_cast<std::size_t>(width * height) * 4, 255)};
    std::size_t offset = 0;
    for (int y = 0; y < height; ++y)
    {
        for (int x = 0; x < width; ++x)
        {
            image.pixels[offset] = static_cast<std::uint8_t>(x * 255 / width);
            image.pixels[offset + 1] = static_cast<std::uint8_t>(y * 255 / height);
            image.pixels[offset + 2] = 10;
            offset += 4;
        }
    }
    return image;
}

std::string temporaryFile(const std::string& name)
{
    return ::testing::TempDir() + "renderengine-" + name;
}

} // namespace

TEST(ImageCompareTest, PngFileKeepsEveryPixel)
{
    const Image image = gradient(7, 5);
    const std::string path = temporaryFile("round-trip.png");
    savePng(path, image);
    const Image loaded = loadPng(path);
    std::remove(path.c_str());
    EXPECT_EQ(loaded.width, 7);
    EXPECT_EQ(loaded.height, 5);
    EXPECT_EQ(loaded.pixels, image.pixels);
}

TEST(ImageCompareTest, MissingFileIsNamedInTheError)
{
    try
    {
        loadPng("/nowhere/missing.png");
        FAIL() << "a file that does not exist was read";
    }
    catch (const std::runtime_error& error)
    {
        EXPECT_NE(std::string(error.what()).find("/nowhere/missing.png"), std::string::npos);
    }
}

TEST(ImageCompareTest, PixelCountsOnceHoweverManyChannelsDiffer)
{
    const Image first = gradient(4, 4);
    Image second = first;
    second.pixels[0] = 90;
    second.pixels[1] = 90;
    second.pixels[2] = 15;
    const ImageDifference difference = compareImages(first, second, 3);
    EXPECT_TRUE(difference.sameSize);
    EXPECT_EQ(difference.differentPixels, 1U);
    EXPECT_EQ(difference.largestDistance, 90);
}

TEST(ImageCompareTest, DistanceEqualToTheToleranceIsNoDifference)
{
    const Image first = gradient(4, 4);
    Image second = first;
    second.pixels[2] = 13;
    EXPECT_EQ(compareImages(first, second, 3).differentPixels, 0U);
    EXPECT_EQ(compareImages(first, second, 2).differentPixels, 1U);
}

TEST(ImageCompareTest, AlphaCounts)
{
    const Image first = gradient(2, 2);
    Image second = first;
    second.pixels[7] = 0;
    EXPECT_EQ(compareImages(first, second, 0).differentPixels, 1U);
}

TEST(ImageCompareTest, PicturesOfDifferentSizesDoNotMatch)
{
    const ImageDifference difference = compareImages(gradient(4, 2), gradient(2, 4), 255);
    EXPECT_FALSE(difference.sameSize);
    EXPECT_FALSE(imagesMatch(gradient(4, 2), gradient(2, 4), 255, 100, temporaryFile("unused.png")));
}

TEST(ImageCompareTest, FailedAssertionWritesTheDifference)
{
    const Image first = gradient(3, 3);
    Image second = first;
    second.pixels[0] = 20;
    const std::string path = temporaryFile("difference.png");
    EXPECT_TRUE(imagesMatch(first, second, 3, 1, path));
    EXPECT_FALSE(imagesMatch(first, second, 3, 0, path));
    const Image difference = loadPng(path);
    std::remove(path.c_str());
    EXPECT_EQ(difference.pixels[0], 160);
    EXPECT_EQ(difference.pixels[4], 0);
    EXPECT_EQ(difference.pixels[3], 255);
}
