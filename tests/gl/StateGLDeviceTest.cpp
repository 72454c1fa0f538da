#include "GLDeviceTestSupport.h"

#include "gl/StateGL.h"

#include <array>
#include <memory>

namespace renderengine
{

namespace
{

/// Every field away from its default, as far as all values may be away at once.
std::shared_ptr<GfxStateProperties> unusualState()
{
    auto state = std::make_shared<GfxStateProperties>();
    state->rasterizer.polygonOffsetFactor = 1.5f;
    state->rasterizer.polygonOffsetUnits = 2;
    state->rasterizer.polygonOffsetEnable = 5;
    state->rasterizer.pointSize = 3;
    state->rasterizer.sizeScale = 2;
    state->rasterizer.lineWidth = 0.5f;
    state->rasterizer.lineStipplePattern = 0x00FF;
    state->rasterizer.fillMode = 1;
    state->rasterizer.cullMode = 1;
    state->rasterizer.frontFace = -1;
    state->rasterizer.multisample = false;
    state->rasterizer.pointSmooth = true;
    state->rasterizer.lineSmooth = true;
    ColorTargetProperties& target = state->colorOutput.targets[0];
    target.blendEnable = 1;
    target.srcColor = 6;
    target.dstColor = 7;
    target.alphaOp = 4;
    target.writeBlue = false;
    state->colorOutput.targets[7].blendEnable = 1;
    state->colorOutput.blendColor = SbVec3f(0.25f, 0.5f, 0.75f);
    state->colorOutput.blendAlpha = 1;
    state->colorOutput.logicOpEnable = 1;
    state->colorOutput.logicOp = 12;
    state->depthStencil.depthTest = false;
    state->depthStencil.depthWrite = false;
    state->depthStencil.depthFunc = 2;
    state->depthStencil.stencilTest = true;
    state->depthStencil.front.func = 5;
    state->depthStencil.front.reference = 3;
    state->depthStencil.front.depthPass = 4;
    state->depthStencil.back.writeMask = 0x0F;
    state->scissor.enable = true;
    state->scissor.rectangle = SbVec4us(1, 2, 3, 4);
    return state;
}

class StateGLDeviceTest : public ResourceDeviceTest
{
protected:
    using ResourceDeviceTest::ResourceDeviceTest;

    static GLint indexed(GLenum name, GLuint index)
    {
        GLint value = 0;
        glGetIntegeri_v(name, index, &value);
        return value;
    }

    static GLfloat real(GLenum name)
    {
        GLfloat value = 0;
        glGetFloatv(name, &value);
        return value;
    }

    static void expectRasterizer()
    {
        EXPECT_EQ(integer(GL_POLYGON_MODE), GL_LINE);
        EXPECT_TRUE(glIsEnabled(GL_CULL_FACE));
        EXPECT_EQ(integer(GL_CULL_FACE_MODE), GL_FRONT);
        EXPECT_EQ(integer(GL_FRONT_FACE), GL_CW);
        EXPECT_TRUE(glIsEnabled(GL_LINE_SMOOTH));
        EXPECT_FLOAT_EQ(real(GL_LINE_WIDTH), 1);
        EXPECT_FLOAT_EQ(real(GL_POINT_SIZE), 6);
        EXPECT_TRUE(glIsEnabled(GL_POLYGON_OFFSET_FILL));
        EXPECT_FALSE(glIsEnabled(GL_POLYGON_OFFSET_LINE));
        EXPECT_TRUE(glIsEnabled(GL_POLYGON_OFFSET_POINT));
        EXPECT_FLOAT_EQ(real(GL_POLYGON_OFFSET_FACTOR), 1.5f);
        EXPECT_FLOAT_EQ(real(GL_POLYGON_OFFSET_UNITS), 2);
        EXPECT_FALSE(glIsEnabled(GL_MULTISAMPLE));
    }

