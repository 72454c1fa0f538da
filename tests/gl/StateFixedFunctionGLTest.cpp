#include "gl/StateGL.h"

#include "GLRecordingFixture.h"

#include <kavelor/SoPreferences.h>

namespace renderengine
{

namespace
{

class StateFixedFunctionGLTest : public GLRecordingTest
{
protected:
    StateGL state{nullptr};
};

Texts materialCalls(const std::string& face, const std::string& shininess)
{
    return {"glMaterialfv(" + face + ", GL_AMBIENT, {0.2, 0.2, 0.2, 1})",
            "glMaterialfv(" + face + ", GL_DIFFUSE, {0.8, 0.8, 0.8, 1})",
            "glMaterialfv(" + face + ", GL_SPECULAR, {0, 0, 0, 1})",
            "glMaterialfv(" + face + ", GL_EMISSION, {0, 0, 0, 1})",
            "glMaterialf(" + face + ", GL_SHININESS, " + shininess + ")"};
}

Texts operator+(Texts first, const Texts& second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

} // namespace

TEST_F(StateFixedFunctionGLTest, TransformLoadsProjectionTextureMatricesDownwardsAndModelView)
{
    TransformPart1Properties part1;
    TransformPart2Properties part2;
    part2.projection = SbMatrix::scaling(SbVec3f(2, 3, 4));
    part1.textureMatrices[7] = SbMatrix::scaling(SbVec3f(7, 7, 7));
    part1.model = SbMatrix::scaling(SbVec3f(2, 2, 2));
    part2.view = SbMatrix::translation(SbVec3f(1, 0, 0));
    state.applyState(part1, part2);
    const std::string identity = "glLoadMatrixf({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1})";
    Texts expected{"glMatrixMode(GL_PROJECTION)", "glLoadMatrixf({2, 0, 0, 0, 0, 3, 0, 0, 0, 0, 4, 0, 0, 0, 0, 1})"};
    for (int unit = 7; unit >= 0; --unit)
    {
        expected.push_back("glActiveTexture(GL_TEXTURE" + std::to_string(unit) + ")");
        expected.push_back("glMatrixMode(GL_TEXTURE)");
        expected.push_back(unit == 7 ? "glLoadMatrixf({7, 0, 0, 0, 0, 7, 0, 0, 0, 0, 7, 0, 0, 0, 0, 1})" : identity);
    }
    expected.push_back("glMatrixMode(GL_MODELVIEW)");
    // The model comes first, so the translation of the view is not scaled.
    expected.push_back("glLoadMatrixf({2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0, 1, 0, 0, 1})");
    EXPECT_EQ(gl.takeCalls(), expected);
}

TEST_F(StateFixedFunctionGLTest, MaterialWithoutLightingSetsColourAndTurnsLightingOff)
{
    MaterialProperties material;
    material.setColor = false;
    state.applyState(material, LightingFlags{}, LightProperties{});
    EXPECT_EQ(gl.takeCalls(), (Texts{"glColor4fv({0.8, 0.8, 0.8, 1})", "glDisable(GL_LIGHTING)"}));
}

TEST_F(StateFixedFunctionGLTest, MaterialWithLightingSendsModelLightsAndFrontFace)
{
    LightingFlags flags;
    flags.lighting = true;
    MaterialProperties material;
    material.flatShading = true;
    material.localViewer = 1;
    material.shininess.front = 0.5f;
    material.shininess.back = 0.25f;
    LightProperties lights;
    lights.enabledMask = 1u << 2;
    lights.position[2] = SbVec4f(1, 2, 3, 0);
    lights.spotDirection[2] = SbVec4f(0, 1, 0, 0);
    lights.spotCutoff[2] = 45;
    lights.spotExponent[2] = 8;
    lights.ambient[2] = SbVec4f(0.1f, 0.1f, 0.1f, 1);
    lights.constantAttenuation[2] = 2;
    lights.linearAttenuation[2] = 3;
    lights.quadraticAttenuation[2] = 4;
    state.applyState(material, flags, lights);
    const Texts head{"glColor4fv({0.8, 0.8, 0.8, 1})",
                     "glEnable(GL_LIGHTING)",
                     "glEnable(GL_NORMALIZE)",
                     "glShadeModel(GL_FLAT)",
                     "glLightModelfv(GL_LIGHT_MODEL_AMBIENT, {0.2, 0.2, 0.2, 1})",
                     "glLightModeli(GL_LIGHT_MODEL_LOCAL_VIEWER, 1)",
                     "glMatrixMode(GL_MODELVIEW)",
                     "glDisable(GL_LIGHT0)",
                     "glDisable(GL_LIGHT1)",
                     "glPushMatrix()",
                     "glLoadIdentity()",
                     "glEnable(GL_LIGHT2)",
                     "glLightfv(GL_LIGHT2, GL_POSITION, {1, 2, 3, 0})",
                     "glLightfv(GL_LIGHT2, GL_SPOT_DIRECTION, {0, 1, 0})",
                     "glLightf(GL_LIGHT2, GL_SPOT_CUTOFF, 45)",
                     "glLightf(GL_LIGHT2, GL_SPOT_EXPONENT, 8)",
                     "glLightfv(GL_LIGHT2, GL_AMBIENT, {0.1, 0.1, 0.1, 1})",
                     "glLightfv(GL_LIGHT2, GL_DIFFUSE, {0, 0, 0, 1})",
                     "glLightfv(GL_LIGHT2, GL_SPECULAR, {0, 0, 0, 1})",
                     "glLightf(GL_LIGHT2, GL_CONSTANT_ATTENUATION, 2)",
                     "glLightf(GL_LIGHT2, GL_LINEAR_ATTENUATION, 3)",
                     "glLightf(GL_LIGHT2, GL_QUADRATIC_ATTENUATION, 4)",
                     "glPopMatrix()",
                     "glDisable(GL_LIGHT3)",
                     "glDisable(GL_LIGHT4)",
                     "glDisable(GL_LIGHT5)",
                     "glDisable(GL_LIGHT6)",
                     "glDisable(GL_LIGHT7)"};
    EXPECT_EQ(gl.takeCalls(),
              head + materialCalls("GL_FRONT", "64") + Texts{"glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, 0)"});
}

TEST_F(StateFixedFunctionGLTest, TwoSidedMaterialSendsTheBackFaceToo)
{
    LightingFlags flags;
    flags.lighting = true;
    flags.twoSided = true;
    MaterialProperties material;
    material.shininess.back = 1;
    state.applyState(material, flags, LightProperties{});
    const Texts calls = gl.takeCalls();
    EXPECT_EQ(calls[3], "glShadeModel(GL_SMOOTH)");
    EXPECT_EQ(Texts(calls.end() - 11, calls.end()), materialCalls("GL_FRONT", "0") +
                                                        Texts{"glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, 1)"} +
                                                        materialCalls("GL_BACK", "128"));
}

TEST_F(StateFixedFunctionGLTest, ReducedMaterialSetsColourOnlyWhenAsked)
{
    MaterialProperties material;
    material.setColor = false;
    LightingFlags flags;
    state.applyState(material, flags);
    EXPECT_EQ(gl.takeCalls(), Texts{});
    material.setColor = true;
    state.applyState(material, flags);
    EXPECT_EQ(gl.takeCalls(), Texts{"glColor4fv({0.8, 0.8, 0.8, 1})"});
}

TEST_F(StateFixedFunctionGLTest, ReducedMaterialSetsTheShadeModelUnderLighting)
{
    MaterialProperties material;
    material.setColor = false;
    LightingFlags flags;
    flags.lighting = true;
    state.applyState(material, flags);
    material.flatShading = true;
    state.applyState(material, flags);
    EXPECT_EQ(gl.takeCalls(), (Texts{"glShadeModel(GL_SMOOTH)", "glShadeModel(GL_FLAT)"}));
}

TEST_F(StateFixedFunctionGLTest, TexGenSendsEightUnitsAndLeavesUnitZeroActive)
{
    TexGenProperties texGen;
    texGen.units[0].mode = 0;
    texGen.units[0].coordinateMask = 1u << 3;
    texGen.units[0].planes = SbMatrix::translation(SbVec3f(5, 6, 7));
    texGen.units[1].mode = 1;
    texGen.units[1].coordinateMask = 1u;
    texGen.units[2].mode = 2;
    texGen.units[2].coordinateMask = 2u;
    state.applyState(texGen);
    Texts expected{"glActiveTexture(GL_TEXTURE0)",
                   "glDisable(GL_TEXTURE_GEN_S)",
                   "glDisable(GL_TEXTURE_GEN_T)",
                   "glDisable(GL_TEXTURE_GEN_R)",
                   "glEnable(GL_TEXTURE_GEN_Q)",
                   "glTexGeni(GL_Q, GL_TEXTURE_GEN_MODE, GL_OBJECT_LINEAR)",
                   "glTexGenfv(GL_Q, GL_OBJECT_PLANE, {5, 6, 7, 1})",
                   "glActiveTextureARB(GL_TEXTURE0)",
                   "glActiveTexture(GL_TEXTURE1)",
                   "glEnable(GL_TEXTURE_GEN_S)",
                   "glTexGeni(GL_S, GL_TEXTURE_GEN_MODE, GL_EYE_LINEAR)",
                   "glTexGenfv(GL_S, GL_EYE_PLANE, {1, 0, 0, 0})",
                   "glDisable(GL_TEXTURE_GEN_T)",
                   "glDisable(GL_TEXTURE_GEN_R)",
                   "glDisable(GL_TEXTURE_GEN_Q)",
                   "glActiveTextureARB(GL_TEXTURE0)",
                   "glActiveTexture(GL_TEXTURE2)",
                   "glDisable(GL_TEXTURE_GEN_S)",
                   "glEnable(GL_TEXTURE_GEN_T)",
                   "glTexGeni(GL_T, GL_TEXTURE_GEN_MODE, GL_SPHERE_MAP)",
                   "glDisable(GL_TEXTURE_GEN_R)",
                   "glDisable(GL_TEXTURE_GEN_Q)",
                   "glActiveTextureARB(GL_TEXTURE0)"};
    for (int unit = 3; unit < 8; ++unit)
    {
        expected.push_back("glActiveTexture(GL_TEXTURE" + std::to_string(unit) + ")");
        for (const char* coordinate : {"S", "T", "R", "Q"})
        {
            expected.push_back("glDisable(GL_TEXTURE_GEN_" + std::string(coordinate) + ")");
        }
        expected.push_back("glActiveTextureARB(GL_TEXTURE0)");
    }
    expected.push_back("glActiveTexture(GL_TEXTURE0)");
    EXPECT_EQ(gl.takeCalls(), expected);
}

TEST_F(StateFixedFunctionGLTest, ATexGenModeOutsideTheTableIsReportedAndSkipsWhatItWouldGenerate)
{
    TexGenProperties texGen;
    texGen.units[1].mode = 5;
    texGen.units[1].coordinateMask = 2u;
    EXPECT_DEBUG_DEATH(
        {
            state.applyState(texGen);
            const Texts calls = gl.takeCalls();
            EXPECT_EQ(
                Texts(calls.begin() + 6, calls.begin() + 11),
                (Texts{"glActiveTexture(GL_TEXTURE1)", "glDisable(GL_TEXTURE_GEN_S)", "glDisable(GL_TEXTURE_GEN_R)",
                       "glDisable(GL_TEXTURE_GEN_Q)", "glActiveTextureARB(GL_TEXTURE0)"}));
            EXPECT_EQ(calls.size(), 8u * 6);
            EXPECT_EQ(log.take(),
                      Texts{"error: [RendererGL] The texture generation mode index 5 is outside its table of 5 "
                            "entries."});
        },
        "index outside its table");
}

TEST_F(StateFixedFunctionGLTest, ATexGenModeOutsideTheTableDoesNotMatterWhereNothingIsGenerated)
{
    TexGenProperties texGen;
    texGen.units[1].mode = 0xFFFFFFFF;
    // Only the low four bits are coordinates.
    texGen.units[1].coordinateMask = 0xF0;
    state.applyState(texGen);
    EXPECT_EQ(gl.countOf("glDisable("), 32u);
    EXPECT_EQ(gl.countOf("glEnable("), 0u);
}

TEST_F(StateFixedFunctionGLTest, TexEnvSendsTheModesOfFourUnits)
{
    TexEnvProperties texEnv;
    texEnv.unitMask = 0xFFFFFFFFu;
    texEnv.modes[0] = GL_ADD;
    texEnv.modes[1] = GL_BLEND;
    texEnv.modes[2] = GL_REPLACE;
    texEnv.modes[3] = GL_MODULATE;
    state.applyState(texEnv);
    EXPECT_EQ(gl.takeCalls(),
              (Texts{"glActiveTexture(GL_TEXTURE0)", "glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_ADD)",
                     "glActiveTexture(GL_TEXTURE1)", "glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_BLEND)",
                     "glActiveTexture(GL_TEXTURE2)", "glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_REPLACE)",
                     "glActiveTexture(GL_TEXTURE3)", "glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE)",
                     "glActiveTexture(GL_TEXTURE0)"}));
}

TEST_F(StateFixedFunctionGLTest, TexEnvSkipsUnitsOutsideTheMask)
{
    TexEnvProperties texEnv;
    texEnv.unitMask = 1u << 2;
    texEnv.modes[2] = GL_COMBINE;
    state.applyState(texEnv);
    EXPECT_EQ(gl.takeCalls(),
              (Texts{"glActiveTexture(GL_TEXTURE2)", "glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_COMBINE)",
                     "glActiveTexture(GL_TEXTURE0)"}));
}

TEST_F(StateFixedFunctionGLTest, TexEnvFallsBackToReplaceAndGoesOn)
{
    TexEnvProperties texEnv;
    texEnv.unitMask = 3;
    texEnv.modes[0] = 12345;
    texEnv.modes[1] = GL_DECAL;
    state.applyState(texEnv);
    EXPECT_EQ(log.take(), Texts{"warning: Invalid texture model, falling back to REPLACE"});
    EXPECT_EQ(gl.callsMatching("glTexEnvi"), (Texts{"glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_REPLACE)",
                                                    "glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_DECAL)"}));
}

TEST_F(StateFixedFunctionGLTest, GroupsAreWrappedInDebugGroups)
{
    SoPreferences::setBool("KVR_RENDERENGINE_GLDEBUG_GROUP", true);
    state.applyState(TransformPart1Properties{}, TransformPart2Properties{});
    state.applyState(MaterialProperties{}, LightingFlags{}, LightProperties{});
    state.applyState(MaterialProperties{}, LightingFlags{});
    state.applyState(TexGenProperties{});
    state.applyState(TexEnvProperties{});
    const auto push = [](int length, const std::string& label)
    {
        return "glPushDebugGroup(GL_DEBUG_SOURCE_APPLICATION, 1, " + std::to_string(length) +
               ", \"renderengine::StateGL::applyState " + label + "\")";
    };
    EXPECT_EQ(gl.callsMatching("glPushDebugGroup"),
              (Texts{push(43, "Transform"), push(42, "Material"), push(42, "Material"), push(40, "TexGen"),
                     push(40, "TexEnv")}));
    EXPECT_EQ(gl.countOf("glPopDebugGroup"), 5u);
}

} // namespace renderengine
