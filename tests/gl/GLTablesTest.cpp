#include "GLRecordingFixture.h"

#include "gl/GLTables.h"
#include "gl/StateGL.h"
#include "gl/TextureGL.h"

// Each row of the tables, seen in the call that carries it. Names are without their prefix.

namespace renderengine
{

namespace
{

const Texts s_blendFactors{"ZERO",
                           "ONE",
                           "SRC_COLOR",
                           "ONE_MINUS_SRC_COLOR",
                           "DST_COLOR",
                           "ONE_MINUS_DST_COLOR",
                           "SRC_ALPHA",
                           "ONE_MINUS_SRC_ALPHA",
                           "DST_ALPHA",
                           "ONE_MINUS_DST_ALPHA",
                           "CONSTANT_COLOR",
                           "ONE_MINUS_CONSTANT_COLOR",
                           "CONSTANT_ALPHA",
                           "ONE_MINUS_CONSTANT_ALPHA",
                           "SRC_ALPHA_SATURATE",
                           "SRC1_COLOR",
                           "ONE_MINUS_SRC1_COLOR",
                           "SRC1_ALPHA",
                           "ONE_MINUS_SRC1_ALPHA"};

const Texts s_blendEquations{"FUNC_ADD", "FUNC_SUBTRACT", "FUNC_REVERSE_SUBTRACT", "MIN", "MAX"};

const Texts s_comparisons{"NEVER", "LESS", "LEQUAL", "GREATER", "GEQUAL", "EQUAL", "NOTEQUAL", "ALWAYS"};

const Texts s_stencilOperations{"KEEP", "ZERO", "REPLACE", "INCR", "INCR_WRAP", "DECR", "DECR_WRAP", "INVERT"};

const Texts s_logicOperations{
    "NOOP",        "CLEAR",        "SET", "COPY", "COPY_INVERTED", "INVERT",     "AND",         "NAND",
    "AND_REVERSE", "AND_INVERTED", "OR",  "NOR",  "XOR",           "OR_REVERSE", "OR_INVERTED", "EQUIV"};

const Texts s_textureGenerationModes{"OBJECT_LINEAR", "EYE_LINEAR", "SPHERE_MAP", "NORMAL_MAP", "REFLECTION_MAP"};

const Texts s_pixelFormats{"DEPTH_COMPONENT",
                           "STENCIL_INDEX",
                           "DEPTH_STENCIL",
                           "RED",
                           "GREEN",
                           "BLUE",
                           "RG",
                           "RGB",
                           "RGBA",
                           "BGR",
                           "BGRA",
                           "RED_INTEGER",
                           "GREEN_INTEGER",
                           "BLUE_INTEGER",
                           "RG_INTEGER",
                           "RGB_INTEGER",
                           "RGBA_INTEGER",
                           "BGR_INTEGER",
                           "BGRA_INTEGER"};

const Texts s_internalFormats{"R8",
                              "R8_SNORM",
                              "R16",
                              "R16_SNORM",
                              "RG8",
                              "RG8_SNORM",
                              "RG16",
                              "RG16_SNORM",
                              "R3_G3_B2",
                              "RGB4",
                              "RGB5",
                              "RGB565",
                              "RGB8",
                              "RGB8_SNORM",
                              "RGB10",
                              "RGB12",
                              "RGB16",
                              "RGB16_SNORM",
                              "RGBA2",
                              "RGBA4",
                              "RGB5_A1",
                              "RGBA8",
                              "RGBA8_SNORM",
                              "RGB10_A2",
                              "RGB10_A2UI",
                              "RGBA12",
                              "RGBA16",
                              "RGBA16_SNORM",
                              "SRGB8",
                              "SRGB8_ALPHA8",
                              "R16F",
                              "RG16F",
                              "RGB16F",
                              "RGBA16F",
                              "R32F",
                              "RG32F",
                              "RGB32F",
                              "RGBA32F",
                              "R11F_G11F_B10F",
                              "RGB9_E5",
                              "R8I",
                              "R8UI",
                              "R16I",
                              "R16UI",
                              "R32I",
                              "R32UI",
                              "RG8I",
                              "RG8UI",
                              "RG16I",
                              "RG16UI",
                              "RG32I",
                              "RG32UI",
                              "RGB8I",
                              "RGB8UI",
                              "RGB16I",
                              "RGB16UI",
                              "RGB32I",
                              "RGB32UI",
                              "RGBA8I",
                              "RGBA8UI",
                              "RGBA16I",
                              "RGBA16UI",
                              "RGBA32I",
                              "RGBA32UI",
                              "COMPRESSED_RED_RGTC1",
                              "COMPRESSED_SIGNED_RED_RGTC1",
                              "COMPRESSED_RG_RGTC2",
                              "COMPRESSED_SIGNED_RG_RGTC2",
                              "COMPRESSED_RGBA_BPTC_UNORM",
                              "COMPRESSED_SRGB_ALPHA_BPTC_UNORM",
                              "COMPRESSED_RGB_BPTC_SIGNED_FLOAT",
                              "COMPRESSED_RGB_BPTC_UNSIGNED_FLOAT",
                              "COMPRESSED_RGB_S3TC_DXT1_EXT",
                              "COMPRESSED_SRGB_S3TC_DXT1_EXT",
                              "COMPRESSED_RGBA_S3TC_DXT1_EXT",
                              "COMPRESSED_SRGB_ALPHA_S3TC_DXT1_EXT",
                              "COMPRESSED_RGBA_S3TC_DXT3_EXT",
                              "COMPRESSED_SRGB_ALPHA_S3TC_DXT3_EXT",
                              "COMPRESSED_RGBA_S3TC_DXT5_EXT",
                              "COMPRESSED_SRGB_ALPHA_S3TC_DXT5_EXT",
                              "DEPTH_COMPONENT16",
                              "DEPTH_COMPONENT24",
                              "DEPTH_COMPONENT32",
                              "DEPTH_COMPONENT32F",
                              "DEPTH24_STENCIL8",
                              "DEPTH32F_STENCIL8",
                              "STENCIL_INDEX8"};

const Texts s_swizzles{"RED", "BLUE", "GREEN", "ALPHA", "ZERO", "ONE"};

const Texts s_pixelTypes{"UNSIGNED_BYTE", "UNSIGNED_SHORT", "UNSIGNED_INT",  "UNSIGNED_BYTE", "BYTE",  "SHORT",
                         "INT",           "UNSIGNED_BYTE",  "UNSIGNED_BYTE", "UNSIGNED_BYTE", "FLOAT", "DOUBLE"};

class GLTablesTest : public GLRecordingTest
{
protected:
    /// The only call of an apply that begins with the prefix.
    template <typename Record> std::string call(const Record& record, const std::string& prefix)
    {
        gl.clear();
        state.applyState(record);
        const Texts calls = gl.callsMatching(prefix);
        return calls.size() == 1 ? calls[0] : std::to_string(calls.size()) + " calls";
    }

