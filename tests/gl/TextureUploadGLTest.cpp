#include "gl/TextureGL.h"

#include "GLRecordingFixture.h"

namespace renderengine
{

namespace
{

enum class Way
{
    Mutable,
    Immutable,
    Compressed
};

struct Upload
{
    uint32_t type;
    size_t imageCount;
    Texts calls;
};

class TextureUploadGLTest : public GLRecordingTest
{
protected:
    static TextureProperties textureOf(uint32_t type, Way way)
    {
        TextureProperties properties;
        properties.type = type;
        properties.width = 8;
        properties.height = 4;
        properties.depth = 2;
        properties.immutable = way == Way::Immutable;
        properties.compressed = way == Way::Compressed;
        properties.samples = 4;
        if (way == Way::Compressed)
        {
            properties.internalFormat = 78;
        }
        return properties;
    }

    /// The storage and image calls of a new texture, with blocks at the addresses 10, 20 and so on.
    Texts calls(TextureProperties properties, size_t imageCount)
    {
        for (size_t i = 1; i <= imageCount; ++i)
        {
            properties.data.push_back(block(10 * i));
        }
        gl.clear();
        const TextureGL texture(properties);
        Texts result;
        for (const std::string& call : gl.calls())
        {
            if (call.find("Image") != std::string::npos || call.find("Storage") != std::string::npos)
            {
                result.push_back(call);
            }
        }
        return result;
    }

    void expectUploads(Way way, const std::vector<Upload>& uploads)
    {
        for (const Upload& upload : uploads)
        {
            SCOPED_TRACE(upload.type);
            TextureProperties properties = textureOf(upload.type, way);
            if (way == Way::Compressed)
            {
                properties.sizes = {64, 32};
            }
            EXPECT_EQ(calls(properties, upload.imageCount), upload.calls);
        }
    }

