#include "PngWriter.h"

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <limits>

// The library is a single header of C; its functions stay in this file and its warnings are not ours.
#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"
#pragma GCC diagnostic ignored "-Wsign-conversion"
#pragma GCC diagnostic ignored "-Wshadow"
#pragma GCC diagnostic ignored "-Wmissing-field-initializers"
#pragma GCC diagnostic ignored "-Wunused-function"
#endif
#define STB_IMAGE_WRITE_STATIC
#define STBI_WRITE_NO_STDIO
#define STB_IMAGE_WRITE_IMPLEMENTATION
#include <stb/stb_image_write.h>
#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif

namespace kavelor
{

namespace
{

constexpr int Channels = 4;

void writeToStream(void* context, void* data, int size)
{
    static_cast<std::ofstream*>(context)->write(static_cast<const char*>(data), size);
}

/// The encoder counts the filtered rows, one byte longer than their pixels, in an int.
bool isEncodable(const SbVec2i32& size)
{
    const std::int64_t filteredRow = std::int64_t(size[0]) * Channels + 1;
    return filteredRow <= std::numeric_limits<int>::max() / size[1];
}

} // namespace

bool writePng(const char* path, const SbVec4ub* pixels, const SbVec2i32& size)
{
    if (!isEncodable(size))
    {
        return false;
    }
    std::ofstream file(std::filesystem::u8path(path), std::ios::binary | std::ios::trunc);
    if (!file)
    {
        return false;
    }
    const int encoded =
        stbi_write_png_to_func(writeToStream, &file, size[0], size[1], Channels, pixels, size[0] * Channels);
    file.close();
    return encoded != 0 && !file.fail();
}

} // namespace kavelor
