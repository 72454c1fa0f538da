#include "GLDeviceTestSupport.h"

#include "gl/TextureGL.h"

#include <array>
#include <cstring>

namespace renderengine
{

namespace
{

struct Case
{
    uint32_t type;
    const char* name;
    uint32_t width;
    uint32_t height;
    uint32_t depth;
    // Blocks of level 0, and bytes of one.
    size_t images;
    size_t bytes;
};

const Case s_cases[] = {{0, "1D", 8, 1, 1, 1, 8 * 4},
                        {1, "1D array", 8, 3, 1, 1, 8 * 3 * 4},
                        {2, "2D", 8, 4, 1, 1, 8 * 4 * 4},
                        {4, "2D array", 8, 4, 3, 1, 8 * 4 * 3 * 4},
                        {6, "3D", 8, 4, 3, 1, 8 * 4 * 3 * 4},
                        {7, "cube map", 4, 4, 1, 6, 4 * 4 * 4},
                        {8, "cube map array", 4, 4, 2, 1, 4 * 4 * 12 * 4}};

class TextureGLDeviceTest : public ResourceDeviceTest
{
protected:
    using ResourceDeviceTest::ResourceDeviceTest;

    static TextureProperties propertiesOf(const Case& c)
    {
        TextureProperties properties;
        properties.type = c.type;
        properties.width = c.width;
        properties.height = c.height;
        properties.depth = c.depth;
        return properties;
    }

    static std::vector<uint8_t> readBack(TextureGL& texture)
    {
        texture.readback();
        const auto* data = reinterpret_cast<const uint8_t*>(texture.getReadbackData());
        return std::vector<uint8_t>(data, data + texture.getDataSize());
    }

