#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace renderengine::testing
{

/// A picture of 8-bit RGBA pixels, rows from top to bottom, without padding.
struct Image
{
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> pixels;
};

/// What compareImages() found.
struct ImageDifference
{
    /// False when width or height differ; the other fields then keep their defaults.
    bool sameSize = false;
    /// Pixels with at least one channel further apart than the tolerance.
    std::size_t differentPixels = 0;
    /// The largest distance of any channel, 0 to 255.
    int largestDistance = 0;
    /// The distances themselves, eight times as bright as they are and opaque, so that a small one can be seen.
    Image picture;
};

/// Reads a PNG file. Throws std::runtime_error that names the file when it cannot be read.
Image loadPng(const std::string& path);

/// Writes a PNG file. Throws std::runtime_error that names the file when it cannot be written.
void savePng(const std::string& path, const Image& image);

/// Compares channel by channel, alpha included. A channel may differ by `tolerance` (0 to 255) without counting.
ImageDifference compareImages(const Image& first, const Image& second, int tolerance);

} // namespace renderengine::testing
