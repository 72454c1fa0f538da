#include "Images.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <stdexcept>

#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"
#pragma GCC diagnostic ignored "-Wmissing-field-initializers"
#pragma GCC diagnostic ignored "-Wunused-function"
#endif
#define STB_IMAGE_STATIC
#define STB_IMAGE_IMPLEMENTATION
#include <stb/stb_image.h>
#define STB_IMAGE_WRITE_STATIC
#define STB_IMAGE_WRITE_IMPLEMENTATION
#include <stb/stb_image_write.h>
#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif

namespace viewer
{

std::vector<uint8_t> readFile(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw std::runtime_error("'" + path + "' cannot be opened for reading");
    std::vector<uint8_t> bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    if (file.bad())
        throw std::runtime_error("'" + path + "' cannot be read");
    return bytes;
}

Image decodeImage(const std::vector<uint8_t>& bytes)
{
    if (bytes.size() > static_cast<std::size_t>(std::numeric_limits<int>::max()))
        throw std::runtime_error("the picture is larger than 2 GiB");
    int width = 0;
    int height = 0;
    int channels = 0;
    stbi_uc* pixels =
        stbi_load_from_memory(bytes.data(), static_cast<int>(bytes.size()), &width, &height, &channels, 4);
    if (pixels == nullptr)
        throw std::runtime_error(std::string("the picture cannot be decoded (") + stbi_failure_reason() + ")");
    Image image;
    image.width = static_cast<uint32_t>(width);
    image.height = static_cast<uint32_t>(height);
    image.pixels.assign(pixels, pixels + std::size_t{4} * image.width * image.height);
    stbi_image_free(pixels);
    return image;
}

void writePng(const std::string& path, const Image& image)
{
    std::vector<char> encoded;
    const auto append = [](void* context, void* data, int size)
    {
        auto& bytes = *static_cast<std::vector<char>*>(context);
        bytes.insert(bytes.end(), static_cast<char*>(data), static_cast<char*>(data) + size);
    };
    const int width = static_cast<int>(image.width);
    const int height = static_cast<int>(image.height);
    if (stbi_write_png_to_func(append, &encoded, width, height, 4, image.pixels.data(), width * 4) == 0)
        throw std::runtime_error("the picture cannot be encoded as PNG");

    const std::string partial = path + ".part";
    const auto fail = [&partial, &path](const std::string& why)
    {
        std::error_code ignored;
        std::filesystem::remove(partial, ignored);
        throw std::runtime_error("'" + path + "' cannot be written: " + why);
    };
    std::ofstream file(partial, std::ios::binary);
    if (!file)
        throw std::runtime_error("'" + path + "' cannot be written: " + std::strerror(errno));
    file.write(encoded.data(), static_cast<std::streamsize>(encoded.size()));
    file.close();
    if (!file)
        fail("the disk does not take it");
    std::error_code error;
    std::filesystem::rename(partial, path, error);
    if (error)
        fail(error.message());
}

void flipRows(Image& image)
{
    const std::size_t row = std::size_t{4} * image.width;
    for (std::size_t y = 0; y < image.height / 2; ++y)
    {
        const auto top = image.pixels.begin() + static_cast<std::ptrdiff_t>(y * row);
        const auto bottom = image.pixels.begin() + static_cast<std::ptrdiff_t>((image.height - 1 - y) * row);
        std::swap_ranges(top, top + static_cast<std::ptrdiff_t>(row), bottom);
    }
}

} // namespace viewer