    /// Uploads level 0 of every target and reads it back. Returns the targets of which other bytes came back.
    Texts targetsThatLosePixels(bool immutable)
    {
        Texts losing;
        for (const Case& c : s_cases)
        {
            const auto pixels = pattern(c.images * c.bytes);
            TextureProperties properties = propertiesOf(c);
            properties.immutable = immutable;
            for (size_t i = 0; i < c.images; ++i)
            {
                properties.data.push_back(pixels.data() + i * c.bytes);
            }
            TextureGL texture(properties);
            if (readBack(texture) != pixels)
            {
                losing.emplace_back(c.name);
            }
            texture.destroy();
        }
        return losing;
    }
};

class TextureGL41DeviceTest : public TextureGLDeviceTest
{
protected:
    TextureGL41DeviceTest() : TextureGLDeviceTest(GLProfile::Compatibility, GLVersion::Limited41) {}
};

class TextureGLCoreDeviceTest : public TextureGLDeviceTest
{
protected:
    TextureGLCoreDeviceTest() : TextureGLDeviceTest(GLProfile::Core) {}
};

} // namespace

TEST_F(TextureGLDeviceTest, MutableTexturesKeepTheirPixels)
{
    EXPECT_EQ(targetsThatLosePixels(false), Texts{});
}

TEST_F(TextureGLDeviceTest, ImmutableTexturesKeepTheirPixels)
{
    EXPECT_EQ(targetsThatLosePixels(true), Texts{});
}

TEST_F(TextureGLCoreDeviceTest, TexturesKeepTheirPixels)
{
    EXPECT_EQ(targetsThatLosePixels(false), Texts{});
    EXPECT_EQ(targetsThatLosePixels(true), Texts{});
}

TEST_F(TextureGL41DeviceTest, TexturesKeepTheirPixels)
{
    EXPECT_EQ(glbinding::t_table->majorVersion, 4);
    EXPECT_EQ(glbinding::t_table->minorVersion, 1);
    EXPECT_EQ(targetsThatLosePixels(false), Texts{});
    EXPECT_EQ(targetsThatLosePixels(true), Texts{});
}

TEST_F(TextureGLDeviceTest, LevelsShrinkAndStayAtOnePixel)
{
    const auto pixels = pattern(5 * 4);
    TextureProperties properties;
    properties.width = 3;
    properties.height = 1;
    properties.maxLevel = 2;
    properties.data = {pixels.data(), pixels.data() + 12, pixels.data() + 16};
    for (const uint8_t immutable : {uint8_t{0}, uint8_t{1}})
    {
        // Storage has no more levels than halving 3 pixels gives.
        properties.data.resize(immutable ? 2 : 3);
        properties.immutable = immutable;
        TextureGL texture(properties);
        glBindTexture(GL_TEXTURE_2D, texture.getId());
        for (GLint level = 0; level < static_cast<GLint>(properties.data.size()); ++level)
        {
            GLint width = 0;
            GLint height = 0;
            glGetTexLevelParameteriv(GL_TEXTURE_2D, level, GL_TEXTURE_WIDTH, &width);
            glGetTexLevelParameteriv(GL_TEXTURE_2D, level, GL_TEXTURE_HEIGHT, &height);
            EXPECT_EQ(width, level == 0 ? 3 : 1);
            EXPECT_EQ(height, 1);
        }
        std::array<uint8_t, 4> second{};
        glGetTexImage(GL_TEXTURE_2D, 1, GL_RGBA, GL_UNSIGNED_BYTE, second.data());
        EXPECT_EQ(std::memcmp(second.data(), pixels.data() + 12, 4), 0);
        glBindTexture(GL_TEXTURE_2D, 0);
        texture.destroy();
    }
}

TEST_F(TextureGLDeviceTest, UpdateImagesReplacesABoxOfEachTarget)
{
    for (const Case& c : s_cases)
    {
        SCOPED_TRACE(c.name);
        TextureProperties properties = propertiesOf(c);
        const std::vector<uint8_t> zeros(c.images * c.bytes, 0);
        for (size_t i = 0; i < c.images; ++i)
        {
            properties.data.push_back(zeros.data() + i * c.bytes);
        }
        TextureGL texture(properties);
        // Two pixels of row 1 of the last face, layer or slice, where there is one.
        const bool layered = c.type == 4 || c.type == 6;
        TextureUpdateBatchData image;
        image.x = 1;
        image.y = c.type == 0 ? 0 : 1;
        image.z = layered ? 2 : 0;
        image.width = 2;
        image.height = 1;
        // A cube-map array counts cubes.
        image.depth = 1;
        image.face = 5;
        const auto pixels = pattern(c.type == 8 ? 6 * 8 : 8, 3);
        image.data = pixels.data();
        texture.updateImages({image});
        const size_t slice = layered ? 2 : c.type == 7 ? 5 : 0;
        const size_t count = c.type == 8 ? 6 : 1;
        std::vector<uint8_t> expected = zeros;
        for (size_t i = 0; i < count; ++i)
        {
            const size_t pixel = ((slice + i) * c.height + image.y) * c.width + 1;
            std::memcpy(expected.data() + pixel * 4, pixels.data() + i * 8, 8);
        }
        EXPECT_EQ(readBack(texture), expected);
        texture.destroy();
    }
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
}

TEST_F(TextureGLDeviceTest, UpdateImagesReadsRowsOfTheGivenLength)
{
    TextureProperties properties;
    properties.width = 2;
    properties.height = 2;
    TextureGL texture(properties);
    const auto pixels = pattern(5 * 2 * 4);
    TextureUpdateBatchData image;
    image.width = 2;
    image.height = 2;
    image.depth = 1;
    image.rowLength = 5;
    image.data = pixels.data();
    texture.updateImages({image});
    std::vector<uint8_t> expected(pixels.begin(), pixels.begin() + 8);
    expected.insert(expected.end(), pixels.begin() + 20, pixels.begin() + 28);
    EXPECT_EQ(readBack(texture), expected);
    // The row length that is left does not reach the next full upload.
    properties.data = {pixels.data()};
    texture.update(properties);
    EXPECT_EQ(readBack(texture), std::vector<uint8_t>(pixels.begin(), pixels.begin() + 16));
    texture.destroy();
}

TEST_F(TextureGLDeviceTest, AChangeOfTargetMakesANewTexture)
{
    TextureGL texture(propertiesOf(s_cases[2]));
    const GLuint first = texture.getId();
    texture.readback();
    texture.update(propertiesOf(s_cases[4]));
    EXPECT_EQ(texture.getTarget(), GLenum{GL_TEXTURE_3D});
    EXPECT_TRUE(glIsTexture(texture.getId()) == GL_TRUE || texture.getId() == first);
    texture.readback();
    EXPECT_EQ(texture.getReadbackSize(), s_cases[4].bytes);
    texture.destroy();
}

TEST_F(TextureGLDeviceTest, ResizeGivesNewStorage)
{
    TextureGL texture(propertiesOf(s_cases[2]));
    texture.resize(32, 16, 1);
    glBindTexture(GL_TEXTURE_2D, texture.getId());
    GLint width = 0;
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_WIDTH, &width);
    EXPECT_EQ(width, 32);
    glBindTexture(GL_TEXTURE_2D, 0);
    texture.readback();
    EXPECT_EQ(texture.getReadbackSize(), 32u * 16 * 4);
    texture.destroy();
}