    static void expectColorOutput()
    {
        EXPECT_TRUE(glIsEnabledi(GL_BLEND, 0));
        EXPECT_FALSE(glIsEnabledi(GL_BLEND, 1));
        EXPECT_TRUE(glIsEnabledi(GL_BLEND, 7));
        EXPECT_EQ(indexed(GL_BLEND_SRC_RGB, 0), GL_SRC_ALPHA);
        EXPECT_EQ(indexed(GL_BLEND_DST_RGB, 0), GL_ONE_MINUS_SRC_ALPHA);
        EXPECT_EQ(indexed(GL_BLEND_EQUATION_ALPHA, 0), GL_MAX);
        std::array<GLboolean, 4> mask{};
        glGetBooleani_v(GL_COLOR_WRITEMASK, 0, mask.data());
        EXPECT_EQ(mask, (std::array<GLboolean, 4>{GL_TRUE, GL_TRUE, GL_FALSE, GL_TRUE}));
        std::array<GLfloat, 4> color{};
        glGetFloatv(GL_BLEND_COLOR, color.data());
        EXPECT_EQ(color, (std::array<GLfloat, 4>{0.25f, 0.5f, 0.75f, 1}));
        EXPECT_TRUE(glIsEnabled(GL_COLOR_LOGIC_OP));
        EXPECT_EQ(integer(GL_LOGIC_OP_MODE), GL_XOR);
    }

    static void expectDepthStencilAndScissor()
    {
        EXPECT_FALSE(glIsEnabled(GL_DEPTH_TEST));
        EXPECT_EQ(integer(GL_DEPTH_WRITEMASK), GL_FALSE);
        EXPECT_EQ(integer(GL_DEPTH_FUNC), GL_LEQUAL);
        EXPECT_TRUE(glIsEnabled(GL_STENCIL_TEST));
        EXPECT_EQ(integer(GL_STENCIL_FUNC), GL_EQUAL);
        EXPECT_EQ(integer(GL_STENCIL_REF), 3);
        EXPECT_EQ(integer(GL_STENCIL_PASS_DEPTH_PASS), GL_INCR_WRAP);
        EXPECT_EQ(integer(GL_STENCIL_BACK_FUNC), GL_ALWAYS);
        EXPECT_EQ(integer(GL_STENCIL_BACK_WRITEMASK) & 0xFF, 0x0F);
        EXPECT_TRUE(glIsEnabled(GL_SCISSOR_TEST));
        std::array<GLint, 4> box{};
        glGetIntegerv(GL_SCISSOR_BOX, box.data());
        EXPECT_EQ(box, (std::array<GLint, 4>{1, 2, 3, 4}));
    }

