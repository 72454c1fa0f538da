#include "GLDeviceTestSupport.h"

#include "gl/GLTables.h"
#include "gl/TextureGL.h"

#include <fstream>
#include <sstream>

namespace renderengine
{

namespace
{

constexpr uint32_t s_rgba = 8;

using TextureFormatGLDeviceTest = ResourceDeviceTest;

/// Names of the table, in its order, as far as their pixels differ in kind.
struct PixelKind
{
    uint32_t format;
    SbDataType::Type dataType;
};

bool isCompressed(uint32_t internalFormat)
{
    return internalFormat >= 64 && internalFormat < 80;
}

PixelKind pixelKind(uint32_t internalFormat)
{
    constexpr uint32_t rgb10a2ui = 24;
    if (internalFormat == rgb10a2ui || (internalFormat >= 40 && internalFormat < 64))
    {
        return {16, SbDataType::INT};
    }
    if (internalFormat >= 80 && internalFormat < 84)
    {
        return {0, SbDataType::FLOAT};
    }
    if (internalFormat == 84 || internalFormat == 85)
    {
        return {2, SbDataType::UNSIGNED_INT};
    }
    if (internalFormat == 86)
    {
        return {1, SbDataType::UNSIGNED_BYTE};
    }
    return {s_rgba, SbDataType::UNSIGNED_BYTE};
}

size_t blockBytes(uint32_t internalFormat)
{
    // One channel, and the first kind of block with at most one bit of alpha.
    const bool small = internalFormat == 64 || internalFormat == 65 || (internalFormat >= 72 && internalFormat < 76);
    return small ? 8 : 16;
}

/// Columns of a row of the table in docs/formats.md.
std::vector<std::string> columns(const std::string& row)
{
    std::vector<std::string> texts;
    std::istringstream stream(row);
    std::string text;
    while (std::getline(stream, text, '|'))
    {
        const size_t first = text.find_first_not_of(' ');
        texts.push_back(first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(' ') + 1 - first));
    }
    return texts;
}

/// The formats that the document says this driver refuses.
Texts listedAsRefused()
{
    const std::string driver = reinterpret_cast<const char*>(glGetString(GL_RENDERER));
    const bool isZink = driver.find("zink") != std::string::npos;
    const bool isLlvmpipe = driver.find("llvmpipe") != std::string::npos;
    Texts refused;
    std::ifstream document(RENDERENGINE_FORMATS_DOCUMENT);
    std::string line;
    size_t index = 0;
    while (std::getline(document, line))
    {
        const std::vector<std::string> row = columns(line);
        if (row.size() < 5 || row[1] != std::to_string(index))
        {
            continue;
        }
        EXPECT_EQ(row[2], gltables::internalFormats.getRows()[index].meaning);
        const bool isRefused = row[isZink ? 4 : 3] == "refused";
        if ((isZink || isLlvmpipe) && isRefused)
        {
            refused.push_back(row[2]);
        }
        ++index;
    }
    EXPECT_EQ(index, gltables::internalFormats.size()) << "rows in the table of the document";
    return refused;
}

} // namespace

TEST_F(TextureFormatGLDeviceTest, EveryInternalFormatIsTakenOrListed)
{
    const std::string driver = reinterpret_cast<const char*>(glGetString(GL_RENDERER));
    Texts refused;
    for (uint32_t format = 0; format < gltables::internalFormats.size(); ++format)
    {
        const PixelKind kind = pixelKind(format);
        const std::vector<uint8_t> blocks(blockBytes(format), 0);
        TextureProperties properties;
        properties.width = 4;
        properties.height = 4;
        properties.internalFormat = format;
        properties.format = kind.format;
        properties.dataType = kind.dataType;
        if (isCompressed(format))
        {
            properties.compressed = 1;
            properties.data = {blocks.data()};
            properties.sizes = {static_cast<uint32_t>(blocks.size())};
        }
        TextureGL texture(properties);
        const bool isYounger = (format >= 68 && format < 72) || format == 86;
        const bool isExtension = format >= 72 && format < 80;
        const bool mayBeRefused = (isYounger || isExtension) && driver.find("llvmpipe") == std::string::npos;
        if (!device.takeErrors().empty() && !mayBeRefused)
        {
            refused.emplace_back(gltables::internalFormats.getRows()[format].meaning);
        }
        texture.destroy();
    }
    EXPECT_EQ(refused, listedAsRefused());
}

} // namespace renderengine