TEST_F(TextureGLDeviceTest, GenerateMipmapFillsTheLevels)
{
    const std::vector<uint8_t> pixels(4 * 4 * 4, 100);
    TextureProperties properties;
    properties.width = 4;
    properties.height = 4;
    properties.maxLevel = 2;
    properties.data = {pixels.data()};
    TextureGL texture(properties);
    texture.generateMipmap();
    EXPECT_TRUE(glIsEnabled(GL_TEXTURE_CUBE_MAP_SEAMLESS));
    glBindTexture(GL_TEXTURE_2D, texture.getId());
    std::array<uint8_t, 4> last{};
    glGetTexImage(GL_TEXTURE_2D, 2, GL_RGBA, GL_UNSIGNED_BYTE, last.data());
    EXPECT_EQ(last, (std::array<uint8_t, 4>{100, 100, 100, 100}));
    glBindTexture(GL_TEXTURE_2D, 0);
    texture.destroy();
}

TEST_F(TextureGLDeviceTest, BindingsAndPackAlignmentArePutBack)
{
    GLuint other = 0;
    glGenTextures(1, &other);
    glBindTexture(GL_TEXTURE_2D, other);
    TextureGL texture(propertiesOf(s_cases[2]));
    texture.readback();
    texture.generateMipmap();
    texture.resize(4, 4, 1);
    EXPECT_EQ(integer(GL_TEXTURE_BINDING_2D), static_cast<GLint>(other));
    EXPECT_EQ(integer(GL_PACK_ALIGNMENT), 4);
    EXPECT_EQ(integer(GL_UNPACK_ALIGNMENT), 1);
    texture.destroy();
    glDeleteTextures(1, &other);
}

TEST_F(TextureGLDeviceTest, DepthStencilPixelsOfEightBytesAreReadWhole)
{
    TextureProperties properties;
    properties.width = 3;
    properties.height = 3;
    properties.format = 2;
    properties.internalFormat = 85;
    std::vector<uint8_t> pixels(9 * 8, 0);
    for (size_t i = 0; i < 9; ++i)
    {
        const float depth = static_cast<float>(i) / 8.0f;
        std::memcpy(pixels.data() + i * 8, &depth, 4);
        pixels[i * 8 + 4] = static_cast<uint8_t>(i);
    }
    properties.data = {pixels.data()};
    TextureGL texture(properties);
    texture.readback();
    ASSERT_EQ(texture.getReadbackSize(), 72u);
    const auto* data = reinterpret_cast<const uint8_t*>(texture.getReadbackData());
    for (size_t i = 0; i < 9; ++i)
    {
        EXPECT_EQ(std::memcmp(data + i * 8, pixels.data() + i * 8, 5), 0) << i;
    }
    texture.destroy();
}