    /// One call a face, with the block of the face.
    static Texts faces(const std::string& head, const std::string& middle, size_t firstBlock, const std::string& tail)
    {
        Texts result;
        size_t number = firstBlock;
        for (const char* face : {"POSITIVE_X", "NEGATIVE_X", "POSITIVE_Y", "NEGATIVE_Y", "POSITIVE_Z", "NEGATIVE_Z"})
        {
            result.push_back(head + "(GL_TEXTURE_CUBE_MAP_" + face + middle +
                             (firstBlock == 0 ? std::string("null") : std::to_string(10 * number)) + tail);
            ++number;
        }
        return result;
    }
};

Texts operator+(Texts first, const Texts& second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

} // namespace

TEST_F(TextureUploadGLTest, MutableUploadsSpecifyEachLevel)
{
    const std::string pixels = ", 0, GL_RGBA, GL_UNSIGNED_BYTE, ";
    expectUploads(Way::Mutable,
                  {{0,
                    2,
                    {"glTexImage1D(GL_TEXTURE_1D, 0, GL_RGBA8, 8" + pixels + "10)",
                     "glTexImage1D(GL_TEXTURE_1D, 1, GL_RGBA8, 4" + pixels + "20)"}},
                   {1,
                    2,
                    {"glTexImage2D(GL_TEXTURE_1D_ARRAY, 0, GL_RGBA8, 8, 4" + pixels + "10)",
                     "glTexImage2D(GL_TEXTURE_1D_ARRAY, 1, GL_RGBA8, 4, 4" + pixels + "20)"}},
                   {2,
                    2,
                    {"glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 8, 4" + pixels + "10)",
                     "glTexImage2D(GL_TEXTURE_2D, 1, GL_RGBA8, 4, 2" + pixels + "20)"}},
                   {3, 1, {"glTexImage2DMultisample(GL_TEXTURE_2D_MULTISAMPLE, 4, GL_RGBA8, 8, 4, GL_FALSE)"}},
                   {4,
                    2,
                    {"glTexImage3D(GL_TEXTURE_2D_ARRAY, 0, GL_RGBA8, 8, 4, 2" + pixels + "10)",
                     "glTexImage3D(GL_TEXTURE_2D_ARRAY, 1, GL_RGBA8, 4, 2, 2" + pixels + "20)"}},
                   {5, 1, {"glTexImage3DMultisample(GL_TEXTURE_2D_MULTISAMPLE_ARRAY, 4, GL_RGBA8, 8, 4, 2, GL_FALSE)"}},
                   {6,
                    2,
                    {"glTexImage3D(GL_TEXTURE_3D, 0, GL_RGBA8, 8, 4, 2" + pixels + "10)",
                     "glTexImage3D(GL_TEXTURE_3D, 1, GL_RGBA8, 4, 2, 1" + pixels + "20)"}},
                   {7, 12,
                    faces("glTexImage2D", ", 0, GL_RGBA8, 8, 4" + pixels, 1, ")") +
                        faces("glTexImage2D", ", 1, GL_RGBA8, 4, 2" + pixels, 7, ")")},
                   {8,
                    2,
                    {"glTexImage3D(GL_TEXTURE_CUBE_MAP_ARRAY, 0, GL_RGBA8, 8, 4, 12" + pixels + "10)",
                     "glTexImage3D(GL_TEXTURE_CUBE_MAP_ARRAY, 1, GL_RGBA8, 4, 2, 12" + pixels + "20)"}},
                   {9, 1, {}}});
}

TEST_F(TextureUploadGLTest, ImmutableUploadsAllocateAllLevelsAndFillThem)
{
    const std::string pixels = ", GL_RGBA, GL_UNSIGNED_BYTE, ";
    expectUploads(
        Way::Immutable,
        {{0,
          2,
          {"glTexStorage1D(GL_TEXTURE_1D, 2, GL_RGBA8, 8)", "glTexSubImage1D(GL_TEXTURE_1D, 0, 0, 8" + pixels + "10)",
           "glTexSubImage1D(GL_TEXTURE_1D, 1, 0, 4" + pixels + "20)"}},
         {1,
          1,
          {"glTexStorage2D(GL_TEXTURE_1D_ARRAY, 1, GL_RGBA8, 8, 4)",
           "glTexSubImage2D(GL_TEXTURE_1D_ARRAY, 0, 0, 0, 8, 4" + pixels + "10)"}},
         {2,
          2,
          {"glTexStorage2D(GL_TEXTURE_2D, 2, GL_RGBA8, 8, 4)",
           "glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, 8, 4" + pixels + "10)",
           "glTexSubImage2D(GL_TEXTURE_2D, 1, 0, 0, 4, 2" + pixels + "20)"}},
         {3, 1, {"glTexStorage2DMultisample(GL_TEXTURE_2D_MULTISAMPLE, 4, GL_RGBA8, 8, 4, GL_FALSE)"}},
         {4,
          2,
          {"glTexStorage3D(GL_TEXTURE_2D_ARRAY, 2, GL_RGBA8, 8, 4, 2)",
           "glTexSubImage3D(GL_TEXTURE_2D_ARRAY, 0, 0, 0, 0, 8, 4, 2" + pixels + "10)",
           "glTexSubImage3D(GL_TEXTURE_2D_ARRAY, 1, 0, 0, 0, 4, 2, 2" + pixels + "20)"}},
         {5, 1, {"glTexStorage3DMultisample(GL_TEXTURE_2D_MULTISAMPLE_ARRAY, 4, GL_RGBA8, 8, 4, 2, GL_FALSE)"}},
         {6,
          2,
          {"glTexStorage3D(GL_TEXTURE_3D, 2, GL_RGBA8, 8, 4, 2)",
           "glTexSubImage3D(GL_TEXTURE_3D, 0, 0, 0, 0, 8, 4, 2" + pixels + "10)",
           "glTexSubImage3D(GL_TEXTURE_3D, 1, 0, 0, 0, 4, 2, 1" + pixels + "20)"}},
         {7, 6,
          Texts{"glTexStorage2D(GL_TEXTURE_CUBE_MAP, 1, GL_RGBA8, 8, 4)"} +
              faces("glTexSubImage2D", ", 0, 0, 0, 8, 4" + pixels, 1, ")")},
         {8,
          1,
          {"glTexStorage3D(GL_TEXTURE_CUBE_MAP_ARRAY, 1, GL_RGBA8, 8, 4, 12)",
           "glTexSubImage3D(GL_TEXTURE_CUBE_MAP_ARRAY, 0, 0, 0, 0, 8, 4, 12" + pixels + "10)"}},
         {9, 1, {}}});
}

TEST_F(TextureUploadGLTest, CompressedUploadsSpecifyEachLevelWithItsSize)
{
    const std::string format = "GL_COMPRESSED_RGBA_S3TC_DXT5_EXT";
    expectUploads(
        Way::Compressed,
        {{0,
          2,
          {"glCompressedTexImage1D(GL_TEXTURE_1D, 0, " + format + ", 8, 0, 64, 10)",
           "glCompressedTexImage1D(GL_TEXTURE_1D, 1, " + format + ", 4, 0, 32, 20)"}},
         {1, 1, {"glCompressedTexImage2D(GL_TEXTURE_1D_ARRAY, 0, " + format + ", 8, 4, 0, 64, 10)"}},
         // The third level has no size.
         {2,
          3,
          {"glCompressedTexImage2D(GL_TEXTURE_2D, 0, " + format + ", 8, 4, 0, 64, 10)",
           "glCompressedTexImage2D(GL_TEXTURE_2D, 1, " + format + ", 4, 2, 0, 32, 20)",
           "glCompressedTexImage2D(GL_TEXTURE_2D, 2, " + format + ", 2, 1, 0, 0, 30)"}},
         {3, 1, {}},
         {4, 1, {"glCompressedTexImage3D(GL_TEXTURE_2D_ARRAY, 0, " + format + ", 8, 4, 2, 0, 64, 10)"}},
         {5, 1, {}},
         {6,
          2,
          {"glCompressedTexImage3D(GL_TEXTURE_3D, 0, " + format + ", 8, 4, 2, 0, 64, 10)",
           "glCompressedTexImage3D(GL_TEXTURE_3D, 1, " + format + ", 4, 2, 1, 0, 32, 20)"}},
         {7, 6, faces("glCompressedTexImage2D", ", 0, " + format + ", 8, 4, 0, 64, ", 1, ")")},
         {8, 1, {"glCompressedTexImage3D(GL_TEXTURE_CUBE_MAP_ARRAY, 0, " + format + ", 8, 4, 12, 0, 64, 10)"}},
         {9, 1, {}}});
}

TEST_F(TextureUploadGLTest, WithoutImagesMutableTexturesGetOneEmptyLevel)
{
    const std::string pixels = ", 0, GL_RGBA, GL_UNSIGNED_BYTE, ";
    expectUploads(Way::Mutable,
                  {{0, 0, {"glTexImage1D(GL_TEXTURE_1D, 0, GL_RGBA8, 8" + pixels + "null)"}},
                   {1, 0, {"glTexImage2D(GL_TEXTURE_1D_ARRAY, 0, GL_RGBA8, 8, 4" + pixels + "null)"}},
                   {2, 0, {"glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 8, 4" + pixels + "null)"}},
                   {3, 0, {"glTexImage2DMultisample(GL_TEXTURE_2D_MULTISAMPLE, 4, GL_RGBA8, 8, 4, GL_FALSE)"}},
                   {4, 0, {"glTexImage3D(GL_TEXTURE_2D_ARRAY, 0, GL_RGBA8, 8, 4, 2" + pixels + "null)"}},
                   {5, 0, {"glTexImage3DMultisample(GL_TEXTURE_2D_MULTISAMPLE_ARRAY, 4, GL_RGBA8, 8, 4, 2, GL_FALSE)"}},
                   {6, 0, {"glTexImage3D(GL_TEXTURE_3D, 0, GL_RGBA8, 8, 4, 2" + pixels + "null)"}},
                   {7, 0, faces("glTexImage2D", ", 0, GL_RGBA8, 8, 4" + pixels, 0, ")")},
                   {8, 0, {"glTexImage3D(GL_TEXTURE_CUBE_MAP_ARRAY, 0, GL_RGBA8, 8, 4, 12" + pixels + "null)"}},
                   {9, 0, {}}});
}

TEST_F(TextureUploadGLTest, WithoutImagesImmutableTexturesGetOneLevelOfStorage)
{
    expectUploads(
        Way::Immutable,
        {{0, 0, {"glTexStorage1D(GL_TEXTURE_1D, 1, GL_RGBA8, 8)"}},
         {1, 0, {"glTexStorage2D(GL_TEXTURE_1D_ARRAY, 1, GL_RGBA8, 8, 4)"}},
         {2, 0, {"glTexStorage2D(GL_TEXTURE_2D, 1, GL_RGBA8, 8, 4)"}},
         {3, 0, {"glTexStorage2DMultisample(GL_TEXTURE_2D_MULTISAMPLE, 4, GL_RGBA8, 8, 4, GL_FALSE)"}},
         {4, 0, {"glTexStorage3D(GL_TEXTURE_2D_ARRAY, 1, GL_RGBA8, 8, 4, 2)"}},
         {5, 0, {"glTexStorage3DMultisample(GL_TEXTURE_2D_MULTISAMPLE_ARRAY, 4, GL_RGBA8, 8, 4, 2, GL_FALSE)"}},
         {6, 0, {"glTexStorage3D(GL_TEXTURE_3D, 1, GL_RGBA8, 8, 4, 2)"}},
         {7, 0, {"glTexStorage2D(GL_TEXTURE_CUBE_MAP, 1, GL_RGBA8, 8, 4)"}},
         {8, 0, {"glTexStorage3D(GL_TEXTURE_CUBE_MAP_ARRAY, 1, GL_RGBA8, 8, 4, 12)"}},
         {9, 0, {}}});
}

TEST_F(TextureUploadGLTest, LevelsNeverShrinkBelowOnePixel)
{
    TextureProperties properties = textureOf(2, Way::Mutable);
    properties.width = 3;
    properties.height = 1;
    const std::string pixels = ", 0, GL_RGBA, GL_UNSIGNED_BYTE, ";
    EXPECT_EQ(calls(properties, 3), (Texts{"glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 3, 1" + pixels + "10)",
                                           "glTexImage2D(GL_TEXTURE_2D, 1, GL_RGBA8, 1, 1" + pixels + "20)",
                                           "glTexImage2D(GL_TEXTURE_2D, 2, GL_RGBA8, 1, 1" + pixels + "30)"}));
}

TEST_F(TextureUploadGLTest, MoreLevelsThanBitsOfASizeStayAtOnePixel)
{
    const Texts all = calls(textureOf(2, Way::Mutable), 34);
    EXPECT_EQ(all.back(), "glTexImage2D(GL_TEXTURE_2D, 33, GL_RGBA8, 1, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, 340)");
}

TEST_F(TextureUploadGLTest, ACubeMapOfSevenImagesReportsAndStaysEmpty)
{
    for (const Way way : {Way::Mutable, Way::Immutable, Way::Compressed})
    {
        TextureProperties properties = textureOf(7, way);
        properties.sizes = {64};
        EXPECT_EQ(calls(properties, 7), Texts{});
        EXPECT_EQ(log.take(), Texts{"error: [TextureGL] Texture cubemap needs 6 faces for each mipmap levels."});
        EXPECT_EQ(gl.calls().back(), "glBindTexture(GL_TEXTURE_CUBE_MAP, 0)");
    }
}

TEST_F(TextureUploadGLTest, ACompressedTextureWithoutImagesReports)
{
    EXPECT_EQ(calls(textureOf(2, Way::Compressed), 0), Texts{});
    EXPECT_EQ(log.take(),
              Texts{"error: [TextureGL] Creating a compressed texture without providing its data is not allowed."});
}

TEST_F(TextureUploadGLTest, ACompressedTextureWithoutSizesReports)
{
    EXPECT_EQ(calls(textureOf(2, Way::Compressed), 1), Texts{});
    EXPECT_EQ(log.take(), Texts{"error: [TextureGL] Compressed texture must specify a size."});
}

TEST_F(TextureUploadGLTest, ResizeOfACompressedTextureReportsAndKeepsTheSize)
{
    TextureProperties properties = textureOf(2, Way::Compressed);
    properties.data = {block(10)};
    properties.sizes = {64};
    TextureGL texture(properties);
    texture.resize(16, 16, 1);
    EXPECT_EQ(log.take(),
              Texts{"error: [TextureGL] Creating a compressed texture without providing its data is not allowed."});
    EXPECT_EQ(texture.getWidth(), 8u);
}

TEST_F(TextureUploadGLTest, MissingBlocksOfAnImmutableTextureAreSkipped)
{
    TextureProperties properties = textureOf(2, Way::Immutable);
    properties.data = {nullptr, block(20)};
    EXPECT_EQ(calls(properties, 0), (Texts{"glTexStorage2D(GL_TEXTURE_2D, 2, GL_RGBA8, 8, 4)",
                                           "glTexSubImage2D(GL_TEXTURE_2D, 1, 0, 0, 4, 2, GL_RGBA, "
                                           "GL_UNSIGNED_BYTE, 20)"}));
}

TEST_F(TextureUploadGLTest, WithoutStorageEntryPointsImmutableTexturesAreMadeMutable)
{
    GLEWContextStruct table = *glbinding::RecordingGL::table();
    table.majorVersion = 4;
    table.minorVersion = 1;
    table.kvr_common__GLEW_ARB_texture_storage = false;
    table.kvr_common__GLEW_ARB_texture_storage_multisample = false;
    const glbinding::ScopedTable scope(&table);
    EXPECT_EQ(calls(textureOf(2, Way::Immutable), 0),
              Texts{"glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 8, 4, 0, GL_RGBA, GL_UNSIGNED_BYTE, null)"});
    EXPECT_EQ(calls(textureOf(3, Way::Immutable), 0),
              Texts{"glTexImage2DMultisample(GL_TEXTURE_2D_MULTISAMPLE, 4, GL_RGBA8, 8, 4, GL_FALSE)"});
    EXPECT_EQ(calls(textureOf(2, Way::Immutable), 1),
              Texts{"glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 8, 4, 0, GL_RGBA, GL_UNSIGNED_BYTE, 10)"});
}

} // namespace renderengine
