#include "gl/TextureGL.h"

#include "GLRecordingFixture.h"
#include "TextureRecords.h"

#include "gl/TextureFormatGL.h"

#include <kavelor/SoPreferences.h>

#include <array>
#include <utility>

namespace renderengine
{

namespace
{

/// The profile is kept for the life of the process, so each case needs a process of its own.
class TextureGLTest : public GLRecordingTest
{
protected:
    /// Blocks at the addresses 10, 20 and so on.
    static std::vector<const void*> blocks(size_t count)
    {
        std::vector<const void*> result;
        for (size_t i = 1; i <= count; ++i)
        {
            result.push_back(block(10 * i));
        }
        return result;
    }

    /// The calls of an update that begin with the prefix.
    Texts callsOfUpdate(const TextureProperties& properties, const std::string& prefix)
    {
        TextureGL texture;
        gl.clear();
        texture.update(properties);
        return gl.callsMatching(prefix);
    }
};

} // namespace

TEST_F(TextureGLTest, UpdateRunsItsStepsInOrderAndRestoresTheBinding)
{
    glBindTexture(GL_TEXTURE_2D, 77);
    gl.clear();
    TextureProperties properties = textureOf(Plane, 4, 2);
    properties.baseLevel = 1;
    properties.maxLevel = 3;
    properties.swizzle[0] = 1;
    const TextureGL texture(properties);
    EXPECT_EQ(gl.takeCalls(),
              (Texts{"glIsTexture(0)", "glGenTextures(1, -> 1)", "glGetIntegerv(GL_TEXTURE_BINDING_2D, <pointer>)",
                     "glBindTexture(GL_TEXTURE_2D, 1)", "glPixelStorei(GL_UNPACK_ALIGNMENT, 1)",
                     "glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST)",
                     "glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST)",
                     "glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE)",
                     "glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE)",
                     "glTexParameteriv(GL_TEXTURE_2D, GL_TEXTURE_SWIZZLE_RGBA, {GL_BLUE, GL_GREEN, GL_BLUE, GL_ALPHA})",
                     "glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_BASE_LEVEL, 1)",
                     "glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAX_LEVEL, 3)",
                     "glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 4, 2, 0, GL_RGBA, GL_UNSIGNED_BYTE, null)",
                     "glBindTexture(GL_TEXTURE_2D, 77)"}));
    EXPECT_EQ(texture.getId(), 1u);
    EXPECT_EQ(texture.getWidth(), 4u);
    EXPECT_EQ(texture.getHeight(), 2u);
}

TEST_F(TextureGLTest, TheIdentitySwizzleIsRedGreenBlueAlpha)
{
    EXPECT_EQ(callsOfUpdate(textureOf(Plane, 1), "glTexParameteriv"),
              Texts{"glTexParameteriv(GL_TEXTURE_2D, GL_TEXTURE_SWIZZLE_RGBA, {GL_RED, GL_GREEN, GL_BLUE, GL_ALPHA})"});
}

TEST_F(TextureGLTest, AMultisampleTextureGetsNoFilterOrWrapButItsArrayDoes)
{
    EXPECT_EQ(callsOfUpdate(textureOf(PlaneMultisample, 4, 4), "glTexParameteri("),
              (Texts{"glTexParameteri(GL_TEXTURE_2D_MULTISAMPLE, GL_TEXTURE_BASE_LEVEL, 0)",
                     "glTexParameteri(GL_TEXTURE_2D_MULTISAMPLE, GL_TEXTURE_MAX_LEVEL, 0)"}));
    EXPECT_EQ(callsOfUpdate(textureOf(PlaneMultisampleArray, 4, 4, 2), "glTexParameteri(").size(), 6u);
}

TEST_F(TextureGLTest, ASecondUpdateOfTheSameTargetKeepsTheName)
{
    TextureGL texture(textureOf(Plane, 4, 4));
    texture.setDirty(false);
    gl.clear();
    texture.update(textureOf(Plane, 8, 8));
    EXPECT_EQ(gl.countOf("glGenTextures"), 0u);
    EXPECT_EQ(texture.getId(), 1u);
    EXPECT_EQ(texture.getWidth(), 8u);
    EXPECT_FALSE(texture.isDirty());
}

TEST_F(TextureGLTest, AChangeOfTargetReplacesTheNameAndSetsDependentsDirty)
{
    TextureGL texture(textureOf(Plane, 4, 4));
    BaseResourceGL target;
    target.addDependency(texture);
    gl.clear();
    texture.update(textureOf(Volume, 4, 4, 4));
    const Texts calls = gl.takeCalls();
    EXPECT_EQ(Texts(calls.begin(), calls.begin() + 5),
              (Texts{"glIsTexture(1)", "glDeleteTextures(1, {1})", "glGenTextures(1, -> 2)",
                     "glGetIntegerv(GL_TEXTURE_BINDING_3D, <pointer>)", "glBindTexture(GL_TEXTURE_3D, 2)"}));
    EXPECT_TRUE(target.isDirty());
}

TEST_F(TextureGLTest, EachTypeHasItsTargetAndBindingQuery)
{
    const std::array<const char*, 10> names{
        "1D",       "1D_ARRAY",       "2D",    "2D_MULTISAMPLE", "2D_ARRAY", "2D_MULTISAMPLE_ARRAY", "3D",
        "CUBE_MAP", "CUBE_MAP_ARRAY", "BUFFER"};
    for (uint32_t type = 0; type < names.size(); ++type)
    {
        SCOPED_TRACE(names[type]);
        TextureGL texture(textureOf(type, 2, 2));
        gl.clear();
        texture.generateMipmap();
        const std::string name = names[type];
        EXPECT_EQ(gl.takeCalls(),
                  (Texts{"glEnable(GL_TEXTURE_CUBE_MAP_SEAMLESS)",
                         "glGetIntegerv(GL_TEXTURE_BINDING_" + name + ", <pointer>)",
                         "glBindTexture(GL_TEXTURE_" + name + ", " + std::to_string(type + 1) + ")",
                         "glGenerateMipmap(GL_TEXTURE_" + name + ")", "glBindTexture(GL_TEXTURE_" + name + ", 0)"}));
    }
}

TEST_F(TextureGLTest, IndicesOutsideTheTablesAreReportedAndChangeNothing)
{
    TextureGL texture;
    TextureProperties properties = textureOf(10, 1);
    properties.internalFormat = 87;
    properties.format = 19;
    properties.swizzle[2] = 6;
    EXPECT_DEBUG_DEATH(
        {
            texture.update(properties);
            EXPECT_EQ(gl.takeCalls(), Texts{});
            EXPECT_EQ(texture.getTarget(), 0u);
            EXPECT_EQ(log.take(),
                      (Texts{"error: [RendererGL] The texture type index 10 is outside its table of 10 entries.",
                             "error: [RendererGL] The internal format index 87 is outside its table of 87 entries.",
                             "error: [RendererGL] The pixel format index 19 is outside its table of 19 entries.",
                             "error: [RendererGL] The swizzle index 6 is outside its table of 6 entries."}));
        },
        "index outside its table");
}

TEST_F(TextureGLTest, CombinedDepthStencilFormatsForceTheirType)
{
    TextureProperties properties = textureOf(Plane, 2, 2);
    properties.format = 2;
    properties.internalFormat = 84;
    EXPECT_EQ(callsOfUpdate(properties, "glTexImage2D"),
              Texts{"glTexImage2D(GL_TEXTURE_2D, 0, GL_DEPTH24_STENCIL8, 2, 2, 0, GL_DEPTH_STENCIL, "
                    "GL_UNSIGNED_INT_24_8, null)"});
    properties.internalFormat = 85;
    EXPECT_EQ(callsOfUpdate(properties, "glTexImage2D"),
              Texts{"glTexImage2D(GL_TEXTURE_2D, 0, GL_DEPTH32F_STENCIL8, 2, 2, 0, GL_DEPTH_STENCIL, "
                    "GL_FLOAT_32_UNSIGNED_INT_24_8_REV, null)"});
}

TEST_F(TextureGLTest, ResizeAllocatesAndStoresTheSizes)
{
    TextureGL texture(textureOf(Plane, 4, 4));
    texture.readback();
    gl.clear();
    texture.resize(16, 8, 1);
    EXPECT_EQ(gl.takeCalls(),
              (Texts{"glGetIntegerv(GL_TEXTURE_BINDING_2D, <pointer>)", "glBindTexture(GL_TEXTURE_2D, 1)",
                     "glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 16, 8, 0, GL_RGBA, GL_UNSIGNED_BYTE, null)",
                     "glBindTexture(GL_TEXTURE_2D, 0)"}));
    EXPECT_EQ(texture.getWidth(), 16u);
    EXPECT_EQ(texture.getHeight(), 8u);
    EXPECT_EQ(texture.getReadbackData(), nullptr);
}

TEST_F(TextureGLTest, ResizeOfAnImmutableTextureReportsAndChangesNothing)
{
    TextureProperties properties = textureOf(Plane, 4, 4);
    properties.immutable = 1;
    TextureGL texture(properties);
    texture.readback();
    gl.clear();
    texture.resize(16, 8, 1);
    EXPECT_EQ(log.take(),
              Texts{"error: [TextureGL] Immutable textures dimensions and format can not be modified after creation."});
    EXPECT_EQ(gl.takeCalls(), Texts{});
    EXPECT_EQ(texture.getWidth(), 4u);
    EXPECT_NE(texture.getReadbackData(), nullptr);
}

TEST_F(TextureGLTest, DataSizeCountsPixelsByTarget)
{
    const std::pair<uint32_t, uint64_t> pixels[] = {{Line, 4},        {LineArray, 12},
                                                    {Plane, 12},      {PlaneMultisample, 12},
                                                    {PlaneArray, 24}, {PlaneMultisampleArray, 12},
                                                    {Volume, 24},     {Cube, 72},
                                                    {CubeArray, 144}, {Buffer, 12}};
    for (const auto& [type, count] : pixels)
    {
        SCOPED_TRACE(type);
        EXPECT_EQ(TextureGL(textureOf(type, 4, 3, 2)).getDataSize(), count * 4);
    }
}

TEST_F(TextureGLTest, DataSizeCountsComponentsByFormat)
{
    const std::array<uint64_t, 19> components{1, 1, 2, 1, 1, 1, 2, 3, 4, 3, 4, 1, 1, 1, 2, 3, 4, 3, 4};
    for (uint32_t format = 0; format < components.size(); ++format)
    {
        SCOPED_TRACE(format);
        TextureProperties properties = textureOf(Plane, 1, 1);
        properties.format = format;
        EXPECT_EQ(TextureGL(properties).getDataSize(), components[format]);
    }
}

TEST_F(TextureGLTest, DataSizeCountsBytesByType)
{
    const std::array<uint64_t, 12> bytes{1, 2, 4, 1, 1, 2, 4, 1, 1, 1, 4, 8};
    for (uint32_t type = 0; type < bytes.size(); ++type)
    {
        SCOPED_TRACE(type);
        TextureProperties properties = textureOf(Plane, 1, 1);
        properties.format = 3;
        properties.dataType = static_cast<SbDataType::Type>(type);
        EXPECT_EQ(TextureGL(properties).getDataSize(), bytes[type]);
    }
}

TEST_F(TextureGLTest, PackedTypesCountAsWholePixels)
{
    TextureProperties properties = textureOf(Plane, 10, 10);
    properties.format = 2;
    properties.internalFormat = 84;
    EXPECT_EQ(TextureGL(properties).getDataSize(), 400u);
    properties.internalFormat = 85;
    EXPECT_EQ(TextureGL(properties).getDataSize(), 500u);
    EXPECT_EQ(pixelTypeSize(GL_UNSIGNED_SHORT_5_6_5).bytes, 2u);
    EXPECT_TRUE(pixelTypeSize(GL_UNSIGNED_SHORT_5_6_5).isWholePixel);
    EXPECT_EQ(pixelTypeSize(GL_UNSIGNED_INT_10F_11F_11F_REV).bytes, 4u);
    EXPECT_TRUE(pixelTypeSize(GL_UNSIGNED_INT_10F_11F_11F_REV).isWholePixel);
}

TEST_F(TextureGLTest, LayersOfCubesBeyondEverySizeDoNotWrapAround)
{
    EXPECT_EQ(cubeLayers(0), 0);
    EXPECT_EQ(cubeLayers(2), 12);
    EXPECT_EQ(cubeLayers(0x15555555u), 0x7FFFFFFE);
    EXPECT_EQ(cubeLayers(0x15555556u), -1);
    EXPECT_EQ(cubeLayers(0x80000000u), -1) << "six times this is 0 in 32 bits";
    EXPECT_EQ(cubeLayers(0xFFFFFFFFu), -1);
}

TEST_F(TextureGLTest, BindSwitchesFixedFunctionTargets)
{
    TextureGL texture(textureOf(Plane, 1, 1));
    gl.clear();
    texture.bind(3, true);
    texture.bind(3, false);
    EXPECT_EQ(gl.takeCalls(),
              (Texts{"glActiveTexture(GL_TEXTURE3)", "glBindTexture(GL_TEXTURE_2D, 1)", "glEnable(GL_TEXTURE_2D)",
                     "glActiveTexture(GL_TEXTURE3)", "glBindTexture(GL_TEXTURE_2D, 0)", "glDisable(GL_TEXTURE_2D)"}));
}

TEST_F(TextureGLTest, BindSwitchesFourTargetsOnly)
{
    for (uint32_t type = 0; type < 10; ++type)
    {
        SCOPED_TRACE(type);
        TextureGL texture(textureOf(type, 1, 1));
        gl.clear();
        texture.bind(0, true);
        const bool switches = type == Line || type == Plane || type == Volume || type == Cube;
        EXPECT_EQ(gl.countOf("glEnable("), switches ? 1u : 0u);
    }
}

TEST_F(TextureGLTest, CoreProfileBindNeitherEnablesNorDisables)
{
    SoPreferences::setBool("KVR_RENDERENGINE_USE_GLCORE", true);
    TextureGL texture(textureOf(Plane, 1, 1));
    gl.clear();
    texture.bind(0, true);
    texture.bind(0, false);
    EXPECT_EQ(gl.countOf("glEnable("), 0u);
    EXPECT_EQ(gl.countOf("glDisable("), 0u);
}

TEST_F(TextureGLTest, DestroyDeletesTheNameOnce)
{
    TextureGL texture(textureOf(Plane, 1, 1));
    gl.clear();
    texture.destroy();
    texture.destroy();
    EXPECT_EQ(gl.takeCalls(), (Texts{"glIsTexture(1)", "glDeleteTextures(1, {1})", "glIsTexture(0)"}));
    EXPECT_EQ(texture.getId(), 0u);
}

TEST_F(TextureGLTest, ATextureThatGoesWithoutDestroyMakesNoCall)
{
    {
        TextureGL texture(textureOf(Plane, 1, 1));
        gl.clear();
    }
    EXPECT_EQ(gl.takeCalls(), Texts{});
}

TEST_F(TextureGLTest, UpdateImagesRunsEachRecordWithItsUnpackState)
{
    TextureGL texture(textureOf(Plane, 8, 8));
    TextureUpdateBatchData image;
    image.x = 1;
    image.y = 2;
    image.width = 3;
    image.height = 4;
    image.depth = 1;
    image.level = 1;
    image.format = 10;
    image.dataType = SbDataType::FLOAT;
    image.rowLength = 16;
    image.imageHeight = 5;
    image.data = block(100);
    TextureUpdateBatchData second = image;
    second.rowLength = 0;
    second.data = block(200);
    gl.clear();
    texture.updateImages({image, second});
    EXPECT_EQ(gl.takeCalls(),
              (Texts{"glGetIntegerv(GL_TEXTURE_BINDING_2D, <pointer>)", "glBindTexture(GL_TEXTURE_2D, 1)",
                     "glPixelStorei(GL_UNPACK_ROW_LENGTH, 16)", "glPixelStorei(GL_UNPACK_IMAGE_HEIGHT, 5)",
                     "glTexSubImage2D(GL_TEXTURE_2D, 1, 1, 2, 3, 4, GL_BGRA, GL_FLOAT, 100)",
                     "glBindTexture(GL_TEXTURE_2D, 0)", "glGetIntegerv(GL_TEXTURE_BINDING_2D, <pointer>)",
                     "glBindTexture(GL_TEXTURE_2D, 1)", "glPixelStorei(GL_UNPACK_ROW_LENGTH, 0)",
                     "glPixelStorei(GL_UNPACK_IMAGE_HEIGHT, 5)",
                     "glTexSubImage2D(GL_TEXTURE_2D, 1, 1, 2, 3, 4, GL_BGRA, GL_FLOAT, 200)",
                     "glBindTexture(GL_TEXTURE_2D, 0)"}));
}

TEST_F(TextureGLTest, UpdateImagesUsesTheCallOfTheTarget)
{
    const std::pair<uint32_t, Texts> calls[] = {
        {Line, {"glTexSubImage1D(GL_TEXTURE_1D, 0, 1, 4, GL_RGBA, GL_UNSIGNED_BYTE, 100)"}},
        {LineArray, {"glTexSubImage2D(GL_TEXTURE_1D_ARRAY, 0, 1, 2, 4, 5, GL_RGBA, GL_UNSIGNED_BYTE, 100)"}},
        {Plane, {"glTexSubImage2D(GL_TEXTURE_2D, 0, 1, 2, 4, 5, GL_RGBA, GL_UNSIGNED_BYTE, 100)"}},
        {PlaneMultisample, {}},
        {PlaneArray, {"glTexSubImage3D(GL_TEXTURE_2D_ARRAY, 0, 1, 2, 3, 4, 5, 6, GL_RGBA, GL_UNSIGNED_BYTE, 100)"}},
        {PlaneMultisampleArray, {}},
        {Volume, {"glTexSubImage3D(GL_TEXTURE_3D, 0, 1, 2, 3, 4, 5, 6, GL_RGBA, GL_UNSIGNED_BYTE, 100)"}},
        {Cube, {"glTexSubImage2D(GL_TEXTURE_CUBE_MAP_NEGATIVE_Z, 0, 1, 2, 4, 5, GL_RGBA, GL_UNSIGNED_BYTE, 100)"}},
        {CubeArray,
         {"glTexSubImage3D(GL_TEXTURE_CUBE_MAP_ARRAY, 0, 1, 2, 3, 4, 5, 36, GL_RGBA, GL_UNSIGNED_BYTE, 100)"}},
        {Buffer, {}}};
    for (const auto& [type, expected] : calls)
    {
        SCOPED_TRACE(type);
        TextureGL texture(textureOf(type, 8, 8, 8));
        TextureUpdateBatchData image;
        image.x = 1;
        image.y = 2;
        image.z = 3;
        image.width = 4;
        image.height = 5;
        image.depth = 6;
        image.face = 5;
        image.data = block(100);
        gl.clear();
        texture.updateImages({image});
        EXPECT_EQ(gl.callsMatching("glTexSubImage"), expected);
    }
}

TEST_F(TextureGLTest, PartialUpdatesOfCombinedFormatsUseTheirPackedType)
{
    const struct
    {
        uint32_t internalFormat;
        uint32_t format;
        SbDataType::Type dataType;
        const char* sent;
    } rows[] = {
        {84, 2, SbDataType::UNSIGNED_INT, "GL_DEPTH_STENCIL, GL_UNSIGNED_INT_24_8"},
        {84, 0, SbDataType::UNSIGNED_INT, "GL_DEPTH_COMPONENT, GL_UNSIGNED_INT"},
        // Eight bytes a pixel do not fit, and GL refuses the plain type.
        {84, 2, SbDataType::FLOAT, "GL_DEPTH_STENCIL, GL_FLOAT"},
        {85, 2, SbDataType::FLOAT, "GL_DEPTH_STENCIL, GL_FLOAT_32_UNSIGNED_INT_24_8_REV"},
        {85, 2, SbDataType::UNSIGNED_INT, "GL_DEPTH_STENCIL, GL_UNSIGNED_INT"},
        {21, 2, SbDataType::UNSIGNED_INT, "GL_DEPTH_STENCIL, GL_UNSIGNED_INT"},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.sent);
        TextureProperties properties = textureOf(Plane, 8, 8);
        properties.internalFormat = row.internalFormat;
        properties.format = row.internalFormat == 21 ? 8 : 2;
        TextureGL texture(properties);
        TextureUpdateBatchData image;
        image.width = 2;
        image.height = 2;
        image.format = row.format;
        image.dataType = row.dataType;
        image.data = block(100);
        gl.clear();
        texture.updateImages({image});
        EXPECT_EQ(gl.callsMatching("glTexSubImage2D"),
                  Texts{"glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, 2, 2, " + std::string(row.sent) + ", 100)"});
    }
}

