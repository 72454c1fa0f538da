#include "platform/PlatformLayer.h"
#include "support/LogLines.h"
#include "support/ScriptedPlatform.h"

#include <renderengine/ClearTargetProperties.h>
#include <renderengine/GLUtils.h>
#include <renderengine/GfxStateProperties.h>
#include <renderengine/WGLConstants.h>

#include <glbinding/RecordingGL.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <kavelor/SoError.h>
#include <kavelor/SoPreferences.h>

#include <locale>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace renderengine
{
namespace
{

using glbinding::RecordingGL;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using testing::LogLines;
using ::testing::Not;
using ::testing::StartsWith;
using Calls = std::vector<std::string>;

TEST(GLUtils, MakeCurrentThatSucceedsAtTheFifthTrySaysNothing)
{
    ScriptedPlatform platform;
    LogLines log;
    HDC display = platform.makeHostDisplay();
    HGLRC context = platform.createContext(display);
    platform.takeCalls();
    platform.failingBinds = 4;
    EXPECT_TRUE(utils::GL::makeCurrent(display, 0, context));
    EXPECT_EQ(platform.takeCalls(), Calls(5, "wglMakeCurrent(hostDisplay, context1)"));
    EXPECT_EQ(utils::GL::getCurrentContext(), context);
    EXPECT_EQ(log.take(), Calls{});
}

TEST(GLUtils, MakeCurrentGivesUpAfterFiveTries)
{
    ScriptedPlatform platform;
    LogLines log;
    HDC display = platform.makeHostDisplay();
    HGLRC context = platform.createContext(display);
    platform.takeCalls();
    platform.failingBinds = 5;
    EXPECT_FALSE(utils::GL::makeCurrent(display, 0, context));
    EXPECT_EQ(platform.calls().size(), 5u);
    std::ostringstream line;
    // The parenthesis stays open.
    line << "error: renderengine::utils::GL::makeCurrent Thread " << std::this_thread::get_id() << " Context "
         << static_cast<const void*>(context) << " Display " << static_cast<const void*>(display)
         << " (error 2000: scripted failure";
    EXPECT_EQ(log.take(), Calls{line.str()});
    EXPECT_EQ(utils::GL::getCurrentContext(), nullptr);
}

/// Digits in groups of three, as many a host's locale has them.
class GroupedDigits : public std::numpunct<char>
{
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

TEST(GLUtils, NumbersInAReportAreNotGroupedByTheLocaleOfTheHost)
{
    ScriptedPlatform platform;
    LogLines log;
    HDC display = platform.makeHostDisplay();
    HGLRC context = platform.createContext(display);
    platform.failingBinds = 5;
    const std::locale host = std::locale::global(std::locale(std::locale::classic(), new GroupedDigits));
    EXPECT_FALSE(utils::GL::makeCurrent(display, 0, context));
    std::locale::global(host);
    EXPECT_THAT(log.take(), ElementsAre(Not(HasSubstr("."))));
}

TEST(GLUtils, ErrorWithoutATextIsUnknown)
{
    ScriptedPlatform platform;
    platform.errorMessage = "";
    LogLines log;
    EXPECT_FALSE(utils::GL::destroyContext(nullptr, nullptr));
    EXPECT_EQ(log.take(),
              Calls{"error: renderengine::utils::GL::destroyContext wglDeleteContext (error 2000: <unknown>"});
}

TEST(GLUtils, DestroyContextOfNullReportsWithoutADelete)
{
    ScriptedPlatform platform;
    LogLines log;
    EXPECT_FALSE(utils::GL::destroyContext(platform.makeHostDisplay(), nullptr));
    EXPECT_EQ(log.take(),
              Calls{"error: renderengine::utils::GL::destroyContext wglDeleteContext (error 2000: scripted failure"});
    EXPECT_EQ(platform.takeCalls(), Calls{});
}

TEST(GLUtils, DestroyContextOfNullDropsTheTablesKeptWithoutAContext)
{
    ScriptedPlatform platform;
    LogLines log;
    glewGetContext()->majorVersion = 99;
    EXPECT_EQ(glewGetContext()->majorVersion, 99);
    EXPECT_FALSE(utils::GL::destroyContext(nullptr, nullptr));
    EXPECT_EQ(glewGetContext()->majorVersion, 0);
}

TEST(GLUtils, DestroyContextReportsARefusal)
{
    ScriptedPlatform platform;
    platform.failDeleteContext = true;
    LogLines log;
    HGLRC context = platform.createContext(platform.makeHostDisplay());
    EXPECT_FALSE(utils::GL::destroyContext(nullptr, context));
    EXPECT_EQ(log.take(),
              Calls{"error: renderengine::utils::GL::destroyContext wglDeleteContext (error 2000: scripted failure"});
}

TEST(GLUtils, CreatesAFakeContextForTheLookupWhenNoneIsCurrent)
{
    ScriptedPlatform platform;
    LogLines log;
    HDC display = platform.makeHostDisplay();
    HGLRC context = utils::GL::createContextAttribs(display, nullptr, nullptr, true, {});
    EXPECT_EQ(platform.nameOf(context), "context2");
    EXPECT_EQ(platform.takeCalls(),
              (Calls{"wglCreateContext(hostDisplay) -> context1", "wglMakeCurrent(hostDisplay, context1)",
                     "wglGetProcAddress(wglCreateContextAttribsARB)", "wglMakeCurrent(hostDisplay, null)",
                     "wglDeleteContext(context1)", "wglCreateContextAttribsARB(hostDisplay, null) -> context2",
                     "wglMakeCurrent(hostDisplay, context2)", "wglMakeCurrent(null, null)"}));
    EXPECT_FALSE(platform.contextRequests().front().hasAttributes);
    EXPECT_EQ(log.take(), Calls{});

    // The second context needs no look-up.
    utils::GL::createContextAttribs(display, nullptr, context, true, {WGL_CONTEXT_FLAGS_ARB, 1, 0});
    EXPECT_EQ(platform.takeCalls(), (Calls{"wglCreateContextAttribsARB(hostDisplay, context2) -> context3",
                                           "wglMakeCurrent(hostDisplay, context3)", "wglMakeCurrent(null, null)"}));
    EXPECT_EQ(platform.contextRequests().back().attributes, (std::vector<int>{WGL_CONTEXT_FLAGS_ARB, 1}));
}

TEST(GLUtils, CreateContextAttribsPutsBackWhatWasCurrent)
{
    ScriptedPlatform platform;
    HDC hostDisplay = platform.makeHostDisplay();
    HGLRC hostContext = platform.makeHostContextCurrent(hostDisplay);
    HDC display = platform.makeHostDisplay();
    utils::GL::createContextAttribs(display, nullptr, hostContext, true, {});
    EXPECT_EQ(platform.calls().back(), "wglMakeCurrent(hostDisplay, hostContext)");
    EXPECT_EQ(platform.callsMatching("wglCreateContext("), Calls{});
    EXPECT_EQ(utils::GL::getCurrentContext(), hostContext);
    EXPECT_EQ(utils::GL::getCurrentDisplay(), hostDisplay);
}

TEST(GLUtils, DriverWithoutContextAttribsGetsOneLookup)
{
    ScriptedPlatform platform;
    platform.hasCreateContextAttribs = false;
    LogLines log;
    HDC display = platform.makeHostDisplay();
    EXPECT_EQ(utils::GL::createContextAttribs(display, nullptr, nullptr, true, {}), nullptr);
    EXPECT_EQ(log.take(),
              Calls{"error: renderengine::utils::GL::createContext: wglCreateContextAttribsARB cannot be resolved"});
    EXPECT_EQ(platform.callsMatching("wglGetProcAddress").size(), 1u);
    EXPECT_EQ(platform.liveContexts(), 0u);
    platform.takeCalls();
    EXPECT_EQ(utils::GL::createContextAttribs(display, nullptr, nullptr, true, {}), nullptr);
    EXPECT_EQ(platform.takeCalls(), Calls{});
    EXPECT_EQ(log.take(), Calls{});
}

TEST(GLUtils, FakeContextThatCannotBeCreatedIsLogged)
{
    ScriptedPlatform platform;
    platform.failCreateContext = true;
    LogLines log;
    EXPECT_EQ(utils::GL::createContextAttribs(platform.makeHostDisplay(), nullptr, nullptr, true, {}), nullptr);
    EXPECT_EQ(log.take(), Calls{"error: Can't create context"});
    EXPECT_EQ(utils::GL::createContextAttribs(platform.makeHostDisplay(), nullptr, nullptr, true, {}), nullptr);
    EXPECT_EQ(log.take(), Calls{});
}

TEST(GLUtils, FakeContextThatCannotBeBoundIsDeletedAndLogged)
{
    ScriptedPlatform platform;
    platform.failingBinds = 1;
    LogLines log;
    EXPECT_EQ(utils::GL::createContextAttribs(platform.makeHostDisplay(), nullptr, nullptr, true, {}), nullptr);
    EXPECT_EQ(log.take(), Calls{"error: Can't bind fake context"});
    EXPECT_EQ(platform.calls().back(), "wglDeleteContext(context1)");
    EXPECT_EQ(platform.liveContexts(), 0u);
}

TEST(GLUtils, RefusedContextIsReportedUnderTheNameOfCreateContext)
{
    ScriptedPlatform platform;
    platform.failCreateContextAttribs = true;
    LogLines log;
    EXPECT_EQ(utils::GL::createContextAttribs(platform.makeHostDisplay(), nullptr, nullptr, true, {}), nullptr);
    EXPECT_EQ(
        log.take(),
        Calls{
            "error: renderengine::utils::GL::createContext wglCreateContextAttribsARB (error 2000: scripted failure"});
}

TEST(GLUtils, CreateContextEndsItsListAtTheFirstEntry)
{
    ScriptedPlatform platform;
    HDC display = platform.makeHostDisplay();
    SoPreferences::setBool("KVR_OPENGL_DEBUG", true);
    EXPECT_NE(utils::GL::createContext(display, nullptr, nullptr, true, 3), nullptr);
    SoPreferences::unset("KVR_OPENGL_DEBUG");
    ASSERT_EQ(platform.contextRequests().size(), 1u);
    EXPECT_TRUE(platform.contextRequests().front().hasAttributes);
    EXPECT_TRUE(platform.contextRequests().front().attributes.empty());
}

TEST(GLUtils, VisualInfoDescribesThePixelFormatOfTheDisplay)
{
    ScriptedPlatform platform;
    platform.formats.push_back(ScriptedPlatform::PixelFormat{ScriptedPlatform::defaultFormat(), 0});
    platform.formats[1].descriptor.cDepthBits = 32;
    HDC display = platform.makeHostDisplay(2);
    PIXELFORMATDESCRIPTOR* visualInfo = utils::GL::getWindowVisualInfo(display, 0);
    ASSERT_NE(visualInfo, nullptr);
    EXPECT_EQ(visualInfo->cDepthBits, 32);
    utils::GL::releaseVisualInfo(visualInfo);
    visualInfo = utils::GL::getWindowVisualInfo(display, 0, nullptr);
    ASSERT_NE(visualInfo, nullptr);
    EXPECT_EQ(visualInfo->cDepthBits, 32);
    utils::GL::releaseVisualInfo(visualInfo);
    utils::GL::releaseVisualInfo(nullptr);
    EXPECT_EQ(platform.takeCalls(), Calls(2, "DescribePixelFormat(2)"));
}

TEST(GLUtils, DrawableIsAlwaysZeroAndADisplayIsValidWhenNotNull)
{
    ScriptedPlatform platform;
    EXPECT_EQ(utils::GL::getCurrentDrawable(), 0);
    EXPECT_FALSE(utils::GL::isValidDisplay(nullptr));
    EXPECT_TRUE(utils::GL::isValidDisplay(platform.makeHostDisplay()));
    EXPECT_EQ(utils::GL::getCurrentContext(), nullptr);
    EXPECT_EQ(utils::GL::getCurrentDisplay(), nullptr);
}

TEST(GLUtils, EachContextHasTablesOfItsOwn)
{
    ScriptedPlatform platform;
    HDC display = platform.makeHostDisplay();
    HGLRC first = platform.createContext(display);
    HGLRC second = platform.createContext(display);
    utils::GL::makeCurrent(display, 0, first);
    GLEWContextStruct* firstTable = glewGetContext();
    EXPECT_EQ(glewGetContext(), firstTable);
    EXPECT_EQ(glbinding::t_table, firstTable);
    EXPECT_NE(wglewGetContext(), nullptr);
    utils::GL::makeCurrent(display, 0, second);
    EXPECT_NE(glewGetContext(), firstTable);
    EXPECT_EQ(glbinding::t_table, glewGetContext());
    utils::GL::makeCurrent(display, 0, nullptr);
    EXPECT_EQ(glbinding::t_table, &glbinding::g_silentTable);
}

TEST(GLUtils, DestroyedContextLeavesNoTableBehind)
{
    ScriptedPlatform platform;
    HDC display = platform.makeHostDisplay();
    HGLRC context = platform.createContext(display);
    utils::GL::makeCurrent(display, 0, context);
    EXPECT_EQ(glbinding::t_table, glewGetContext());
    EXPECT_TRUE(utils::GL::destroyContext(display, context));
    EXPECT_EQ(glbinding::t_table, &glbinding::g_silentTable);
}

TEST(GLUtils, InitStartsTheBindingInAHiddenContext)
{
    ScriptedPlatform platform;
    RecordingGL gl;
    init();
    EXPECT_EQ(platform.callsMatching("wglCreateContextAttribsARB"),
              Calls{"wglCreateContextAttribsARB(display1, null) -> context2"});
    EXPECT_EQ(platform.callsMatching("wglDeleteContext"),
              (Calls{"wglDeleteContext(context1)", "wglDeleteContext(context2)"}));
    EXPECT_EQ(platform.liveContexts(), 0u);
    EXPECT_EQ(platform.liveWindows(), 0u);
    EXPECT_EQ(utils::GL::getCurrentContext(), nullptr);
    finish();
}

TEST(GLUtils, InitSetsTheLogUpBeforeTheBinding)
{
    ScriptedPlatform platform;
    platform.hasCreateContextAttribs = false;
    std::vector<std::string> messages;
    SoError::Handler former =
        SoError::setHandler([&messages](const SbString& message) { messages.push_back(message.toStdString()); });
    init();
    SoError::setHandler(former);
    ASSERT_EQ(messages.size(), 2u);
    EXPECT_THAT(messages[0],
                StartsWith("RenderEngine: [error] renderengine::utils::GL::createContext: wglCreateContextAttribsARB "
                           "cannot be resolved"));
    EXPECT_THAT(messages[1], StartsWith("RenderEngine: [error] Can't create context"));
    finish();
}

TEST(GLUtils, InitPassesOnThatThereIsNoWindow)
{
    ScriptedPlatform platform;
    platform.failCreateWindow = true;
    EXPECT_THROW(init(), std::runtime_error);
    platform.failCreateWindow = false;
    // The next call tries again.
    platform.takeCalls();
    init();
    EXPECT_EQ(platform.callsMatching("CreateWindowExA").size(), 1u);
    finish();
}

TEST(GLUtils, InitStartsTheBindingOnce)
{
    ScriptedPlatform platform;
    RecordingGL gl;
    platform.glFunction = [](const char* name) -> void*
    {
        const GLEWContextStruct& table = *RecordingGL::table();
        const std::string wanted = name;
        if (wanted == "glGetString")
        {
            return reinterpret_cast<void*>(table.kvr_common__glewGetString);
        }
        if (wanted == "glGetStringi")
        {
            return reinterpret_cast<void*>(table.kvr_common__glewGetStringi);
        }
        return wanted == "glGetIntegerv" ? reinterpret_cast<void*>(table.kvr_common__glewGetIntegerv) : nullptr;
    };
    init();
    EXPECT_EQ(platform.callsMatching("CreateWindowExA").size(), 1u);
    platform.takeCalls();
    init();
    EXPECT_EQ(platform.takeCalls(), Calls{});
    finish();
}

TEST(GLUtils, InitWithACurrentContextMakesNone)
{
    ScriptedPlatform platform;
    platform.makeHostContextCurrent(platform.makeHostDisplay());
    init();
    EXPECT_EQ(platform.callsMatching("CreateWindowExA"), Calls{});
    EXPECT_EQ(platform.callsMatching("wglCreateContext"), Calls{});
    finish();
}

TEST(GLUtils, FailedBindingStartIsTriedAgain)
{
    ScriptedPlatform platform;
    SoPreferences::setInt("KVR_RENDERENGINE_LOG_TYPE", 1);
    init();
    LogLines log;
    // Without GL functions the binding finds no version: error 1.
    init();
    EXPECT_EQ(log.take(), Calls{"error: Can't initialize context, glewInit failed with error: 1"});
    platform.failCreateContextAttribs = true;
    init();
    EXPECT_EQ(
        log.take(),
        (Calls{"error: renderengine::utils::GL::createContext wglCreateContextAttribsARB (error 2000: scripted failure",
               "error: Can't create context"}));
    platform.failCreateContextAttribs = false;
    platform.takeCalls();
    platform.failingBinds = 100;
    init();
    EXPECT_THAT(log.take(), Contains("error: Can't bind fake context"));
    EXPECT_EQ(platform.liveContexts(), 0u);
}

TEST(GLUtils, ClearSetsTheValuesOfTheMaskInOrder)
{
    RecordingGL gl;
    ClearTargetProperties properties;
    properties.colors[0] = SbVec4f(0.25f, 0.5f, 0.75f, 1.0f);
    properties.depth = 0.5f;
    properties.stencil = 3;
    properties.flags = 7;
    utils::GL::clearCurrentFrameBuffer(properties);
    EXPECT_EQ(gl.takeCalls(), (Calls{"glClearColor(0.25, 0.5, 0.75, 1)", "glClearDepth(0.5)", "glClearStencil(3)",
                                     "glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT)"}));
}

TEST(GLUtils, ClearWithAnEmptyMaskStillClears)
{
    RecordingGL gl;
    ClearTargetProperties properties;
    properties.flags = 0;
    utils::GL::clearCurrentFrameBuffer(properties);
    ASSERT_EQ(gl.calls().size(), 1u);
    EXPECT_EQ(gl.calls().front(), "glClear(0)");
}

TEST(GLUtils, DepthParametersOfADisabledTestOnlyDisableIt)
{
    RecordingGL gl;
    DepthStencilProperties properties;
    properties.depthTest = false;
    utils::GL::setDepthParameters(properties);
    EXPECT_EQ(gl.takeCalls(), Calls{"glDisable(GL_DEPTH_TEST)"});
}

TEST(GLUtils, DepthParametersSetTestMaskAndFunction)
{
    RecordingGL gl;
    DepthStencilProperties properties;
    properties.depthTest = true;
    properties.depthWrite = false;
    properties.depthFunc = 2;
    utils::GL::setDepthParameters(properties);
    EXPECT_EQ(gl.takeCalls(), (Calls{"glEnable(GL_DEPTH_TEST)", "glDepthMask(GL_FALSE)", "glDepthFunc(GL_LEQUAL)"}));
}

} // namespace
} // namespace renderengine
