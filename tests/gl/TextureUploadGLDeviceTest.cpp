#include "GLDeviceTestSupport.h"

#include "gl/GLTables.h"
#include "gl/TextureGL.h"

#include <algorithm>
#include <functional>

namespace renderengine
{

namespace
{

constexpr uint32_t s_faces = 6;
constexpr uint32_t s_cube = 7;
constexpr uint32_t s_cubeArray = 8;
constexpr uint32_t s_bptc = 68;
constexpr size_t s_blockBytes = 16;

struct Shape
{
    uint32_t type;
    const char* name;
    uint32_t height;
    uint32_t depth;
    // Images that GL stores of level 0 and of level 1; a level that halves has fewer.
    uint32_t images;
    uint32_t imagesOfLevel1;
};

/// Every target that has levels, 4 pixels wide.
const Shape s_shapes[] = {{0, "1D", 1, 1, 1, 1},
                          {1, "1D array", 3, 1, 1, 1},
                          {2, "2D", 4, 1, 1, 1},
                          {4, "2D array", 4, 3, 3, 3},
                          {6, "3D", 4, 2, 2, 1},
                          {s_cube, "cube map", 4, 1, 6, 6},
                          {s_cubeArray, "cube map array", 4, 2, 12, 12}};

class TextureUploadGLDeviceTest : public ResourceDeviceTest
{
protected:
    static TextureProperties propertiesOf(const Shape& shape)
    {
        TextureProperties properties;
        properties.type = shape.type;
        properties.width = 4;
        properties.height = shape.height;
        properties.depth = shape.depth;
        properties.maxLevel = 1;
        return properties;
    }

    /// Names the blocks of a level: the faces of a cube map one by one, else the whole.
    static void addLevel(TextureProperties& properties, const std::vector<uint8_t>& bytes)
    {
        const size_t count = properties.type == s_cube ? s_faces : 1;
        for (size_t i = 0; i < count; ++i)
        {
            properties.data.push_back(bytes.data() + i * (bytes.size() / count));
        }
    }

    /// The bytes of a level, faces one behind the other.
    static std::vector<uint8_t> levelOf(const TextureGL& texture, GLint level, size_t size, bool compressed)
    {
        std::vector<uint8_t> bytes(size);
        const bool isCube = texture.getTarget() == GL_TEXTURE_CUBE_MAP;
        const uint32_t count = isCube ? s_faces : 1;
        glBindTexture(texture.getTarget(), texture.getId());
        for (uint32_t i = 0; i < count; ++i)
        {
            const GLenum target = isCube ? GL_TEXTURE_CUBE_MAP_POSITIVE_X + i : texture.getTarget();
            uint8_t* block = bytes.data() + i * (size / count);
            if (compressed)
            {
                glGetCompressedTexImage(target, level, block);
            }
            else
            {
                glGetTexImage(target, level, GL_RGBA, GL_UNSIGNED_BYTE, block);
            }
        }
        glBindTexture(texture.getTarget(), 0);
        return bytes;
    }
};

} // namespace

TEST_F(TextureUploadGLDeviceTest, BothLevelsOfEveryTargetKeepTheirPixels)
{
    for (const Shape& shape : s_shapes)
    {
        for (const uint8_t immutable : {uint8_t{0}, uint8_t{1}})
        {
            SCOPED_TRACE(std::string(shape.name) + (immutable ? ", immutable" : ", mutable"));
            // Layers of a line array stay; all other heights halve.
            const uint32_t secondHeight = shape.type == 1 ? shape.height : std::max(1u, shape.height / 2);
            const auto first = pattern(size_t{4} * shape.height * shape.images * 4);
            const auto second = pattern(size_t{2} * secondHeight * shape.imagesOfLevel1 * 4, 2);
            TextureProperties properties = propertiesOf(shape);
            properties.immutable = immutable;
            addLevel(properties, first);
            addLevel(properties, second);
            TextureGL texture(properties);
            EXPECT_EQ(levelOf(texture, 0, first.size(), false), first);
            EXPECT_EQ(levelOf(texture, 1, second.size(), false), second);
            texture.destroy();
        }
    }
}

TEST_F(TextureUploadGLDeviceTest, CompressedBlocksOfEveryTargetThatTakesThemAreKept)
{
    for (const Shape& shape : s_shapes)
    {
        SCOPED_TRACE(shape.name);
        const bool isLine = shape.type < 2;
        const auto first = pattern(s_blockBytes * shape.images);
        const auto second = pattern(s_blockBytes * shape.imagesOfLevel1, 2);
        const auto divisor = static_cast<uint32_t>(shape.type == s_cube ? s_faces : 1);
        TextureProperties properties = propertiesOf(shape);
        properties.compressed = 1;
        properties.internalFormat = s_bptc;
        properties.sizes = {static_cast<uint32_t>(first.size()) / divisor,
                            static_cast<uint32_t>(second.size()) / divisor};
        addLevel(properties, first);
        addLevel(properties, second);
        TextureGL texture(properties);
        if (isLine)
        {
            // Blocks are square, so GL refuses both levels of a line.
            EXPECT_EQ(device.takeErrors().size(), 2u);
        }
        else
        {
            EXPECT_EQ(levelOf(texture, 0, first.size(), true), first);
            EXPECT_EQ(levelOf(texture, 1, second.size(), true), second);
        }
        texture.destroy();
    }
}

TEST_F(TextureUploadGLDeviceTest, EveryOperationPutsTheBindingOfItsTargetBack)
{
    using Operation = std::function<void(TextureGL&, const TextureProperties&)>;
    const std::pair<const char*, Operation> operations[] = {
        {"update", [](TextureGL& texture, const TextureProperties& properties) { texture.update(properties); }},
        {"updateImages",
         [](TextureGL& texture, const TextureProperties&)
         {
             const uint8_t pixels[s_faces * 4] = {};
             TextureUpdateBatchData image;
             image.width = image.height = image.depth = 1;
             image.data = pixels;
             texture.updateImages({image});
         }},
        {"resize", [](TextureGL& texture, const TextureProperties&) { texture.resize(2, 2, 1); }},
        {"generateMipmap", [](TextureGL& texture, const TextureProperties&) { texture.generateMipmap(); }},
        {"readback", [](TextureGL& texture, const TextureProperties&) { texture.readback(); }},
    };
    for (const Shape& shape : s_shapes)
    {
        const GLenum target = *gltables::textureTargets.find(shape.type);
        const GLenum query = *gltables::textureBindingQueries.find(shape.type);
        GLuint bound = 0;
        glGenTextures(1, &bound);
        glBindTexture(target, bound);
        const TextureProperties properties = propertiesOf(shape);
        TextureGL texture(properties);
        EXPECT_EQ(integer(query), static_cast<GLint>(bound)) << shape.name << ", creation";
        for (const auto& [name, operation] : operations)
        {
            operation(texture, properties);
            EXPECT_EQ(integer(query), static_cast<GLint>(bound)) << shape.name << ", " << name;
            EXPECT_EQ(device.takeErrors(), Texts{}) << shape.name << ", " << name;
        }
        texture.destroy();
        glBindTexture(target, 0);
        glDeleteTextures(1, &bound);
    }
}

} // namespace renderengine
