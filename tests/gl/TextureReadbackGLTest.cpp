#include "GLRecordingFixture.h"
#include "TextureRecords.h"

#include "gl/TextureGL.h"

#include <array>

namespace renderengine
{

namespace
{

constexpr std::array<GLenum, 3> c_dimensions{GL_TEXTURE_WIDTH, GL_TEXTURE_HEIGHT, GL_TEXTURE_DEPTH};

} // namespace

using TextureReadbackGLTest = GLRecordingTest;

TEST_F(TextureReadbackGLTest, ReadbackSavesBindingAndAlignment)
{
    gl.answer(GL_PACK_ALIGNMENT, 4);
    TextureGL texture(textureOf(Plane, 4, 2));
    gl.clear();
    texture.readback();
    EXPECT_EQ(gl.takeCalls(),
              (Texts{"glGetIntegerv(GL_TEXTURE_BINDING_2D, <pointer>)", "glGetIntegerv(GL_PACK_ALIGNMENT, <pointer>)",
                     "glBindTexture(GL_TEXTURE_2D, 1)", "glPixelStorei(GL_PACK_ALIGNMENT, 1)",
                     "glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, <pointer>)",
                     "glBindTexture(GL_TEXTURE_2D, 0)", "glPixelStorei(GL_PACK_ALIGNMENT, 4)"}));
    EXPECT_EQ(texture.getReadbackSize(), 32u);
}

TEST_F(TextureReadbackGLTest, ReadbackOfACubeMapReadsEachFace)
{
    TextureGL texture(textureOf(Cube, 2, 2));
    gl.clear();
    texture.readback();
    EXPECT_EQ(gl.callsMatching("glGetTexImage"),
              (Texts{"glGetTexImage(GL_TEXTURE_CUBE_MAP_POSITIVE_X, 0, GL_RGBA, GL_UNSIGNED_BYTE, <pointer>)",
                     "glGetTexImage(GL_TEXTURE_CUBE_MAP_NEGATIVE_X, 0, GL_RGBA, GL_UNSIGNED_BYTE, <pointer>)",
                     "glGetTexImage(GL_TEXTURE_CUBE_MAP_POSITIVE_Y, 0, GL_RGBA, GL_UNSIGNED_BYTE, <pointer>)",
                     "glGetTexImage(GL_TEXTURE_CUBE_MAP_NEGATIVE_Y, 0, GL_RGBA, GL_UNSIGNED_BYTE, <pointer>)",
                     "glGetTexImage(GL_TEXTURE_CUBE_MAP_POSITIVE_Z, 0, GL_RGBA, GL_UNSIGNED_BYTE, <pointer>)",
                     "glGetTexImage(GL_TEXTURE_CUBE_MAP_NEGATIVE_Z, 0, GL_RGBA, GL_UNSIGNED_BYTE, <pointer>)"}));
}

TEST_F(TextureReadbackGLTest, TheReadbackBlockHoldsTheStorageThatARefusedUpdateLeft)
{
    TextureProperties properties = textureOf(Plane, 8, 8);
    properties.immutable = 1;
    TextureGL texture(properties);
    properties.width = 2;
    properties.height = 2;
    texture.update(properties);
    gl.answer(GL_TEXTURE_WIDTH, 8);
    gl.answer(GL_TEXTURE_HEIGHT, 8);
    gl.answer(GL_TEXTURE_DEPTH, 1);
    texture.readback();
    EXPECT_EQ(texture.getDataSize(), 16u);
    EXPECT_EQ(texture.getReadbackSize(), 256u);
    texture.destroy();
}

TEST_F(TextureReadbackGLTest, TheStoredSizeIsAskedForOnceAfterATextureShrank)
{
    TextureGL texture(textureOf(Cube, 8, 8));
    texture.resize(2, 2, 1);
    gl.answer(GL_TEXTURE_WIDTH, 2);
    gl.answer(GL_TEXTURE_HEIGHT, 2);
    gl.answer(GL_TEXTURE_DEPTH, 1);
    gl.clear();
    texture.readback();
    EXPECT_EQ(texture.getReadbackSize(), 96u);
    const Texts calls = gl.takeCalls();
    EXPECT_EQ(Texts(calls.begin(), calls.begin() + 6),
              (Texts{"glGetIntegerv(GL_TEXTURE_BINDING_CUBE_MAP, <pointer>)", "glBindTexture(GL_TEXTURE_CUBE_MAP, 1)",
                     "glGetTexLevelParameteriv(GL_TEXTURE_CUBE_MAP_POSITIVE_X, 0, GL_TEXTURE_WIDTH, <pointer>)",
                     "glGetTexLevelParameteriv(GL_TEXTURE_CUBE_MAP_POSITIVE_X, 0, GL_TEXTURE_HEIGHT, <pointer>)",
                     "glGetTexLevelParameteriv(GL_TEXTURE_CUBE_MAP_POSITIVE_X, 0, GL_TEXTURE_DEPTH, <pointer>)",
                     "glBindTexture(GL_TEXTURE_CUBE_MAP, 0)"}));
    texture.resize(2, 2, 1);
    gl.clear();
    texture.readback();
    EXPECT_EQ(gl.countOf("glGetTexLevelParameteriv"), 0u);
    texture.destroy();
}

TEST_F(TextureReadbackGLTest, AnUploadWithASizeOfZeroIsReadBackAsItIsStored)
{
    TextureProperties properties = textureOf(Plane, 1000, 0);
    const std::vector<uint8_t> pixels(4000);
    properties.data = {pixels.data()};
    TextureGL texture(properties);
    EXPECT_EQ(gl.callsMatching("glTexImage2D").size(), 1u);
    gl.answer(GL_TEXTURE_WIDTH, 1000);
    gl.answer(GL_TEXTURE_HEIGHT, 1);
    gl.answer(GL_TEXTURE_DEPTH, 1);
    texture.readback();
    EXPECT_EQ(texture.getReadbackSize(), 4000u);
    texture.destroy();
}

TEST_F(TextureReadbackGLTest, StorageWithoutDataTakesASizeOfZeroAsItIs)
{
    gl.clear();
    TextureGL texture(textureOf(Plane, 1000, 0));
    EXPECT_EQ(gl.callsMatching("glTexImage2D"),
              Texts{"glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 1000, 0, 0, GL_RGBA, GL_UNSIGNED_BYTE, null)"});
    texture.destroy();
}

TEST_F(TextureReadbackGLTest, AnImpossibleSizeThatGLRefusedTakesNoMemory)
{
    TextureGL texture(textureOf(Plane, 0x80000000u, 0x80000000u));
    for (const GLenum dimension : c_dimensions)
    {
        gl.answer(dimension, 0);
    }
    texture.readback();
    EXPECT_EQ(texture.getReadbackSize(), 1u);
    texture.destroy();
}

TEST_F(TextureReadbackGLTest, ASizeThatGLRefusedDoesNotOutgrowTheNextBlock)
{
    TextureGL texture(textureOf(Plane, 0xFFFFFFFF, 0xFFFFFFFF));
    texture.update(textureOf(Plane, 4, 4));
    gl.answer(GL_TEXTURE_WIDTH, 4);
    gl.answer(GL_TEXTURE_HEIGHT, 4);
    gl.answer(GL_TEXTURE_DEPTH, 1);
    texture.readback();
    EXPECT_EQ(texture.getReadbackSize(), 64u);
    texture.destroy();
}

TEST_F(TextureReadbackGLTest, ReadbackOfASizeThatNoMemoryHoldsIsSkipped)
{
    TextureGL texture(textureOf(Volume, 0x80000000u, 0x80000000u, 0x80000000u));
    for (const GLenum dimension : c_dimensions)
    {
        gl.answer(dimension, 0x7FFFFFFF);
    }
    texture.readback();
    EXPECT_EQ(texture.getReadbackData(), nullptr);
    EXPECT_EQ(gl.countOf("glGetTexImage"), 0u);
    EXPECT_EQ(log.take(),
              (Texts{"error: [TextureGL] There is no memory for 18446744073709551615 bytes of read-back data."}));
}

TEST_F(TextureReadbackGLTest, TheReadbackBlockLivesUntilUpdateResizeOrDestroy)
{
    TextureGL texture(textureOf(Plane, 4, 2));
    EXPECT_EQ(texture.getReadbackData(), nullptr);
    texture.readback();
    const std::byte* first = texture.getReadbackData();
    EXPECT_NE(first, nullptr);
    texture.readback();
    EXPECT_EQ(texture.getReadbackData(), first);
    texture.update(textureOf(Plane, 4, 2));
    EXPECT_EQ(texture.getReadbackData(), nullptr);
    texture.readback();
    texture.update(textureOf(Line, 4));
    EXPECT_EQ(texture.getReadbackData(), nullptr);
    EXPECT_EQ(texture.getReadbackSize(), 0u);
    texture.readback();
    texture.destroy();
    EXPECT_EQ(texture.getReadbackData(), nullptr);
}

TEST_F(TextureReadbackGLTest, TheReadbackBlockHoldsWhatGLWritesForPaddedPixels)
{
    TextureProperties properties = textureOf(Plane, 10, 10);
    properties.format = 2;
    properties.internalFormat = 85;
    TextureGL texture(properties);
    texture.readback();
    EXPECT_EQ(texture.getReadbackSize(), 800u);
}

} // namespace renderengine