    std::string textureCall(const TextureProperties& properties, const std::string& prefix)
    {
        gl.clear();
        const TextureGL texture(properties);
        const Texts calls = gl.callsMatching(prefix);
        return calls.size() == 1 ? calls[0] : std::to_string(calls.size()) + " calls";
    }

    StateGL state{nullptr};
};

} // namespace

TEST_F(GLTablesTest, BlendFactors)
{
    ASSERT_EQ(s_blendFactors.size(), gltables::blendFactors.size());
    for (unsigned i = 0; i < s_blendFactors.size(); ++i)
    {
        SCOPED_TRACE(i);
        ColorOutputProperties output;
        output.targets[0].blendEnable = 1;
        output.targets[0].srcColor = i & 31u;
        output.targets[0].dstColor = i & 31u;
        output.targets[0].srcAlpha = i & 31u;
        output.targets[0].dstAlpha = i & 31u;
        const std::string name = "GL_" + s_blendFactors[i];
        EXPECT_EQ(call(output, "glBlendFuncSeparatei"),
                  "glBlendFuncSeparatei(0, " + name + ", " + name + ", " + name + ", " + name + ")");
    }
}

TEST_F(GLTablesTest, BlendEquations)
{
    ASSERT_EQ(s_blendEquations.size(), gltables::blendEquations.size());
    for (unsigned i = 0; i < s_blendEquations.size(); ++i)
    {
        SCOPED_TRACE(i);
        ColorOutputProperties output;
        output.targets[0].blendEnable = 1;
        output.targets[0].colorOp = i & 7u;
        output.targets[0].alphaOp = i & 7u;
        const std::string name = "GL_" + s_blendEquations[i];
        EXPECT_EQ(call(output, "glBlendEquationSeparatei"), "glBlendEquationSeparatei(0, " + name + ", " + name + ")");
    }
}

TEST_F(GLTablesTest, Comparisons)
{
    ASSERT_EQ(s_comparisons.size(), gltables::comparisons.size());
    for (uint32_t i = 0; i < s_comparisons.size(); ++i)
    {
        SCOPED_TRACE(i);
        DepthStencilProperties depthStencil;
        depthStencil.depthFunc = i;
        EXPECT_EQ(call(depthStencil, "glDepthFunc"), "glDepthFunc(GL_" + s_comparisons[i] + ")");
        StencilProperties stencil;
        stencil.func = i;
        gl.clear();
        state.applyState(stencil, GL_BACK);
        EXPECT_EQ(gl.calls()[0], "glStencilFuncSeparate(GL_BACK, GL_" + s_comparisons[i] + ", 0, 4294967295)");
    }
}

TEST_F(GLTablesTest, StencilOperations)
{
    ASSERT_EQ(s_stencilOperations.size(), gltables::stencilOperations.size());
    for (uint32_t i = 0; i < s_stencilOperations.size(); ++i)
    {
        SCOPED_TRACE(i);
        StencilProperties stencil;
        stencil.stencilFail = i;
        stencil.depthFail = i;
        stencil.depthPass = i;
        gl.clear();
        state.applyState(stencil, GL_FRONT);
        const std::string name = "GL_" + s_stencilOperations[i];
        EXPECT_EQ(gl.calls()[1], "glStencilOpSeparate(GL_FRONT, " + name + ", " + name + ", " + name + ")");
    }
}

TEST_F(GLTablesTest, LogicOperations)
{
    ASSERT_EQ(s_logicOperations.size(), gltables::logicOperations.size());
    for (unsigned i = 0; i < s_logicOperations.size(); ++i)
    {
        SCOPED_TRACE(i);
        ColorOutputProperties output;
        output.logicOpEnable = 1;
        output.logicOp = i & 15u;
        EXPECT_EQ(call(output, "glLogicOp"), "glLogicOp(GL_" + s_logicOperations[i] + ")");
    }
}

TEST_F(GLTablesTest, TextureGenerationModes)
{
    ASSERT_EQ(s_textureGenerationModes.size(), gltables::textureGenerationModes.size());
    for (uint32_t i = 0; i < s_textureGenerationModes.size(); ++i)
    {
        SCOPED_TRACE(i);
        TexGenProperties texGen;
        texGen.units[4].mode = i;
        texGen.units[4].coordinateMask = 4;
        EXPECT_EQ(call(texGen, "glTexGeni("),
                  "glTexGeni(GL_R, GL_TEXTURE_GEN_MODE, GL_" + s_textureGenerationModes[i] + ")");
        EXPECT_EQ(gl.countOf("glTexGenfv"), i < 2 ? 1u : 0u);
    }
}

TEST_F(GLTablesTest, PixelFormats)
{
    ASSERT_EQ(s_pixelFormats.size(), gltables::pixelFormats.size());
    for (uint32_t i = 0; i < s_pixelFormats.size(); ++i)
    {
        SCOPED_TRACE(i);
        TextureProperties properties;
        properties.format = i;
        EXPECT_EQ(textureCall(properties, "glTexImage2D"), "glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 1, 1, 0, GL_" +
                                                               s_pixelFormats[i] + ", GL_UNSIGNED_BYTE, null)");
    }
}

TEST_F(GLTablesTest, InternalFormats)
{
    ASSERT_EQ(s_internalFormats.size(), gltables::internalFormats.size());
    for (uint32_t i = 0; i < s_internalFormats.size(); ++i)
    {
        SCOPED_TRACE(i);
        TextureProperties properties;
        properties.internalFormat = i;
        properties.immutable = 1;
        EXPECT_EQ(textureCall(properties, "glTexStorage2D"),
                  "glTexStorage2D(GL_TEXTURE_2D, 1, GL_" + s_internalFormats[i] + ", 1, 1)");
    }
}

TEST_F(GLTablesTest, Swizzles)
{
    ASSERT_EQ(s_swizzles.size(), gltables::swizzles.size());
    for (uint32_t i = 0; i < s_swizzles.size(); ++i)
    {
        SCOPED_TRACE(i);
        TextureProperties properties;
        properties.swizzle[3] = i;
        EXPECT_EQ(textureCall(properties, "glTexParameteriv"),
                  "glTexParameteriv(GL_TEXTURE_2D, GL_TEXTURE_SWIZZLE_RGBA, {GL_RED, GL_GREEN, GL_BLUE, GL_" +
                      s_swizzles[i] + "})");
    }
}

TEST_F(GLTablesTest, PixelTypes)
{
    ASSERT_EQ(s_pixelTypes.size(), gltables::dataTypes.size());
    for (uint32_t i = 0; i < s_pixelTypes.size(); ++i)
    {
        SCOPED_TRACE(i);
        TextureProperties properties;
        properties.dataType = static_cast<SbDataType::Type>(i);
        EXPECT_EQ(textureCall(properties, "glTexImage2D"),
                  "glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 1, 1, 0, GL_RGBA, GL_" + s_pixelTypes[i] + ", null)");
    }
}

TEST_F(GLTablesTest, AnIndexBehindTheLastRowIsReported)
{
    EXPECT_DEBUG_DEATH(
        {
            EXPECT_EQ(gltables::comparisons.find(8), nullptr);
            EXPECT_EQ(log.take(),
                      Texts{"error: [RendererGL] The comparison index 8 is outside its table of 8 entries."});
        },
        "index outside its table");
}

} // namespace renderengine
