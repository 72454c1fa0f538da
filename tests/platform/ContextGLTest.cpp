#include "context/ContextGL.h"
#include "context/ContextFactory.h"
#include "context/ContextProbe.h"
#include "gl/RendererGL41.h"
#include "gl/RendererGL46.h"
#include "renderer/RendererLog.h"
#include "renderer/RendererNull.h"
#include "support/LogLines.h"
#include "support/ScriptedPlatform.h"

#include <renderengine/GLUtils.h>
#include <renderengine/WGLConstants.h>

#include <glbinding/RecordingGL.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <kavelor/SoPreferences.h>

#include <stdexcept>
#include <thread>

namespace renderengine
{
namespace
{

using glbinding::RecordingGL;
using ::testing::ElementsAre;
using testing::LogLines;
using ::testing::StartsWith;
using Calls = std::vector<std::string>;

/// Sets a preference for the length of a test.
struct Preference
{
    Preference(const char* name, const char* value) : m_name(name) { SoPreferences::setString(name, value); }
    ~Preference() { SoPreferences::unset(m_name); }
    Preference(const Preference&) = delete;
    Preference& operator=(const Preference&) = delete;

    const char* m_name;
};

/// Names the renderer of a context that was made for a GL version.
std::string rendererOf(int major, int minor)
{
    RecordingGL gl;
    gl.setVersion(major, minor);
    ContextGL context(0);
    context.init();
    RendererBase* renderer = context.getRenderer();
    if (dynamic_cast<RendererLog*>(renderer))
    {
        return "LOG";
    }
    if (dynamic_cast<RendererNull*>(renderer))
    {
        return "NULL";
    }
    if (dynamic_cast<RendererGL46*>(renderer))
    {
        return "GL46";
    }
    return dynamic_cast<RendererGL41*>(renderer) ? "GL41" : "none";
}

TEST(ContextGL, InitProbesOnceAndLeavesNothingCurrent)
{
    ScriptedPlatform platform;
    RecordingGL gl;
    ContextGL context(ContextShare);
    EXPECT_FALSE(context.isValid());
    context.init();
    EXPECT_TRUE(context.isValid());
    EXPECT_EQ(platform.callsMatching("wgl"),
              (Calls{"wglCreateContext(display1) -> context1", "wglMakeCurrent(display1, context1)",
                     "wglGetProcAddress(wglCreateContextAttribsARB)", "wglMakeCurrent(display1, null)",
                     "wglDeleteContext(context1)", "wglCreateContextAttribsARB(display1, null) -> context2",
                     "wglMakeCurrent(display1, context2)", "wglMakeCurrent(null, null)",
                     "wglMakeCurrent(display1, context2)", "wglMakeCurrent(display1, null)"}));
    EXPECT_EQ(platform.currentContext(), nullptr);
    platform.takeCalls();
    EXPECT_EQ(context.getContextInfo().version, 460);
    EXPECT_EQ(platform.takeCalls(), Calls{});
}

TEST(ContextGL, SharesWithTheHostAndPutsItBack)
{
    ScriptedPlatform platform;
    RecordingGL gl;
    HDC display = platform.makeHostDisplay();
    HGLRC hostContext = platform.makeHostContextCurrent(display);
    ContextGL context(ContextShare);
    context.init();
    EXPECT_EQ(
        platform.callsMatching("wgl"),
        (Calls{"wglGetPixelFormatAttribivARB(display1, 0)", "wglChoosePixelFormatARB(display1, 256)",
               "wglGetProcAddress(wglCreateContextAttribsARB)",
               "wglCreateContextAttribsARB(display1, hostContext) -> context1", "wglMakeCurrent(display1, context1)",
               "wglMakeCurrent(hostDisplay, hostContext)", "wglMakeCurrent(display1, context1)",
               "wglMakeCurrent(display1, null)", "wglMakeCurrent(hostDisplay, hostContext)"}));
    EXPECT_EQ(platform.currentContext(), hostContext);
    EXPECT_EQ(platform.currentDisplay(), display);
}

TEST(ContextGL, WithoutTheShareFlagTheHostIsNeitherSharedNorPutBack)
{
    ScriptedPlatform platform;
    RecordingGL gl;
    platform.makeHostContextCurrent(platform.makeHostDisplay());
    ContextGL context(0);
    context.init();
    ASSERT_EQ(platform.contextRequests().size(), 1u);
    EXPECT_EQ(platform.contextRequests()[0].shared, nullptr);
    EXPECT_EQ(platform.currentContext(), nullptr);
}

TEST(ContextGL, AttributeListIsEmptyByDefault)
{
    ScriptedPlatform platform;
    RecordingGL gl;
    ContextGL context(0);
    context.init();
    ASSERT_EQ(platform.contextRequests().size(), 1u);
    EXPECT_TRUE(platform.contextRequests()[0].hasAttributes);
    EXPECT_EQ(platform.contextRequests()[0].attributes, std::vector<int>{});
}

TEST(ContextGL, DebugFlagReachesTheDriver)
{
    ScriptedPlatform platform;
    RecordingGL gl;
    ContextGL context(ContextDebug);
    context.init();
    ASSERT_EQ(platform.contextRequests().size(), 1u);
    EXPECT_EQ(platform.contextRequests()[0].attributes,
              (std::vector<int>{WGL_CONTEXT_FLAGS_ARB, WGL_CONTEXT_DEBUG_BIT_ARB}));
}

TEST(ContextGLCore, AsksForVersionAndProfileAndFallsBackTo41)
{
    const Preference core("KVR_RENDERENGINE_USE_GLCORE", "true");
    ScriptedPlatform platform;
    platform.highestVersion = 410;
    RecordingGL gl;
    gl.setVersion(4, 1);
    LogLines log;
    ContextGL context(ContextDebug);
    context.init();
    ASSERT_EQ(platform.contextRequests().size(), 2u);
    EXPECT_EQ(platform.contextRequests()[0].attributes,
              (std::vector<int>{WGL_CONTEXT_MAJOR_VERSION_ARB, 4, WGL_CONTEXT_MINOR_VERSION_ARB, 6,
                                WGL_CONTEXT_PROFILE_MASK_ARB, WGL_CONTEXT_CORE_PROFILE_BIT_ARB, WGL_CONTEXT_FLAGS_ARB,
                                WGL_CONTEXT_DEBUG_BIT_ARB}));
    EXPECT_EQ(platform.contextRequests()[1].attributes,
              (std::vector<int>{WGL_CONTEXT_MAJOR_VERSION_ARB, 4, WGL_CONTEXT_MINOR_VERSION_ARB, 1,
                                WGL_CONTEXT_PROFILE_MASK_ARB, WGL_CONTEXT_CORE_PROFILE_BIT_ARB, WGL_CONTEXT_FLAGS_ARB,
                                WGL_CONTEXT_DEBUG_BIT_ARB}));
    EXPECT_EQ(
        log.take(),
        Calls{
            "error: renderengine::utils::GL::createContext wglCreateContextAttribsARB (error 2000: scripted failure"});
    EXPECT_EQ(context.getContextInfo().version, 410);
}

TEST(ContextGL, ThrowsWhenNoContextCanBeMade)
{
    ScriptedPlatform platform;
    platform.failCreateContextAttribs = true;
    LogLines log;
    ContextGL context(0);
    try
    {
        context.init();
        FAIL() << "init() has not thrown";
    }
    catch (const std::runtime_error& error)
    {
        EXPECT_STREQ(error.what(), "can't create a GL context");
    }
    EXPECT_EQ(platform.contextRequests().size(), 2u);
    EXPECT_EQ(platform.liveWindows(), 0u);
    EXPECT_FALSE(context.isValid());
}

TEST(ContextGL, FailureOfTheWindowPassesThroughInit)
{
    ScriptedPlatform platform;
    platform.failCreateWindow = true;
    ContextGL context(0);
    EXPECT_THROW(context.init(), std::runtime_error);
    EXPECT_EQ(context.getRenderer(), nullptr);
    EXPECT_THROW(context.getContextInfo(), std::runtime_error);
}

TEST(ContextGL, InfoBeforeInitIsProbedAtEachCall)
{
    ScriptedPlatform platform;
    RecordingGL gl;
    ContextGL context(0);
    gl.setVersion(4, 5);
    EXPECT_EQ(context.getContextInfo().version, 450);
    gl.setVersion(4, 2);
    EXPECT_EQ(context.getContextInfo().version, 420);
    EXPECT_EQ(platform.callsMatching("CreateWindowExA").size(), 2u);
}

TEST(ContextGL, InfoBeforeInitMakesAndDestroysAWholeContext)
{
    ScriptedPlatform platform;
    RecordingGL gl;
    ContextGL context(0);
    EXPECT_EQ(context.getContextInfo().version, 460);
    EXPECT_FALSE(context.isValid());
    EXPECT_EQ(platform.callsMatching("CreateWindowExA").size(), 1u);
    EXPECT_EQ(platform.liveWindows(), 0u);
    EXPECT_EQ(platform.liveContexts(), 0u);
    EXPECT_EQ(context.getRenderer(), nullptr);
}

TEST(ContextGL, DestructorDestroysTheContextBeforeItsWindow)
{
    ScriptedPlatform platform;
    RecordingGL gl;
    {
        ContextGL context(0);
        context.init();
        platform.takeCalls();
    }
    const Calls calls = platform.takeCalls();
    ASSERT_GE(calls.size(), 3u);
    EXPECT_EQ(calls[0], "wglDeleteContext(context2)");
    EXPECT_EQ(calls[1], "ReleaseDC(window1, display1)");
    EXPECT_EQ(calls[2], "DestroyWindow(window1)");
    EXPECT_EQ(platform.liveContexts(), 0u);
}

TEST(ContextGL, TwoContextsHaveWindowsOfTheirOwn)
{
    ScriptedPlatform platform;
    RecordingGL gl;
    auto first = std::make_unique<ContextGL>(static_cast<uint8_t>(ContextShare));
    auto second = std::make_unique<ContextGL>(static_cast<uint8_t>(ContextShare));
    first->init();
    second->init();
    first.reset();
    EXPECT_TRUE(platform.isClassRegistered());
    EXPECT_TRUE(second->makeCurrent());
    second->doneCurrent();
    second.reset();
    EXPECT_FALSE(platform.isClassRegistered());
}

TEST(ContextGL, MakeCurrentAndDoneCurrentPutTheHostBack)
{
    ScriptedPlatform platform;
    RecordingGL gl;
    ContextGL context(ContextShare);
    context.init();
    HGLRC hostContext = platform.makeHostContextCurrent(platform.makeHostDisplay());
    platform.takeCalls();
    EXPECT_TRUE(context.makeCurrent());
    context.doneCurrent();
    EXPECT_EQ(platform.takeCalls(), (Calls{"wglMakeCurrent(display1, context2)", "wglMakeCurrent(display1, null)",
                                           "wglMakeCurrent(hostDisplay, hostContext)"}));
    EXPECT_EQ(platform.currentContext(), hostContext);
}

TEST(ContextGL, DoneCurrentWithoutAHostOnlyReleases)
{
    ScriptedPlatform platform;
    RecordingGL gl;
    ContextGL context(ContextShare);
    context.init();
    platform.takeCalls();
    EXPECT_TRUE(context.makeCurrent());
    context.doneCurrent();
    EXPECT_EQ(platform.takeCalls(), (Calls{"wglMakeCurrent(display1, context2)", "wglMakeCurrent(display1, null)"}));
}

TEST(ContextGL, MakeCurrentThatFailsSaysSo)
{
    ScriptedPlatform platform;
    RecordingGL gl;
    LogLines log;
    ContextGL context(0);
    context.init();
    platform.failingBinds = 5;
    EXPECT_FALSE(context.makeCurrent());
    EXPECT_THAT(log.take(), ElementsAre(StartsWith("error: renderengine::utils::GL::makeCurrent Thread ")));
}

TEST(ContextGL, BesideARenderThreadTheHostIsNeitherSavedNorPutBack)
{
    ScriptedPlatform platform;
    RecordingGL gl;
    ContextGL context(ContextMultithread | ContextShare);
    context.init();
    ASSERT_TRUE(context.isRenderThreaded());
    context.executeResourceCommands();
    platform.makeHostContextCurrent(platform.makeHostDisplay());
    platform.takeCalls();
    EXPECT_TRUE(context.makeCurrent());
    context.doneCurrent();
    EXPECT_EQ(platform.takeCalls(), (Calls{"wglMakeCurrent(display1, context2)", "wglMakeCurrent(display1, null)"}));
}

TEST(ContextGL, InitGoesOnWithADeviceThatIsTooOld)
{
    ScriptedPlatform platform;
    LogLines log;
    EXPECT_EQ(rendererOf(3, 3), "GL41");
    EXPECT_EQ(log.take(), Calls{"error: Kavelor 10 requires at least OpenGL 4.1 support while this device only "
                                "supports OpenGL version 3.3"});
}

TEST(ContextGL, ChoosesTheRendererByVersion)
{
    ScriptedPlatform platform;
    EXPECT_EQ(rendererOf(4, 6), "GL46");
    EXPECT_EQ(rendererOf(4, 3), "GL46");
    EXPECT_EQ(rendererOf(4, 2), "GL41");
    EXPECT_EQ(rendererOf(4, 1), "GL41");
}

TEST(ContextGL, ChoosesTheRendererBySettingWithoutRegardToCase)
{
    ScriptedPlatform platform;
    {
        const Preference setting("KVR_RENDERENGINE_RENDERER", "gl41");
        EXPECT_EQ(rendererOf(4, 6), "GL41");
    }
    {
        const Preference setting("KVR_RENDERENGINE_RENDERER", "Log");
        EXPECT_EQ(rendererOf(4, 6), "LOG");
    }
    {
        const Preference setting("KVR_RENDERENGINE_RENDERER", "null");
        EXPECT_EQ(rendererOf(4, 6), "NULL");
    }
}

TEST(ContextGL, UnknownRendererIsWarnedAboutAndBecomesGL)
{
    ScriptedPlatform platform;
    LogLines log;
    const Preference setting("KVR_RENDERENGINE_RENDERER", "gl46");
    EXPECT_EQ(rendererOf(4, 2), "GL41");
    EXPECT_EQ(log.take(), Calls{"warning: Unknown render engine GL46, falling back to GL."});
}

TEST(ContextGL, KnownRenderersAreNotWarnedAbout)
{
    ScriptedPlatform platform;
    LogLines log;
    rendererOf(4, 6);
    const Preference setting("KVR_RENDERENGINE_RENDERER", "GL41");
    rendererOf(4, 6);
    EXPECT_EQ(log.take(), Calls{});
}

TEST(ContextGL, EachThreadHasABindingObjectOfItsOwn)
{
    ScriptedPlatform platform;
    RecordingGL gl;
    ContextGL context(0);
    context.init();
    ASSERT_TRUE(context.makeCurrent());
    const GLEWContextStruct* table = glewGetContext();
    EXPECT_EQ(glewGetContext(), table);
    context.doneCurrent();
    const GLEWContextStruct* otherTable = nullptr;
    std::thread(
        [&]
        {
            ASSERT_TRUE(context.makeCurrent());
            otherTable = glewGetContext();
            context.doneCurrent();
        })
        .join();
    EXPECT_NE(otherTable, nullptr);
    EXPECT_NE(otherTable, table);
}

TEST(ContextProbe, ReadsInTheOrderOfTheRecord)
{
    RecordingGL gl;
    gl.setExtensions({"GL_ARB_a"});
    probeCurrentContext();
    EXPECT_EQ(gl.takeCalls(), (Calls{"glGetIntegerv(GL_MAJOR_VERSION, <pointer>)",
                                     "glGetIntegerv(GL_MINOR_VERSION, <pointer>)",
                                     "glGetIntegerv(GL_CONTEXT_PROFILE_MASK, <pointer>)",
                                     "glGetString(GL_VENDOR)",
                                     "glGetString(GL_RENDERER)",
                                     "glGetIntegerv(GL_NUM_EXTENSIONS, <pointer>)",
                                     "glGetStringi(GL_EXTENSIONS, 0)",
                                     "glGetIntegerv(GL_MAX_VIEWPORT_DIMS, <pointer>)",
                                     "glGetIntegerv(GL_MAX_TEXTURE_SIZE, <pointer>)",
                                     "glGetIntegerv(GL_MAX_3D_TEXTURE_SIZE, <pointer>)",
                                     "glGetIntegerv(GL_MAX_VERTEX_ATTRIBS, <pointer>)",
                                     "glGetIntegerv(GL_MAX_UNIFORM_BLOCK_SIZE, <pointer>)",
                                     "glGetIntegeri_v(GL_MAX_COMPUTE_WORK_GROUP_COUNT, 0, <pointer>)",
                                     "glGetIntegeri_v(GL_MAX_COMPUTE_WORK_GROUP_COUNT, 1, <pointer>)",
                                     "glGetIntegeri_v(GL_MAX_COMPUTE_WORK_GROUP_COUNT, 2, <pointer>)",
                                     "glGetIntegeri_v(GL_MAX_COMPUTE_WORK_GROUP_SIZE, 0, <pointer>)",
                                     "glGetIntegeri_v(GL_MAX_COMPUTE_WORK_GROUP_SIZE, 1, <pointer>)",
                                     "glGetIntegeri_v(GL_MAX_COMPUTE_WORK_GROUP_SIZE, 2, <pointer>)",
                                     "glGetIntegerv(GL_MAX_COMPUTE_WORK_GROUP_INVOCATIONS, <pointer>)",
                                     "glGetIntegerv(GL_MAX_TEXTURE_COORDS, <pointer>)"}));
}

TEST(ContextProbe, WritesLimitsAndFixedFigures)
{
    RecordingGL gl;
    gl.answer(GL_CONTEXT_PROFILE_MASK, std::int64_t{1});
    gl.answerString(GL_RENDERER, "The Device");
    gl.answer(GL_MAX_VIEWPORT_DIMS, std::vector<std::int64_t>{100, 200});
    gl.answer(GL_MAX_TEXTURE_SIZE, std::int64_t{1000});
    gl.answer(GL_MAX_3D_TEXTURE_SIZE, std::int64_t{300});
    gl.answer(GL_MAX_VERTEX_ATTRIBS, std::int64_t{17});
    gl.answer(GL_MAX_UNIFORM_BLOCK_SIZE, std::int64_t{65536});
    gl.answer(GL_MAX_COMPUTE_WORK_GROUP_COUNT, std::vector<std::int64_t>{7, 8, 9});
    gl.answer(GL_MAX_COMPUTE_WORK_GROUP_SIZE, std::vector<std::int64_t>{64, 32, 16});
    gl.answer(GL_MAX_COMPUTE_WORK_GROUP_INVOCATIONS, std::int64_t{512});
    gl.answer(GL_MAX_TEXTURE_COORDS, std::int64_t{99});
    const ContextInfo info = probeCurrentContext();
    EXPECT_EQ(info.version, 460);
    EXPECT_EQ(info.profile, 1);
    EXPECT_EQ(info.renderer, "The Device");
    EXPECT_EQ(info.maxViewportDims, SbVec2i32(100, 200));
    EXPECT_EQ(info.maxTextureSize, 1000);
    EXPECT_EQ(info.max3DTextureSize, 300);
    EXPECT_EQ(info.maxVertexAttribs, 17);
    EXPECT_EQ(info.maxUniformBlockSize, 65536);
    EXPECT_EQ(info.maxComputeWorkGroupCount, SbVec3i32(7, 8, 9));
    EXPECT_EQ(info.maxComputeWorkGroupSize, SbVec3i32(64, 32, 16));
    EXPECT_EQ(info.maxComputeWorkGroupInvocations, 512);
    EXPECT_EQ(info.maxConstant32, 32);
    EXPECT_EQ(info.maxConstantFour, 4);
    EXPECT_EQ(info.maxTextureCoords, 8);
    EXPECT_EQ(info.maxConstant16, 16);
    EXPECT_EQ(info.maxConstantEight0, 8);
    EXPECT_EQ(info.maxConstantEight1, 8);
    EXPECT_EQ(info.maxConstantEight2, 8);
    EXPECT_EQ(info.isVersion46, 1);
    EXPECT_EQ(info.shadingLanguageVersion, 460);
}

TEST(ContextProbe, SettingGL41MakesA46DriverA41One)
{
    const Preference setting("KVR_RENDERENGINE_RENDERER", "gl41");
    RecordingGL gl;
    gl.setVersion(4, 6);
    gl.setExtensions({"GL_ARB_shader_image_load_store"});
    LogLines log;
    const ContextInfo info = probeCurrentContext();
    EXPECT_EQ(info.version, 410);
    EXPECT_EQ(info.isVersion46, 0);
    EXPECT_EQ(info.shadingLanguageVersion, 410);
    EXPECT_EQ(info.hasDoublePrecision, 1);
    EXPECT_EQ(info.hasAtomicCounters, 0);
    EXPECT_EQ(info.hasImageLoadStore, 1);
    EXPECT_EQ(info.hasShadingLanguage420Pack, 0);
    EXPECT_EQ(log.take(), Calls{});
}

TEST(ContextProbe, VersionBelow41IsLoggedAndTheRunGoesOn)
{
    RecordingGL gl;
    gl.setVersion(3, 3);
    gl.setExtensions({"GL_ARB_gpu_shader_fp64"});
    LogLines log;
    const ContextInfo info = probeCurrentContext();
    EXPECT_EQ(log.take(), Calls{"error: Kavelor 10 requires at least OpenGL 4.1 support while this device only "
                                "supports OpenGL version 3.3"});
    EXPECT_EQ(info.version, 330);
    EXPECT_EQ(info.hasDoublePrecision, 1);
    EXPECT_EQ(info.maxConstant32, 32);
}

TEST(ContextProbe, BothMemoryFlagsStandForOneExtension)
{
    RecordingGL gl;
    gl.setExtensions({"GL_NVX_gpu_memory_info", "GL_NV_shader_atomic_int64"});
    ContextInfo info = probeCurrentContext();
    EXPECT_EQ(info.hasNvxMemoryInfo, 1);
    EXPECT_EQ(info.hasMemoryInfo, 1);
    EXPECT_EQ(info.hasAtomicInt64, 1);
    gl.setExtensions({"GL_ATI_meminfo"});
    info = probeCurrentContext();
    EXPECT_EQ(info.hasNvxMemoryInfo, 0);
    EXPECT_EQ(info.hasMemoryInfo, 0);
    EXPECT_EQ(info.hasAtomicInt64, 0);
}

TEST(ContextProbe, VendorTagsAreSubstringsWithTheirCase)
{
    RecordingGL gl;
    const auto tagOf = [&gl](const char* vendor)
    {
        gl.answerString(GL_VENDOR, vendor);
        return probeCurrentContext().vendor;
    };
    EXPECT_EQ(tagOf("NVIDIA Corporation"), "GPU_NVIDIA");
    EXPECT_EQ(tagOf("ATI Technologies Inc."), "GPU_ATI");
    EXPECT_EQ(tagOf("Intel"), "GPU_INTEL");
    EXPECT_EQ(tagOf("Mesa/X.org"), "GPU_MESA");
    EXPECT_EQ(tagOf("A COOPERATION"), "GPU_ATI");
    EXPECT_EQ(tagOf("Some Corporation"), "");
    EXPECT_EQ(tagOf("nvidia"), "");
    EXPECT_EQ(tagOf("Mesa"), "");
    // The first row wins.
    EXPECT_EQ(tagOf("Intel NVIDIA"), "GPU_NVIDIA");
}

TEST(ContextProbe, IntelAndMesaReportNoCompression)
{
    RecordingGL gl;
    gl.setExtensions(
        {"GL_EXT_texture_compression_s3tc", "GL_EXT_texture_compression_latc", "GL_ARB_texture_compression_rgtc"});
    const auto compressions = [&gl](const char* vendor)
    {
        gl.answerString(GL_VENDOR, vendor);
        const ContextInfo info = probeCurrentContext();
        return info.hasCompressionS3tc + info.hasCompressionLatc + info.hasCompressionRgtc;
    };
    EXPECT_EQ(compressions("NVIDIA"), 3);
    EXPECT_EQ(compressions("Intel"), 0);
    EXPECT_EQ(compressions("Mesa/X.org"), 0);
    EXPECT_EQ(compressions("Other"), 3);
}

} // namespace
} // namespace renderengine
