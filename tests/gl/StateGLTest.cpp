#include "gl/StateGL.h"

#include "GLRecordingFixture.h"

#include <kavelor/SoPreferences.h>

#include <algorithm>
#include <functional>
#include <limits>
#include <memory>
#include <utility>

namespace renderengine
{

namespace
{

const Texts s_defaultRasterizer{"glPolygonMode(GL_FRONT_AND_BACK, GL_FILL)",
                                "glEnable(GL_CULL_FACE)",
                                "glCullFace(GL_BACK)",
                                "glFrontFace(GL_CCW)",
                                "glDisable(GL_POINT_SMOOTH)",
                                "glDisable(GL_LINE_STIPPLE)",
                                "glDisable(GL_LINE_SMOOTH)",
                                "glLineWidth(1)",
                                "glPointSize(1)",
                                "glDisable(GL_POLYGON_OFFSET_FILL)",
                                "glDisable(GL_POLYGON_OFFSET_LINE)",
                                "glDisable(GL_POLYGON_OFFSET_POINT)",
                                "glEnable(GL_MULTISAMPLE)"};

const Texts s_defaultColorOutput{"glColorMaski(0, GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE)",
                                 "glDisablei(GL_BLEND, 0)",
                                 "glColorMaski(1, GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE)",
                                 "glDisablei(GL_BLEND, 1)",
                                 "glColorMaski(2, GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE)",
                                 "glDisablei(GL_BLEND, 2)",
                                 "glColorMaski(3, GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE)",
                                 "glDisablei(GL_BLEND, 3)",
                                 "glColorMaski(4, GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE)",
                                 "glDisablei(GL_BLEND, 4)",
                                 "glColorMaski(5, GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE)",
                                 "glDisablei(GL_BLEND, 5)",
                                 "glColorMaski(6, GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE)",
                                 "glDisablei(GL_BLEND, 6)",
                                 "glColorMaski(7, GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE)",
                                 "glDisablei(GL_BLEND, 7)",
                                 "glBlendColor(0, 0, 0, 0)",
                                 "glDisable(GL_COLOR_LOGIC_OP)"};

const Texts s_defaultScissor{"glDisable(GL_SCISSOR_TEST)"};

const Texts s_defaultDepthStencil{"glEnable(GL_DEPTH_TEST)", "glDepthMask(GL_TRUE)", "glDepthFunc(GL_LESS)",
                                  "glDisable(GL_STENCIL_TEST)"};

Texts operator+(Texts first, const Texts& second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

/// GLCORE and the debug groups are kept for the life of the process, so each case needs a process of its own.
class StateGLTest : public GLRecordingTest
{
protected:
    template <typename Record> Texts applied(const Record& record)
    {
        state.applyState(record);
        return gl.takeCalls();
    }

    /// The calls of the differential apply after one change of a default record.
    Texts difference(const std::function<void(GfxStateProperties&)>& change)
    {
        auto changed = std::make_shared<GfxStateProperties>();
        change(*changed);
        const StateGL changedState(changed);
        changedState.applyDifferential(GfxStateProperties{});
        return gl.takeCalls();
    }

    StateGL state{std::make_shared<const GfxStateProperties>()};
};

} // namespace

TEST_F(StateGLTest, ConstructionMakesNoCall)
{
    EXPECT_EQ(gl.takeCalls(), Texts{});
}

TEST_F(StateGLTest, ANullRecordStandsForTheDefaults)
{
    const StateGL empty(nullptr);
    EXPECT_EQ(empty.getProperties(), GfxStateProperties{});
}

TEST_F(StateGLTest, ApplySetsEveryGroupInOrder)
{
    state.apply();
    EXPECT_EQ(gl.takeCalls(), s_defaultRasterizer + s_defaultColorOutput + s_defaultScissor + s_defaultDepthStencil);
}

TEST_F(StateGLTest, DifferentialSkipsARecordThatIsEqual)
{
    EXPECT_EQ(difference([](GfxStateProperties&) {}), Texts{});
}

TEST_F(StateGLTest, DifferentialSetsOnlyTheGroupThatDiffers)
{
    EXPECT_EQ(difference([](GfxStateProperties& p) { p.depthStencil.depthFunc = 7; }),
              (Texts{"glEnable(GL_DEPTH_TEST)", "glDepthMask(GL_TRUE)", "glDepthFunc(GL_ALWAYS)",
                     "glDisable(GL_STENCIL_TEST)"}));
    EXPECT_EQ(difference([](GfxStateProperties& p) { p.scissor.enable = true; }),
              (Texts{"glEnable(GL_SCISSOR_TEST)", "glScissor(0, 0, 0, 0)"}));
}

TEST_F(StateGLTest, DifferentialSetsAllGroupsInTheOrderOfApply)
{
    const Texts calls = difference(
        [](GfxStateProperties& p)
        {
            p.depthStencil.depthWrite = false;
            p.scissor.enable = true;
            p.colorOutput.blendAlpha = 1;
            p.rasterizer.multisample = false;
        });
    Texts expected = s_defaultRasterizer + s_defaultColorOutput;
    expected[s_defaultRasterizer.size() - 1] = "glDisable(GL_MULTISAMPLE)";
    expected[expected.size() - 2] = "glBlendColor(0, 0, 0, 1)";
    EXPECT_EQ(calls, (expected + Texts{"glEnable(GL_SCISSOR_TEST)", "glScissor(0, 0, 0, 0)", "glEnable(GL_DEPTH_TEST)",
                                       "glDepthMask(GL_FALSE)", "glDepthFunc(GL_LESS)", "glDisable(GL_STENCIL_TEST)"}));
}

TEST_F(StateGLTest, ADifferentSizeScaleAloneSendsWidthAndSizeAgain)
{
    Texts expected = s_defaultRasterizer;
    expected[7] = "glLineWidth(2)";
    expected[8] = "glPointSize(2)";
    EXPECT_EQ(difference([](GfxStateProperties& p) { p.rasterizer.sizeScale = 2; }), expected);
}

TEST_F(StateGLTest, OneBlendFactorSendsTheWholeColourGroup)
{
    // The target does not blend, so its factors are not among the calls.
    EXPECT_EQ(difference([](GfxStateProperties& p) { p.colorOutput.targets[3].dstAlpha = 5; }), s_defaultColorOutput);
}

TEST_F(StateGLTest, AChangeOfAStencilFaceMakesTheGroupDifferEvenWhenTheTestIsOff)
{
    EXPECT_EQ(difference([](GfxStateProperties& p) { p.depthStencil.back.reference = 4; }), s_defaultDepthStencil);
}

TEST_F(StateGLTest, ARectangleAloneMakesTheScissorGroupDiffer)
{
    EXPECT_EQ(difference([](GfxStateProperties& p) { p.scissor.rectangle = SbVec4us(1, 2, 3, 4); }), s_defaultScissor);
}

TEST_F(StateGLTest, LineAndPointSizesAreScaled)
{
    RasterizerProperties rasterizer;
    rasterizer.lineWidth = 3;
    rasterizer.pointSize = 5;
    rasterizer.sizeScale = 0.5f;
    const Texts calls = applied(rasterizer);
    EXPECT_EQ(calls[7], "glLineWidth(1.5)");
    EXPECT_EQ(calls[8], "glPointSize(2.5)");
}

TEST_F(StateGLTest, EachCullModeSetsEnableAndFace)
{
    const std::pair<const char*, const char*> modes[] = {{"glDisable(GL_CULL_FACE)", "glCullFace(GL_BACK)"},
                                                         {"glEnable(GL_CULL_FACE)", "glCullFace(GL_FRONT)"},
                                                         {"glEnable(GL_CULL_FACE)", "glCullFace(GL_BACK)"},
                                                         {"glEnable(GL_CULL_FACE)", "glCullFace(GL_FRONT_AND_BACK)"}};
    for (uint8_t mode = 0; mode < 4; ++mode)
    {
        SCOPED_TRACE(int{mode});
        RasterizerProperties rasterizer;
        rasterizer.cullMode = mode & 3u;
        const Texts calls = applied(rasterizer);
        EXPECT_EQ(calls[1], modes[mode].first);
        EXPECT_EQ(calls[2], modes[mode].second);
    }
}

TEST_F(StateGLTest, EachFillModeIsSent)
{
    const char* const modes[] = {"GL_POINT", "GL_LINE", "GL_FILL"};
    for (uint8_t mode = 0; mode < 3; ++mode)
    {
        RasterizerProperties rasterizer;
        rasterizer.fillMode = mode & 3u;
        EXPECT_EQ(applied(rasterizer)[0], "glPolygonMode(GL_FRONT_AND_BACK, " + std::string(modes[mode]) + ")");
    }
}

TEST_F(StateGLTest, AFillModeOutsideTheTableIsReportedAndSkipped)
{
    RasterizerProperties rasterizer;
    rasterizer.fillMode = 3;
    EXPECT_DEBUG_DEATH(
        {
            state.applyState(rasterizer);
            EXPECT_EQ(gl.countOf("glPolygonMode"), 0u);
            EXPECT_EQ(gl.countOf("glCullFace"), 1u);
            EXPECT_EQ(log.take(),
                      Texts{"error: [RendererGL] The fill mode index 3 is outside its table of 3 entries."});
        },
        "index outside its table");
}

TEST_F(StateGLTest, FrontFaceIsClockwiseWhenItsBitIsSet)
{
    RasterizerProperties rasterizer;
    rasterizer.frontFace = -1;
    EXPECT_EQ(applied(rasterizer)[3], "glFrontFace(GL_CW)");
}

TEST_F(StateGLTest, SmoothFlagsAreSent)
{
    RasterizerProperties rasterizer;
    rasterizer.pointSmooth = true;
    rasterizer.lineSmooth = true;
    const Texts calls = applied(rasterizer);
    EXPECT_EQ(calls[4], "glEnable(GL_POINT_SMOOTH)");
    EXPECT_EQ(calls[6], "glEnable(GL_LINE_SMOOTH)");
}

TEST_F(StateGLTest, StipplePatternZeroTurnsStippleOn)
{
    RasterizerProperties rasterizer;
    rasterizer.lineStipplePattern = 0;
    rasterizer.lineStippleFactor = 2;
    const Texts calls = applied(rasterizer);
    EXPECT_EQ(calls[5], "glEnable(GL_LINE_STIPPLE)");
    EXPECT_EQ(calls[6], "glLineStipple(3, 0)");
}

TEST_F(StateGLTest, AStipplePatternIsSentAsSixteenBits)
{
    RasterizerProperties rasterizer;
    rasterizer.lineStipplePattern = static_cast<int16_t>(0xF0F0);
    rasterizer.lineStippleFactor = 255;
    EXPECT_EQ(applied(rasterizer)[6], "glLineStipple(256, 61680)");
}

TEST_F(StateGLTest, CoreProfileSendsNeitherPointSmoothNorStipple)
{
    SoPreferences::setBool("KVR_RENDERENGINE_USE_GLCORE", true);
    RasterizerProperties rasterizer;
    rasterizer.pointSmooth = true;
    rasterizer.lineStipplePattern = 1;
    rasterizer.lineSmooth = true;
    const Texts calls = applied(rasterizer);
    EXPECT_EQ(calls[4], "glEnable(GL_LINE_SMOOTH)");
    EXPECT_EQ(std::count_if(calls.begin(), calls.end(),
                            [](const std::string& call) { return call.find("STIPPLE") != std::string::npos; }),
              0);
    EXPECT_EQ(calls.size(), s_defaultRasterizer.size() - 2);
}

TEST_F(StateGLTest, CoreProfileStillCountsPointSmoothAndStippleAsDifferences)
{
    SoPreferences::setBool("KVR_RENDERENGINE_USE_GLCORE", true);
    EXPECT_EQ(difference([](GfxStateProperties& p) { p.rasterizer.lineStipplePattern = 1; }).size(),
              s_defaultRasterizer.size() - 2);
    EXPECT_EQ(difference([](GfxStateProperties& p) { p.rasterizer.pointSmooth = true; }).size(),
              s_defaultRasterizer.size() - 2);
}

TEST_F(StateGLTest, PolygonOffsetOfNoNumberIsNotAnOffsetOfZero)
{
    RasterizerProperties rasterizer;
    rasterizer.polygonOffsetEnable = 1;
    rasterizer.polygonOffsetFactor = std::numeric_limits<float>::quiet_NaN();
    rasterizer.polygonOffsetUnits = std::numeric_limits<float>::quiet_NaN();
    const Texts calls = applied(rasterizer);
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "glEnable(GL_POLYGON_OFFSET_FILL)"), 1);
}

