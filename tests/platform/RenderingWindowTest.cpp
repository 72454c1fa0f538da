#include "platform/RenderingWindow.h"
#include "platform/DebugErrors.h"
#include "support/ScriptedPlatform.h"

#include <renderengine/WGLConstants.h>

#include <gtest/gtest.h>
#include <kavelor/SoPreferences.h>

#include <algorithm>
#include <memory>
#include <stdexcept>

namespace renderengine
{
namespace
{

using Calls = std::vector<std::string>;

/// The text of the exception that making a window throws, empty when it throws none.
std::string failure()
{
    try
    {
        RenderingWindow window(SbVec2i32(1, 1));
    }
    catch (const std::runtime_error& error)
    {
        return error.what();
    }
    return "";
}

TEST(RenderingWindow, RegistersTheClassAndMakesAHiddenWindow)
{
    ScriptedPlatform platform;
    const RenderingWindow window(SbVec2i32(1, 1));
    const Calls calls = platform.takeCalls();
    ASSERT_GE(calls.size(), 4u);
    EXPECT_EQ(Calls(calls.begin(), calls.begin() + 4),
              (Calls{"GetClassInfoA(RenderingWindow)", "RegisterClassA(RenderingWindow, 0x23)",
                     "CreateWindowExA(RenderingWindow, RenderingWindow, 0x6000000, 0, 0, 1, 1) -> window1",
                     "GetDC(window1)"}));
    EXPECT_EQ(calls.back(), "SetPixelFormat(display1, 1)");
    EXPECT_EQ(window.getDrawable(), 0);
    EXPECT_EQ(platform.nameOf(window.getDisplay()), "display1");
    EXPECT_EQ(window.getFormat().getVisualInfoId(), 1);
}

TEST(RenderingWindow, ReleasesDisplayWindowAndClassInThisOrder)
{
    ScriptedPlatform platform;
    auto window = std::make_unique<RenderingWindow>(SbVec2i32(1, 1));
    platform.takeCalls();
    window.reset();
    const Calls calls = platform.takeCalls();
    ASSERT_GE(calls.size(), 3u);
    EXPECT_EQ(Calls(calls.begin(), calls.begin() + 3),
              (Calls{"ReleaseDC(window1, display1)", "DestroyWindow(window1)", "UnregisterClassA(RenderingWindow)"}));
    EXPECT_EQ(platform.liveWindows(), 0u);
    EXPECT_FALSE(platform.isClassRegistered());
}

TEST(RenderingWindow, TwoWindowsShareTheClassUntilTheLastIsGone)
{
    ScriptedPlatform platform;
    auto first = std::make_unique<RenderingWindow>(SbVec2i32(1, 1));
    auto second = std::make_unique<RenderingWindow>(SbVec2i32(1, 1));
    EXPECT_EQ(platform.callsMatching("RegisterClassA").size(), 1u);
    EXPECT_EQ(platform.liveWindows(), 2u);
    first.reset();
    EXPECT_TRUE(platform.isClassRegistered());
    EXPECT_EQ(platform.nameOf(second->getDisplay()), "display2");
    EXPECT_EQ(platform.liveWindows(), 1u);
    second.reset();
    EXPECT_FALSE(platform.isClassRegistered());
}

TEST(RenderingWindow, ThrowsWhenTheClassCannotBeRegistered)
{
    ScriptedPlatform platform;
    platform.failRegisterClass = true;
    EXPECT_EQ(failure(), "can't create window, class register failed");
}

TEST(RenderingWindow, ThrowsWhenTheWindowCannotBeCreated)
{
    ScriptedPlatform platform;
    platform.failCreateWindow = true;
    EXPECT_EQ(failure(), "can't create window");
}

TEST(RenderingWindow, ThrowsWithoutADeviceContext)
{
    ScriptedPlatform platform;
    platform.failGetDC = true;
    EXPECT_EQ(failure(), "can't create window, can't retrieve window's DC");
    EXPECT_EQ(platform.liveWindows(), 0u);
}

TEST(RenderingWindow, ThrowsWithoutAPixelFormatAndReleasesTheWindow)
{
    ScriptedPlatform platform;
    platform.formats[0].descriptor.cStencilBits = 0;
    EXPECT_EQ(failure(), "can't create visual for window");
    EXPECT_EQ(platform.callsMatching("ChoosePixelFormat").size(), 4u);
    EXPECT_EQ(platform.liveWindows(), 0u);
    EXPECT_FALSE(platform.isClassRegistered());
}

TEST(RenderingWindow, TheFirstFallBackGivesUpDrawingWithGDI)
{
    SoPreferences::setBool("KVR_PFD_SUPPORT_GDI", true);
    ScriptedPlatform platform;
    EXPECT_EQ(failure(), "can't create visual for window");
    platform.makeHostContextCurrent(platform.makeHostDisplay(1));
    platform.takeCalls();
    const RenderingWindow window(SbVec2i32(1, 1));
    SoPreferences::unset("KVR_PFD_SUPPORT_GDI");
    ASSERT_EQ(platform.attributeLists().size(), 2u);
    const auto asksForGDI = [](const std::vector<int>& list)
    { return std::find(list.begin(), list.end(), WGL_SUPPORT_GDI_ARB) != list.end(); };
    EXPECT_TRUE(asksForGDI(platform.attributeLists()[0]));
    EXPECT_FALSE(asksForGDI(platform.attributeLists()[1]));
    EXPECT_EQ(platform.callsMatching("SetPixelFormat"), Calls{"SetPixelFormat(hostDisplay, 1)"});
}

TEST(RenderingWindow, ShallowDepthComesThroughTheSecondFallBackOnTheCurrentDisplay)
{
    ScriptedPlatform platform;
    platform.formats[0].descriptor.cDepthBits = 16;
    platform.makeHostContextCurrent(platform.makeHostDisplay(1));
    // Acceleration takes the query, which finds nothing for 24 bits; the classic path then finds an inexact format.
    const RenderingWindow window(SbVec2i32(1, 1));
    EXPECT_EQ(window.getFormat().getDepthBits(), 16);
    EXPECT_EQ(platform.nameOf(window.getFormat().getDisplay()), "hostDisplay");
    EXPECT_EQ(platform.callsMatching("SetPixelFormat"), Calls{"SetPixelFormat(hostDisplay, 1)"});
}

TEST(RenderingWindow, ShallowDepthIsNoHelpWithoutACurrentDisplay)
{
    ScriptedPlatform platform;
    platform.formats[0].descriptor.cDepthBits = 16;
    EXPECT_EQ(failure(), "can't create visual for window");
    EXPECT_EQ(platform.callsMatching("ChoosePixelFormat"),
              (Calls{"ChoosePixelFormat(display1)", "ChoosePixelFormat(null)", "ChoosePixelFormat(null)",
                     "ChoosePixelFormat(null)"}));
}

TEST(RenderingWindow, FallBacksAreSingleChangesFromTheDefault)
{
    ScriptedPlatform platform;
    platform.formats[0].descriptor.cRedBits = 5;
    platform.formats[0].descriptor.cGreenBits = 5;
    platform.formats[0].descriptor.cBlueBits = 5;
    platform.makeHostContextCurrent(platform.makeHostDisplay(1));
    const RenderingWindow window(SbVec2i32(1, 1));
    EXPECT_EQ(window.getFormat().getRedBits(), 5);
    EXPECT_EQ(window.getFormat().getDepthBits(), 24);
}

} // namespace
} // namespace renderengine