    static void expectUnusualState()
    {
        expectRasterizer();
        expectColorOutput();
        expectDepthStencilAndScissor();
    }
};

class StateGLCoreDeviceTest : public StateGLDeviceTest
{
protected:
    StateGLCoreDeviceTest() : StateGLDeviceTest(GLProfile::Core) {}
};

} // namespace

TEST_F(StateGLDeviceTest, ApplyPutsTheWholeRecordIntoEffect)
{
    StateGL(unusualState()).apply();
    expectUnusualState();
    EXPECT_TRUE(glIsEnabled(GL_POINT_SMOOTH));
    EXPECT_TRUE(glIsEnabled(GL_LINE_STIPPLE));
    EXPECT_EQ(integer(GL_LINE_STIPPLE_PATTERN), 0x00FF);
    EXPECT_EQ(integer(GL_LINE_STIPPLE_REPEAT), 1);
    StateGL(nullptr).apply();
    EXPECT_FALSE(glIsEnabled(GL_SCISSOR_TEST));
    EXPECT_FALSE(glIsEnabled(GL_LINE_STIPPLE));
    EXPECT_TRUE(glIsEnabled(GL_DEPTH_TEST));
}

TEST_F(StateGLDeviceTest, DifferentialApplyReachesTheSameState)
{
    StateGL(nullptr).apply();
    StateGL(unusualState()).applyDifferential(GfxStateProperties{});
    expectUnusualState();
}

TEST_F(StateGLCoreDeviceTest, ApplyRaisesNoErrorInACoreProfile)
{
    StateGL(nullptr).apply();
    StateGL(unusualState()).apply();
    expectUnusualState();
    EXPECT_EQ(device.takeErrors(), Texts{});
}

TEST_F(StateGLDeviceTest, EveryTableRowIsTakenByTheDriver)
{
    for (unsigned i = 0; i < 19; ++i)
    {
        ColorOutputProperties output;
        output.targets[0].blendEnable = 1;
        output.targets[0].srcColor = i & 31u;
        output.targets[0].dstAlpha = i & 31u;
        output.targets[0].colorOp = static_cast<uint8_t>(i % 5) & 7u;
        output.logicOpEnable = 1;
        output.logicOp = i & 15u;
        StateGL(nullptr).applyState(output);
        DepthStencilProperties depthStencil;
        depthStencil.stencilTest = true;
        depthStencil.depthFunc = i & 7u;
        depthStencil.front.func = i & 7u;
        depthStencil.back.stencilFail = i & 7u;
        StateGL(nullptr).applyState(depthStencil);
        EXPECT_EQ(device.takeErrors(), Texts{}) << i;
    }
}

TEST_F(StateGLDeviceTest, FixedFunctionGroupsArriveInACompatibilityProfile)
{
    const StateGL state(nullptr);
    TransformPart1Properties part1;
    TransformPart2Properties part2;
    part1.model = SbMatrix::scaling(SbVec3f(2, 2, 2));
    part2.view = SbMatrix::translation(SbVec3f(1, 0, 0));
    part1.textureMatrices[7] = SbMatrix::scaling(SbVec3f(3, 3, 3));
    state.applyState(part1, part2);
    std::array<GLfloat, 16> matrix{};
    glGetFloatv(GL_MODELVIEW_MATRIX, matrix.data());
    EXPECT_FLOAT_EQ(matrix[0], 2);
    EXPECT_FLOAT_EQ(matrix[12], 1);
    EXPECT_EQ(integer(GL_MATRIX_MODE), GL_MODELVIEW);
    EXPECT_EQ(integer(GL_ACTIVE_TEXTURE), GL_TEXTURE0);

    LightingFlags flags;
    flags.lighting = true;
    flags.twoSided = true;
    MaterialProperties material;
    material.shininess.front = 0.5f;
    LightProperties lights;
    lights.enabledMask = 0x81;
    lights.position[7] = SbVec4f(1, 2, 3, 1);
    state.applyState(material, flags, lights);
    EXPECT_TRUE(glIsEnabled(GL_LIGHTING));
    EXPECT_TRUE(glIsEnabled(GL_LIGHT7));
    EXPECT_FALSE(glIsEnabled(GL_LIGHT1));
    std::array<GLfloat, 4> position{};
    glGetLightfv(GL_LIGHT7, GL_POSITION, position.data());
    // In eye coordinates: the model-view matrix in effect has no part in it.
    EXPECT_EQ(position, (std::array<GLfloat, 4>{1, 2, 3, 1}));
    GLfloat shininess = 0;
    glGetMaterialfv(GL_FRONT, GL_SHININESS, &shininess);
    EXPECT_FLOAT_EQ(shininess, 64);
    state.applyState(material, flags);

    TexGenProperties texGen;
    texGen.units[3].coordinateMask = 0xF;
    texGen.units[3].mode = 0;
    state.applyState(texGen);
    TexEnvProperties texEnv;
    texEnv.unitMask = 0x8;
    texEnv.modes[3] = GL_DECAL;
    state.applyState(texEnv);
    EXPECT_EQ(integer(GL_ACTIVE_TEXTURE), GL_TEXTURE0);
    glActiveTexture(GL_TEXTURE3);
    EXPECT_TRUE(glIsEnabled(GL_TEXTURE_GEN_Q));
    GLint mode = 0;
    glGetTexEnviv(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, &mode);
    EXPECT_EQ(mode, GL_DECAL);
    glActiveTexture(GL_TEXTURE0);
}

} // namespace renderengine