TEST_F(StateGLTest, PolygonOffsetOfZeroTurnsAllThreeOffWhateverTheFlagsAre)
{
    RasterizerProperties rasterizer;
    rasterizer.polygonOffsetEnable = 7;
    const Texts calls = applied(rasterizer);
    EXPECT_EQ(Texts(calls.begin() + 9, calls.begin() + 12),
              (Texts{"glDisable(GL_POLYGON_OFFSET_FILL)", "glDisable(GL_POLYGON_OFFSET_LINE)",
                     "glDisable(GL_POLYGON_OFFSET_POINT)"}));
    EXPECT_EQ(calls.size(), s_defaultRasterizer.size());
}

TEST_F(StateGLTest, PolygonOffsetOfUnitsOnlyIsAppliedByTheFlags)
{
    for (unsigned flags = 0; flags < 8; ++flags)
    {
        SCOPED_TRACE(flags);
        RasterizerProperties rasterizer;
        rasterizer.polygonOffsetEnable = flags & 7u;
        rasterizer.polygonOffsetUnits = 1;
        const Texts calls = applied(rasterizer);
        const auto expected = [flags](unsigned bit, const std::string& name)
        { return ((flags & bit) ? "glEnable(GL_POLYGON_OFFSET_" : "glDisable(GL_POLYGON_OFFSET_") + name + ")"; };
        EXPECT_EQ(Texts(calls.begin() + 9, calls.begin() + 13),
                  (Texts{expected(1, "FILL"), expected(2, "LINE"), expected(4, "POINT"), "glPolygonOffset(0, 1)"}));
    }
}