TEST_F(TextureGLTest, AFaceAboveFiveIsClamped)
{
    TextureGL texture(textureOf(Cube, 2, 2));
    TextureUpdateBatchData image;
    image.width = 2;
    image.height = 2;
    image.face = 6;
    image.data = block(100);
    texture.updateImages({image});
    EXPECT_EQ(gl.callsMatching("glTexSubImage2D"),
              Texts{"glTexSubImage2D(GL_TEXTURE_CUBE_MAP_NEGATIVE_Z, 0, 0, 0, 2, 2, GL_RGBA, GL_UNSIGNED_BYTE, 100)"});
}

TEST_F(TextureGLTest, AMultisampleUpdateSendsThePixelFormatAsTheFormat)
{
    TextureProperties properties = textureOf(PlaneMultisample, 8, 8);
    properties.samples = 4;
    TextureGL texture(properties);
    TextureUpdateBatchData image;
    image.width = 2;
    image.height = 3;
    gl.clear();
    texture.updateImages({image});
    EXPECT_EQ(gl.callsMatching("glTexImage2DMultisample"),
              Texts{"glTexImage2DMultisample(GL_TEXTURE_2D_MULTISAMPLE, 4, GL_RGBA, 2, 3, GL_FALSE)"});
}

TEST_F(TextureGLTest, AnImageWithoutPixelsIsNotSent)
{
    TextureGL texture(textureOf(Plane, 8, 8));
    texture.updateImages({TextureUpdateBatchData{}});
    EXPECT_EQ(gl.countOf("glTexSubImage"), 0u);
}

TEST_F(TextureGLTest, UploadZeroesTheRowLengthThatAPartialUpdateLeft)
{
    TextureProperties properties = textureOf(Plane, 2, 2);
    TextureGL texture(properties);
    TextureUpdateBatchData image;
    image.rowLength = 16;
    image.imageHeight = 3;
    image.data = block(100);
    texture.updateImages({image});
    gl.clear();
    properties.data = blocks(1);
    texture.update(properties);
    EXPECT_EQ(gl.callsMatching("glPixelStorei"),
              (Texts{"glPixelStorei(GL_UNPACK_ALIGNMENT, 1)", "glPixelStorei(GL_UNPACK_ROW_LENGTH, 0)",
                     "glPixelStorei(GL_UNPACK_IMAGE_HEIGHT, 0)"}));
}

} // namespace renderengine
