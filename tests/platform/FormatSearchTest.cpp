#include "platform/DebugErrors.h"
#include "support/ScriptedPlatform.h"

#include <renderengine/Format.h>
#include <renderengine/WGLConstants.h>

#include <gtest/gtest.h>

#include <algorithm>

namespace renderengine
{
namespace
{

using testing::DebugErrors;
using utils::GL::Format;
using Calls = std::vector<std::string>;

/// A display of the host's, with a context current on it, so that a search takes the WGL query.
struct HostPlatform : ScriptedPlatform
{
    HostPlatform() : display(makeHostDisplay(0)) { makeHostContextCurrent(display); }

    /// Formats of 0, 2, 4, ... samples up to the given count.
    void offerSamples(int most)
    {
        for (int samples = 2; samples <= most; samples *= 2)
        {
            formats.push_back(PixelFormat{defaultFormat(), samples});
        }
    }

    HDC display;
};

TEST(FormatSearch, TakesTheClassicPathWithoutACurrentContext)
{
    ScriptedPlatform platform;
    Format format(platform.makeHostDisplay(0));
    platform.takeCalls();
    EXPECT_TRUE(format.activate());
    EXPECT_EQ(platform.callsMatching("wgl"), Calls{});
    EXPECT_EQ(platform.callsMatching("ChoosePixelFormat"), Calls{"ChoosePixelFormat(hostDisplay)"});
    EXPECT_EQ(platform.calls().back(), "SetPixelFormat(hostDisplay, 1)");
    EXPECT_EQ(format.getVisualInfoId(), 1);
}

TEST(FormatSearch, TakesTheQueryWithACurrentContext)
{
    HostPlatform platform;
    Format format(platform.display);
    EXPECT_TRUE(format.activate());
    EXPECT_EQ(platform.callsMatching("wgl"),
              (Calls{"wglGetPixelFormatAttribivARB(hostDisplay, 0)", "wglChoosePixelFormatARB(hostDisplay, 256)"}));
    EXPECT_EQ(platform.callsMatching("ChoosePixelFormat"), Calls{});
}

TEST(FormatSearch, AsksInTheOrderOfTheDefaultWishes)
{
    HostPlatform platform;
    EXPECT_TRUE(Format(platform.display).isAvailable());
    EXPECT_EQ(platform.attributeLists(),
              (std::vector<std::vector<int>>{{WGL_ACCELERATION_ARB,   WGL_FULL_ACCELERATION_ARB,
                                              WGL_SUPPORT_OPENGL_ARB, 1,
                                              WGL_DRAW_TO_WINDOW_ARB, 1,
                                              WGL_RED_BITS_ARB,       8,
                                              WGL_GREEN_BITS_ARB,     8,
                                              WGL_BLUE_BITS_ARB,      8,
                                              WGL_DOUBLE_BUFFER_ARB,  1,
                                              WGL_DEPTH_BITS_ARB,     24,
                                              WGL_PIXEL_TYPE_ARB,     WGL_TYPE_RGBA_ARB,
                                              WGL_ALPHA_BITS_ARB,     8,
                                              WGL_STENCIL_BITS_ARB,   8}}));
}

TEST(FormatSearch, AsksInTheOrderOfAllWishes)
{
    HostPlatform platform;
    Format format(platform.display);
    format.setDoubleBuffersEnabled(false);
    format.setDepthEnabled(false);
    format.setFloatColorBufferEnabled(true);
    format.setAlphaEnabled(false);
    format.setOverlayEnabled(true);
    format.setStereoEnabled(true);
    format.setStencilBufferEnabled(false);
    format.setSampleBuffersEnabled(true);
    format.setSamplesCount(1);
    format.setGDISupportRequired(true);
    EXPECT_FALSE(format.isAvailable());
    ASSERT_FALSE(platform.attributeLists().empty());
    EXPECT_EQ(platform.attributeLists().front(), (std::vector<int>{WGL_ACCELERATION_ARB,    WGL_FULL_ACCELERATION_ARB,
                                                                   WGL_SUPPORT_OPENGL_ARB,  1,
                                                                   WGL_DRAW_TO_WINDOW_ARB,  1,
                                                                   WGL_RED_BITS_ARB,        8,
                                                                   WGL_GREEN_BITS_ARB,      8,
                                                                   WGL_BLUE_BITS_ARB,       8,
                                                                   WGL_DOUBLE_BUFFER_ARB,   0,
                                                                   WGL_PIXEL_TYPE_ARB,      WGL_TYPE_RGBA_FLOAT_ARB,
                                                                   WGL_ALPHA_BITS_ARB,      0,
                                                                   WGL_NUMBER_OVERLAYS_ARB, 1,
                                                                   WGL_STEREO_ARB,          1,
                                                                   WGL_SAMPLE_BUFFERS_ARB,  1,
                                                                   WGL_SAMPLES_ARB,         1,
                                                                   WGL_SUPPORT_GDI_ARB,     1}));
}

TEST(FormatSearch, HalvesTheSamplesOnceMoreAfterSuccessFromVistaOn)
{
    HostPlatform platform;
    platform.offerSamples(4);
    Format format(platform.display);
    format.setSampleBuffersEnabled(true);
    format.setSamplesCount(8);
    EXPECT_TRUE(format.isAvailable());
    ASSERT_EQ(platform.attributeLists().size(), 2u);
    EXPECT_EQ(platform.attributeLists()[0].back(), 8);
    EXPECT_EQ(platform.attributeLists()[1].back(), 4);
    const Format nearest = format.getNearest();
    EXPECT_EQ(nearest.getSamplesCount(), 2);
    EXPECT_EQ(nearest.getVisualInfoId(), 3);
}

TEST(FormatSearch, KeepsTheSamplesOfTheSuccessBeforeVista)
{
    HostPlatform platform;
    platform.majorVersion = 5;
    platform.offerSamples(4);
    Format format(platform.display);
    format.setSampleBuffersEnabled(true);
    format.setSamplesCount(8);
    EXPECT_EQ(format.getNearest().getSamplesCount(), 4);
}

TEST(FormatSearch, GoesToTheClassicPathWhenNoSampleCountIsLeft)
{
    HostPlatform platform;
    Format format(platform.display);
    format.setSampleBuffersEnabled(true);
    format.setSamplesCount(4);
    const Format nearest = format.getNearest();
    EXPECT_EQ(platform.attributeLists().size(), 2u);
    EXPECT_EQ(platform.callsMatching("ChoosePixelFormat").size(), 1u);
    EXPECT_EQ(nearest.getSamplesCount(), 4);
    EXPECT_EQ(nearest.getVisualInfoId(), 1);
}

TEST(FormatSearch, AFailedChoiceWithSamplesIsTriedWithFewer)
{
    HostPlatform platform;
    platform.failChooseARBWithSamples = true;
    Format format(platform.display);
    format.setSampleBuffersEnabled(true);
    format.setSamplesCount(4);
    EXPECT_TRUE(format.isAvailable());
    ASSERT_EQ(platform.attributeLists().size(), 2u);
    EXPECT_EQ(platform.attributeLists()[1].back(), 2);
    EXPECT_EQ(platform.callsMatching("ChoosePixelFormat").size(), 1u);
}

TEST(FormatSearch, AFailedChoiceWithoutSamplesGoesToTheClassicPath)
{
    HostPlatform platform;
    platform.failChooseARB = true;
    EXPECT_TRUE(Format(platform.display).isAvailable());
    EXPECT_EQ(platform.attributeLists().size(), 1u);
    EXPECT_EQ(platform.callsMatching("ChoosePixelFormat").size(), 1u);
}

TEST(FormatSearch, StopsAtTheFirstComposedFormat)
{
    HostPlatform platform;
    PIXELFORMATDESCRIPTOR plain = ScriptedPlatform::defaultFormat();
    plain.dwFlags &= ~static_cast<uint32_t>(PFD_SUPPORT_COMPOSITION);
    platform.formats.insert(platform.formats.begin(), ScriptedPlatform::PixelFormat{plain, 0});
    EXPECT_EQ(Format(platform.display).getNearest().getVisualInfoId(), 2);
}

TEST(FormatSearch, StopsAtTheFirstGDIFormatWhenGDIIsRequired)
{
    HostPlatform platform;
    PIXELFORMATDESCRIPTOR gdi = ScriptedPlatform::defaultFormat();
    gdi.dwFlags = (gdi.dwFlags & ~static_cast<uint32_t>(PFD_SUPPORT_COMPOSITION)) | PFD_SUPPORT_GDI;
    platform.formats.push_back(ScriptedPlatform::PixelFormat{gdi, 0});
    Format format(platform.display);
    format.setGDISupportRequired(true);
    EXPECT_EQ(format.getNearest().getVisualInfoId(), 2);
}

TEST(FormatSearch, TakesTheFirstFormatWhenNoneComposesAndNoneHasTo)
{
    HostPlatform platform;
    PIXELFORMATDESCRIPTOR plain = ScriptedPlatform::defaultFormat();
    plain.dwFlags &= ~static_cast<uint32_t>(PFD_SUPPORT_COMPOSITION);
    platform.formats = {ScriptedPlatform::PixelFormat{plain, 0}, ScriptedPlatform::PixelFormat{plain, 0}};
    Format format(platform.display);
    EXPECT_EQ(format.getNearest().getVisualInfoId(), 1);
    EXPECT_TRUE(platform.callsMatching("ChoosePixelFormat").empty());

    format.setCompositionRequired(true);
    EXPECT_FALSE(format.isAvailable());
    EXPECT_EQ(platform.callsMatching("ChoosePixelFormat").size(), 1u);
}

TEST(FormatSearch, FailedAttributeQueryEndsTheSearch)
{
    HostPlatform platform;
    platform.failAttributeQuery = true;
    DebugErrors errors;
    Format format(platform.display);
    EXPECT_EQ(format.getNearest().getVisualInfoId(), 0);
    EXPECT_EQ(errors.messages(),
              (Calls{"error Format: wglGetPixelFormatAttribivARB returned an error (code: 2000)",
                     "info renderengine::utils::GL::Format::getNearest: Couldn't get a valid pixel format\n"}));
    EXPECT_FALSE(format.activate());
    EXPECT_TRUE(platform.callsMatching("ChoosePixelFormat").empty());
    EXPECT_TRUE(platform.callsMatching("SetPixelFormat").empty());
}

TEST(FormatSearch, NoAcceleratedFormatEndsTheSearch)
{
    HostPlatform platform;
    platform.formats.clear();
    DebugErrors errors;
    EXPECT_FALSE(Format(platform.display).isAvailable());
    EXPECT_EQ(errors.messages(), Calls{"error Format: OpenGL acceleration not available on this device!"});
}

TEST(FormatSearch, AsksForColorIndicesWithoutRgb)
{
    HostPlatform platform;
    Format format(platform.display);
    format.setRgbEnabled(false);
    // The type of the pixels goes before their components.
    format.setFloatColorBufferEnabled(true);
    format.isAvailable();
    ASSERT_FALSE(platform.attributeLists().empty());
    const std::vector<int>& list = platform.attributeLists().front();
    const auto type = std::find(list.begin(), list.end(), WGL_PIXEL_TYPE_ARB);
    ASSERT_NE(type, list.end());
    EXPECT_EQ(type[1], WGL_TYPE_COLORINDEX_ARB);
}

TEST(FormatSearch, AsksForGDIFromVistaOnWhenCompositionIsNotRequired)
{
    const auto asksForGDI = [](int majorVersion, bool composition)
    {
        HostPlatform platform;
        platform.majorVersion = majorVersion;
        Format format(platform.display);
        format.setGDISupportRequired(true);
        format.setCompositionRequired(composition);
        format.isAvailable();
        const std::vector<int>& list = platform.attributeLists().front();
        return std::find(list.begin(), list.end(), WGL_SUPPORT_GDI_ARB) != list.end();
    };
    EXPECT_TRUE(asksForGDI(6, false));
    EXPECT_FALSE(asksForGDI(6, true));
    EXPECT_FALSE(asksForGDI(5, false));
}

TEST(FormatSearch, NearestLeavesTheFormatAsItIs)
{
    ScriptedPlatform platform;
    platform.formats[0].descriptor.cDepthBits = 16;
    const Format format(platform.makeHostDisplay(0));
    EXPECT_EQ(format.getNearest().getDepthBits(), 16);
    EXPECT_EQ(format.getDepthBits(), 24);
    EXPECT_EQ(format.getVisualInfo(), nullptr);
    EXPECT_EQ(format.getVisualInfoId(), 0);
}

TEST(FormatSearch, ClassicDescriptorHasTheDefaultWishes)
{
    ScriptedPlatform platform;
    EXPECT_TRUE(Format(platform.makeHostDisplay(0)).isAvailable());
    ASSERT_EQ(platform.wantedDescriptors().size(), 1u);
    const PIXELFORMATDESCRIPTOR& wanted = platform.wantedDescriptors()[0];
    EXPECT_EQ(wanted.nSize, 40);
    EXPECT_EQ(wanted.nVersion, 1);
    EXPECT_EQ(wanted.dwFlags, PFD_DRAW_TO_WINDOW | PFD_SUPPORT_OPENGL | PFD_DOUBLEBUFFER | PFD_SUPPORT_COMPOSITION);
    EXPECT_EQ(wanted.iPixelType, PFD_TYPE_RGBA);
    EXPECT_EQ(wanted.iLayerType, 0);
    EXPECT_EQ(wanted.bReserved, 0);
    EXPECT_EQ(wanted.cRedBits, 8);
    EXPECT_EQ(wanted.cGreenBits, 8);
    EXPECT_EQ(wanted.cBlueBits, 8);
    EXPECT_EQ(wanted.cAlphaBits, 8);
    EXPECT_EQ(wanted.cDepthBits, 24);
    EXPECT_EQ(wanted.cStencilBits, 8);
    EXPECT_EQ(wanted.cColorBits, 0);
    EXPECT_EQ(wanted.cAccumBits, 0);
}

TEST(FormatSearch, ClassicDescriptorHasAllWishes)
{
    ScriptedPlatform platform;
    Format format(platform.makeHostDisplay(0));
    format.setDoubleBuffersEnabled(false);
    format.setStereoEnabled(true);
    format.setOverlayEnabled(true);
    format.setDepthEnabled(false);
    format.setAlphaEnabled(false);
    format.setStencilBufferEnabled(false);
    format.setRgbEnabled(false);
    format.setGreenBits(6);
    format.setGDISupportRequired(true);
    format.isAvailable();
    platform.majorVersion = 5;
    format.isAvailable();
    ASSERT_EQ(platform.wantedDescriptors().size(), 2u);
    const PIXELFORMATDESCRIPTOR& wanted = platform.wantedDescriptors()[0];
    EXPECT_EQ(wanted.dwFlags, PFD_DRAW_TO_WINDOW | PFD_SUPPORT_OPENGL | PFD_STEREO | PFD_SUPPORT_GDI);
    EXPECT_EQ(wanted.iPixelType, PFD_TYPE_COLORINDEX);
    EXPECT_EQ(wanted.bReserved, 1);
    EXPECT_EQ(wanted.cGreenBits, 6);
    EXPECT_EQ(wanted.cAlphaBits, 0);
    EXPECT_EQ(wanted.cDepthBits, 0);
    // The switch of the stencil buffer is one of the query alone.
    EXPECT_EQ(wanted.cStencilBits, 8);
    EXPECT_EQ(platform.wantedDescriptors()[1].dwFlags, PFD_DRAW_TO_WINDOW | PFD_SUPPORT_OPENGL | PFD_STEREO);
}

TEST(FormatSearch, ClassicSearchWithTooFewDepthBitsIsNotExact)
{
    ScriptedPlatform platform;
    platform.formats[0].descriptor.cDepthBits = 16;
    Format format(platform.makeHostDisplay(0));
    EXPECT_FALSE(format.isAvailable());
    const Format nearest = format.getNearest();
    EXPECT_EQ(nearest.getVisualInfoId(), 1);
    EXPECT_EQ(nearest.getDepthBits(), 16);
}

TEST(FormatSearch, ActivateRefusesAnInexactFormatWhenAccelerationIsRequired)
{
    ScriptedPlatform platform;
    platform.formats[0].descriptor.cDepthBits = 16;
    Format format(platform.makeHostDisplay(0));
    EXPECT_FALSE(format.activate());
    EXPECT_TRUE(platform.callsMatching("SetPixelFormat").empty());
    format.setAccelerationRequired(false);
    EXPECT_TRUE(format.activate());
    EXPECT_EQ(format.getDepthBits(), 16);
}

TEST(FormatSearch, ClassicMatchNeedsFlagsTypeAndBits)
{
    const auto isExact = [](void (*change)(PIXELFORMATDESCRIPTOR&))
    {
        ScriptedPlatform platform;
        change(platform.formats[0].descriptor);
        return Format(platform.makeHostDisplay(0)).isAvailable();
    };
    EXPECT_TRUE(isExact([](PIXELFORMATDESCRIPTOR&) {}));
    // Composition does not count unless it is required.
    EXPECT_TRUE(isExact([](PIXELFORMATDESCRIPTOR& found) { found.dwFlags &= 0x7FFFu; }));
    EXPECT_FALSE(isExact([](PIXELFORMATDESCRIPTOR& found) { found.dwFlags &= ~1u; }));
    EXPECT_FALSE(isExact([](PIXELFORMATDESCRIPTOR& found) { found.iPixelType = 1; }));
    EXPECT_FALSE(isExact([](PIXELFORMATDESCRIPTOR& found) { found.cStencilBits = 0; }));
    EXPECT_FALSE(isExact([](PIXELFORMATDESCRIPTOR& found) { found.cRedBits = 5; }));
    EXPECT_FALSE(isExact([](PIXELFORMATDESCRIPTOR& found) { found.cGreenBits = 5; }));
    EXPECT_FALSE(isExact([](PIXELFORMATDESCRIPTOR& found) { found.cBlueBits = 5; }));
    EXPECT_FALSE(isExact([](PIXELFORMATDESCRIPTOR& found) { found.cAlphaBits = 0; }));
    EXPECT_TRUE(isExact([](PIXELFORMATDESCRIPTOR& found) { found.cDepthBits = 32; }));
}

TEST(FormatSearch, ClassicMatchNeedsCompositionAndOverlayWhenTheyAreWanted)
{
    ScriptedPlatform platform;
    Format format(platform.makeHostDisplay(0));
    format.setOverlayEnabled(true);
    EXPECT_FALSE(format.isAvailable());
    platform.formats[0].descriptor.bReserved = 1;
    EXPECT_TRUE(format.isAvailable());

    format.setCompositionRequired(true);
    EXPECT_TRUE(format.isAvailable());
    platform.formats[0].descriptor.dwFlags &= 0x7FFFu;
    EXPECT_FALSE(format.isAvailable());
}

TEST(FormatSearch, UndescribedClassicResultIsNotExact)
{
    ScriptedPlatform platform;
    platform.failDescribePixelFormat = true;
    EXPECT_FALSE(Format(platform.makeHostDisplay(0)).isAvailable());
}

TEST(FormatSearch, ANegativeChoiceEndsTheClassicPath)
{
    ScriptedPlatform platform;
    platform.chooseResult = -1;
    DebugErrors errors;
    Format format(platform.makeHostDisplay(0));
    format.setAccelerationRequired(false);
    EXPECT_FALSE(format.activate());
    EXPECT_TRUE(platform.callsMatching("DescribePixelFormat").empty());
    format.getNearest();
    EXPECT_EQ(errors.messages().size(), 1u);
}

TEST(FormatSearch, RemoteDesktopClearsAccelerationAndSkipsTheQuery)
{
    HostPlatform platform;
    platform.deviceKey = "RDPDD";
    DebugErrors errors;
    Format format(platform.display);
    EXPECT_TRUE(format.activate());
    EXPECT_FALSE(format.isAccelerationRequired());
    EXPECT_TRUE(platform.callsMatching("wgl").empty());
    EXPECT_EQ(errors.messages(), Calls{"info Format::activate(): RDP mode limited to OpenGL1.1 (no acceleration)"});
}

TEST(FormatSearch, ActivateUsesWhatIsKnownWithoutASearch)
{
    ScriptedPlatform platform;
    Format format(platform.makeHostDisplay(1));
    const PIXELFORMATDESCRIPTOR found = ScriptedPlatform::defaultFormat();
    const PIXELFORMATDESCRIPTOR* visualInfo = &found;
    format.setVisualInfo(visualInfo);
    platform.takeCalls();
    EXPECT_TRUE(format.activate());
    EXPECT_EQ(platform.takeCalls(), (Calls{"EnumDisplayDevicesA(0)", "SetPixelFormat(hostDisplay, 1)"}));
}

TEST(FormatSearch, FailedSetPixelFormatIsPosted)
{
    ScriptedPlatform platform;
    platform.failingSetPixelFormats = 1;
    DebugErrors errors;
    Format format(platform.makeHostDisplay(0));
    EXPECT_FALSE(format.activate());
    EXPECT_EQ(errors.messages(), Calls{"error Format: SetPixelFormat returned an error (code: 2000)."});
}

TEST(FormatSearch, FallsToTheCurrentDisplay)
{
    HostPlatform platform;
    Format format;
    EXPECT_TRUE(format.activate());
    EXPECT_EQ(format.getDisplay(), platform.display);
}

} // namespace
} // namespace renderengine