TEST_F(TextureGLDeviceTest, UpdateImagesReplacesDepthAndStencilTogether)
{
    const struct
    {
        uint32_t internalFormat;
        SbDataType::Type dataType;
        size_t pixelBytes;
        size_t comparedBytes;
    } rows[] = {{84, SbDataType::UNSIGNED_INT, 4, 4}, {85, SbDataType::FLOAT, 8, 5}};
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.internalFormat);
        TextureProperties properties;
        properties.width = 3;
        properties.height = 2;
        properties.format = 2;
        properties.internalFormat = row.internalFormat;
        TextureGL texture(properties);
        std::vector<uint8_t> pixels(6 * row.pixelBytes, 0);
        for (size_t i = 0; i < 6; ++i)
        {
            const float depth = 0.125f * static_cast<float>(i);
            const auto packed = static_cast<uint32_t>(i * 0x10203000u + i);
            std::memcpy(pixels.data() + i * row.pixelBytes,
                        row.pixelBytes == 4 ? static_cast<const void*>(&packed) : static_cast<const void*>(&depth), 4);
            if (row.pixelBytes == 8)
            {
                pixels[i * 8 + 4] = static_cast<uint8_t>(i + 1);
            }
        }
        TextureUpdateBatchData image;
        image.width = 3;
        image.height = 2;
        image.depth = 1;
        image.format = 2;
        image.dataType = row.dataType;
        image.data = pixels.data();
        texture.updateImages({image});
        texture.readback();
        const auto* data = reinterpret_cast<const uint8_t*>(texture.getReadbackData());
        for (size_t i = 0; i < 6; ++i)
        {
            const size_t first = i * row.pixelBytes;
            EXPECT_EQ(std::memcmp(data + first, pixels.data() + first, row.comparedBytes), 0) << i;
        }
        texture.destroy();
    }
}

TEST_F(TextureGLDeviceTest, MultisampleTexturesAreAllocated)
{
    TextureProperties properties;
    properties.type = 3;
    properties.width = 8;
    properties.height = 8;
    properties.samples = 4;
    for (const uint8_t immutable : {uint8_t{0}, uint8_t{1}})
    {
        properties.immutable = immutable;
        TextureGL texture(properties);
        glBindTexture(GL_TEXTURE_2D_MULTISAMPLE, texture.getId());
        GLint samples = 0;
        glGetTexLevelParameteriv(GL_TEXTURE_2D_MULTISAMPLE, 0, GL_TEXTURE_SAMPLES, &samples);
        EXPECT_GE(samples, 1);
        glBindTexture(GL_TEXTURE_2D_MULTISAMPLE, 0);
        texture.destroy();
    }
}

TEST_F(TextureGLDeviceTest, MultisampleArraysRefuseTheFilterParameters)
{
    TextureProperties properties;
    properties.type = 5;
    properties.width = 8;
    properties.height = 8;
    properties.depth = 2;
    properties.samples = 4;
    TextureGL texture(properties);
    EXPECT_EQ(device.takeErrors().size(), 4u);
    glBindTexture(GL_TEXTURE_2D_MULTISAMPLE_ARRAY, texture.getId());
    GLint depth = 0;
    glGetTexLevelParameteriv(GL_TEXTURE_2D_MULTISAMPLE_ARRAY, 0, GL_TEXTURE_DEPTH, &depth);
    EXPECT_EQ(depth, 2);
    glBindTexture(GL_TEXTURE_2D_MULTISAMPLE_ARRAY, 0);
    texture.destroy();
}

TEST_F(TextureGLDeviceTest, ABufferTextureRefusesEveryParameterAndHasNoStorage)
{
    TextureProperties properties;
    properties.type = 9;
    TextureGL texture(properties);
    // Four filter and wrap parameters, swizzle, base level and maximum level.
    EXPECT_EQ(device.takeErrors().size(), 7u);
    texture.destroy();
}