TEST_F(StateGLTest, PolygonOffsetSendsFactorThenUnits)
{
    RasterizerProperties rasterizer;
    rasterizer.polygonOffsetFactor = 1.5f;
    rasterizer.polygonOffsetUnits = -2;
    EXPECT_EQ(applied(rasterizer)[12], "glPolygonOffset(1.5, -2)");
}

TEST_F(StateGLTest, ABlendingTargetSendsEquationsAndFactors)
{
    ColorOutputProperties output;
    ColorTargetProperties& target = output.targets[2];
    target.blendEnable = 1;
    target.colorOp = 2;
    target.alphaOp = 4;
    target.srcColor = 6;
    target.dstColor = 7;
    target.srcAlpha = 15;
    target.dstAlpha = 18;
    target.writeGreen = false;
    const Texts calls = applied(output);
    EXPECT_EQ(Texts(calls.begin() + 4, calls.begin() + 8),
              (Texts{"glColorMaski(2, GL_TRUE, GL_FALSE, GL_TRUE, GL_TRUE)", "glEnablei(GL_BLEND, 2)",
                     "glBlendEquationSeparatei(2, GL_FUNC_REVERSE_SUBTRACT, GL_MAX)",
                     "glBlendFuncSeparatei(2, GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA, GL_SRC1_COLOR, "
                     "GL_ONE_MINUS_SRC1_ALPHA)"}));
}

