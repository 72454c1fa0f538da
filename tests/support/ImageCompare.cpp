#include "support/ImageCompare.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <stdexcept>

#define STBI_ONLY_PNG
#define STB_IMAGE_STATIC
#define STB_IMAGE_IMPLEMENTATION
#include <stb/stb_image.h>
#define STB_IMAGE_WRITE_STATIC
#define STB_IMAGE_WRITE_IMPLEMENTATION
#include <stb/stb_image_write.h>

namespace renderengine::testing
{
namespace
{

constexpr int channelCount = 4;

std::uint8_t brightened(int distance)
{
    return static_cast<std::uint8_t>(std::min(255, distance * 8));
}

} // namespace

Image loadPng(const std::string& path)
{
    Image image;
    const std::unique_ptr<stbi_uc, decltype(&stbi_image_free)> pixels(
        stbi_load(path.c_str(), &image.width, &image.height, nullptr, channelCount), &stbi_image_free);
    if (!pixels)
    {
        throw std::runtime_error("cannot read the PNG file " + path + ": " + stbi_failure_reason());
    }
    const auto size = static_cast<std::size_t>(image.width) * static_cast<std::size_t>(image.height) * channelCount;
    image.pixels.assign(pixels.get(), pixels.get() + size);
    return image;
}

void savePng(const std::string& path, const Image& image)
{
    const int rowBytes = image.width * channelCount;
    if (stbi_write_png(path.c_str(), image.width, image.height, channelCount, image.pixels.data(), rowBytes) == 0)
    {
        throw std::runtime_error("cannot write the PNG file " + path);
    }
}

ImageDifference compareImages(const Image& first, const Image& second, int tolerance)
{
    ImageDifference result;
    result.sameSize = first.width == second.width && first.height == second.height;
    if (!result.sameSize)
    {
        return result;
    }
    result.picture = {first.width, first.height, std::vector<std::uint8_t>(first.pixels.size(), 255)};
    for (std::size_t pixel = 0; pixel < first.pixels.size(); pixel += channelCount)
    {
        int largest = 0;
        for (std::size_t channel = 0; channel < channelCount; ++channel)
        {
            const int distance = std::abs(first.pixels[pixel + channel] - second.pixels[pixel + channel]);
            largest = std::max(largest, distance);
            if (channel < 3)
            {
                result.picture.pixels[pixel + channel] = brightened(distance);
            }
        }
        result.largestDistance = std::max(result.largestDistance, largest);
        result.differentPixels += largest > tolerance ? 1 : 0;
    }
    return result;
}

} // namespace renderengine::testing