TEST_F(TextureGLDeviceTest, BindSwitchesTheFixedFunctionTarget)
{
    TextureGL texture(propertiesOf(s_cases[2]));
    texture.bind(1, true);
    EXPECT_EQ(integer(GL_TEXTURE_BINDING_2D), static_cast<GLint>(texture.getId()));
    EXPECT_TRUE(glIsEnabled(GL_TEXTURE_2D));
    texture.bind(1, false);
    EXPECT_EQ(integer(GL_TEXTURE_BINDING_2D), 0);
    EXPECT_FALSE(glIsEnabled(GL_TEXTURE_2D));
    EXPECT_EQ(integer(GL_ACTIVE_TEXTURE), GL_TEXTURE1);
    texture.destroy();
}

TEST_F(TextureGLCoreDeviceTest, BindRaisesNoErrorInACoreProfile)
{
    TextureGL texture(propertiesOf(s_cases[2]));
    texture.bind(1, true);
    texture.bind(1, false);
    texture.destroy();
    EXPECT_EQ(device.takeErrors(), Texts{});
}

TEST_F(TextureGLDeviceTest, CompressedBlocksAreKept)
{
    const auto blocks = pattern(2 * 16 + 16);
    TextureProperties properties;
    properties.width = 8;
    properties.height = 4;
    properties.compressed = 1;
    properties.internalFormat = 78;
    properties.maxLevel = 1;
    properties.data = {blocks.data(), blocks.data() + 32};
    properties.sizes = {32, 16};
    TextureGL texture(properties);
    glBindTexture(GL_TEXTURE_2D, texture.getId());
    std::vector<uint8_t> stored(32);
    glGetCompressedTexImage(GL_TEXTURE_2D, 0, stored.data());
    EXPECT_EQ(stored, std::vector<uint8_t>(blocks.begin(), blocks.begin() + 32));
    stored.resize(16);
    glGetCompressedTexImage(GL_TEXTURE_2D, 1, stored.data());
    EXPECT_EQ(stored, std::vector<uint8_t>(blocks.begin() + 32, blocks.end()));
    glBindTexture(GL_TEXTURE_2D, 0);
    texture.destroy();
}

TEST_F(TextureGLDeviceTest, SizesAtAndBeyondTheLimitsLeaveAUsableTexture)
{
    const auto limit = static_cast<uint32_t>(integer(GL_MAX_TEXTURE_SIZE));
    for (const Case& c : s_cases)
    {
        for (const uint32_t size : {0u, 1u, limit, limit + 1, 0x80000000u, 0xFFFFFFFFu})
        {
            for (int dimension = 0; dimension < 3; ++dimension)
            {
                SCOPED_TRACE(std::string(c.name) + ", " + std::to_string(size) + " in " + std::to_string(dimension));
                TextureProperties properties = propertiesOf(c);
                properties.width = dimension == 0 ? size : 1;
                properties.height = dimension == 1 ? size : 1;
                properties.depth = dimension == 2 ? size : 1;
                TextureGL texture(properties);
                texture.generateMipmap();
                if (size == 0)
                {
                    texture.readback();
                }
                texture.resize(properties.depth, properties.width, properties.height);
                texture.update(properties);
                // A box beyond every size is refused before GL reads a byte of it.
                const uint8_t pixel[4] = {};
                TextureUpdateBatchData image;
                image.x = image.y = image.z = image.width = image.height = image.depth = 0xFFFFFFFF;
                image.data = pixel;
                texture.updateImages({image});
                device.takeErrors();
                const auto pixels = pattern(c.images * c.bytes);
                properties = propertiesOf(c);
                for (size_t i = 0; i < c.images; ++i)
                {
                    properties.data.push_back(pixels.data() + i * c.bytes);
                }
                texture.update(properties);
                EXPECT_EQ(readBack(texture), pixels);
                EXPECT_EQ(device.takeErrors(), Texts{});
                texture.destroy();
            }
        }
    }
}

} // namespace renderengine