TEST_F(StateGLTest, MasksOfAllEightTargetsAreSentInOrder)
{
    ColorOutputProperties output;
    output.targets[7].writeAlpha = false;
    const Texts calls = applied(output);
    EXPECT_EQ(calls.size(), s_defaultColorOutput.size());
    EXPECT_EQ(calls[14], "glColorMaski(7, GL_TRUE, GL_TRUE, GL_TRUE, GL_FALSE)");
}

TEST_F(StateGLTest, BlendIndicesOutsideTheTablesAreReportedAndSkipped)
{
    ColorOutputProperties output;
    output.targets[0].blendEnable = 1;
    output.targets[0].colorOp = 5;
    output.targets[0].srcColor = 19;
    EXPECT_DEBUG_DEATH(
        {
            state.applyState(output);
            EXPECT_EQ(gl.countOf("glBlendEquationSeparatei"), 0u);
            EXPECT_EQ(gl.countOf("glBlendFuncSeparatei"), 0u);
            EXPECT_EQ(gl.countOf("glColorMaski"), 8u);
            EXPECT_EQ(log.take(),
                      (Texts{"error: [RendererGL] The blend equation index 5 is outside its table of 5 entries.",
                             "error: [RendererGL] The blend factor index 19 is outside its table of 19 entries."}));
        },
        "index outside its table");
}

TEST_F(StateGLTest, BlendColourAndLogicOperationAreSent)
{
    ColorOutputProperties output;
    output.blendColor = SbVec3f(0.25f, 0.5f, 0.75f);
    output.blendAlpha = 1;
    output.logicOpEnable = 1;
    output.logicOp = 12;
    const Texts calls = applied(output);
    EXPECT_EQ(Texts(calls.end() - 3, calls.end()),
              (Texts{"glBlendColor(0.25, 0.5, 0.75, 1)", "glEnable(GL_COLOR_LOGIC_OP)", "glLogicOp(GL_XOR)"}));
}

TEST_F(StateGLTest, ScissorSendsTheRectangleOnlyWhenItIsOn)
{
    ScissorProperties scissor;
    scissor.rectangle = SbVec4us(10, 20, 30, 65535);
    EXPECT_EQ(applied(scissor), Texts{"glDisable(GL_SCISSOR_TEST)"});
    scissor.enable = true;
    EXPECT_EQ(applied(scissor), (Texts{"glEnable(GL_SCISSOR_TEST)", "glScissor(10, 20, 30, 65535)"}));
}

TEST_F(StateGLTest, DepthFunctionIsSentWithTheTestOff)
{
    DepthStencilProperties depthStencil;
    depthStencil.depthTest = false;
    depthStencil.depthWrite = false;
    depthStencil.depthFunc = 2;
    EXPECT_EQ(applied(depthStencil), (Texts{"glDisable(GL_DEPTH_TEST)", "glDepthMask(GL_FALSE)",
                                            "glDepthFunc(GL_LEQUAL)", "glDisable(GL_STENCIL_TEST)"}));
}

TEST_F(StateGLTest, ADepthFunctionOutsideTheTableIsReportedAndSkipped)
{
    DepthStencilProperties depthStencil;
    depthStencil.depthFunc = 8;
    EXPECT_DEBUG_DEATH(
        {
            state.applyState(depthStencil);
            EXPECT_EQ(gl.takeCalls(),
                      (Texts{"glEnable(GL_DEPTH_TEST)", "glDepthMask(GL_TRUE)", "glDisable(GL_STENCIL_TEST)"}));
            EXPECT_EQ(log.take(),
                      Texts{"error: [RendererGL] The comparison index 8 is outside its table of 8 entries."});
        },
        "index outside its table");
}

TEST_F(StateGLTest, StencilIndicesOutsideTheTablesAreReportedAndSkipped)
{
    StencilProperties stencil;
    stencil.func = 0xFFFFFFFF;
    stencil.depthFail = 8;
    EXPECT_DEBUG_DEATH(
        {
            state.applyState(stencil, GL_BACK);
            EXPECT_EQ(gl.takeCalls(), Texts{"glStencilMaskSeparate(GL_BACK, 4294967295)"});
            EXPECT_EQ(log.take(),
                      (Texts{"error: [RendererGL] The comparison index 4294967295 is outside its table of 8 entries.",
                             "error: [RendererGL] The stencil operation index 8 is outside its table of 8 entries."}));
        },
        "index outside its table");
}

TEST_F(StateGLTest, StencilSendsFrontThenBack)
{
    DepthStencilProperties depthStencil;
    depthStencil.stencilTest = true;
    depthStencil.front.func = 5;
    depthStencil.front.reference = 3;
    depthStencil.front.readMask = 0x0F;
    depthStencil.front.writeMask = 0xF0;
    depthStencil.front.stencilFail = 1;
    depthStencil.front.depthFail = 2;
    depthStencil.front.depthPass = 3;
    const Texts calls = applied(depthStencil);
    EXPECT_EQ(Texts(calls.begin() + 3, calls.end()),
              (Texts{"glEnable(GL_STENCIL_TEST)", "glStencilFuncSeparate(GL_FRONT, GL_EQUAL, 3, 15)",
                     "glStencilOpSeparate(GL_FRONT, GL_ZERO, GL_REPLACE, GL_INCR)",
                     "glStencilMaskSeparate(GL_FRONT, 240)", "glStencilFuncSeparate(GL_BACK, GL_ALWAYS, 0, 4294967295)",
                     "glStencilOpSeparate(GL_BACK, GL_KEEP, GL_KEEP, GL_KEEP)",
                     "glStencilMaskSeparate(GL_BACK, 4294967295)"}));
}

TEST_F(StateGLTest, GroupsAreWrappedInDebugGroupsOfTheApplication)
{
    SoPreferences::setBool("KVR_RENDERENGINE_GLDEBUG_GROUP", true);
    auto properties = std::make_shared<GfxStateProperties>();
    properties->depthStencil.stencilTest = true;
    const StateGL stencilState(properties);
    stencilState.apply();
    const auto push = [](int length, const std::string& text)
    {
        return "glPushDebugGroup(GL_DEBUG_SOURCE_APPLICATION, 1, " + std::to_string(length) +
               ", \"renderengine::StateGL::" + text + "\")";
    };
    EXPECT_EQ(gl.callsMatching("glPushDebugGroup"),
              (Texts{push(29, "apply "), push(44, "applyState Rasterizer"), push(45, "applyState ColorOutput"),
                     push(41, "applyState Scissor"), push(46, "applyState DepthStencil"),
                     push(41, "applyState Stencil"), push(41, "applyState Stencil")}));
    EXPECT_EQ(gl.countOf("glPopDebugGroup"), 7u);
    gl.clear();
    stencilState.applyDifferential(*properties);
    EXPECT_EQ(gl.takeCalls(), (Texts{push(41, "applyDifferential "), "glPopDebugGroup()"}));
}

} // namespace renderengine
