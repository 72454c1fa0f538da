#include "platform/DebugErrors.h"
#include "support/ScriptedPlatform.h"

#include <renderengine/Format.h>
#include <renderengine/WGLConstants.h>

#include <gtest/gtest.h>
#include <kavelor/SoPreferences.h>

namespace renderengine
{
namespace
{

using testing::DebugErrors;
using utils::GL::Format;
using Calls = std::vector<std::string>;

TEST(Format, HasTheDefaultWishes)
{
    ScriptedPlatform platform;
    const Format format;
    EXPECT_TRUE(format.hasDoubleBuffers());
    EXPECT_TRUE(format.hasDepth());
    EXPECT_EQ(format.getDepthBits(), 24);
    EXPECT_TRUE(format.hasAlpha());
    EXPECT_FALSE(format.hasOverlay());
    EXPECT_EQ(format.getPlane(), 0);
    EXPECT_FALSE(format.hasSampleBuffers());
    EXPECT_EQ(format.getSamplesCount(), 0);
    EXPECT_FALSE(format.hasStereo());
    EXPECT_TRUE(format.hasRgb());
    EXPECT_EQ(format.getRedBits(), 8);
    EXPECT_EQ(format.getGreenBits(), 8);
    EXPECT_EQ(format.getBlueBits(), 8);
    EXPECT_EQ(format.getAlphaBits(), 8);
    EXPECT_FALSE(format.hasFloatColorBuffer());
    EXPECT_FALSE(format.hasAccumBuffer());
    EXPECT_EQ(format.getAccumBufferBits(), 8);
    EXPECT_TRUE(format.hasStencilBuffer());
    EXPECT_EQ(format.getStencilBufferBits(), 8);
    EXPECT_TRUE(format.isAccelerationRequired());
    EXPECT_FALSE(format.isSoftwareRendererRequired());
    EXPECT_FALSE(format.isCompositionRequired());
    EXPECT_FALSE(format.isGDISupportRequired());
    EXPECT_EQ(format.getDisplay(), nullptr);
    EXPECT_EQ(format.getVisualInfo(), nullptr);
    EXPECT_EQ(format.getVisualInfoId(), 0);
}

TEST(Format, OverlayFormatHasOverlayAndPlane)
{
    ScriptedPlatform platform;
    const Format format = Format::getDefaultOverlayFormat();
    EXPECT_TRUE(format.hasOverlay());
    EXPECT_EQ(format.getPlane(), 1);
    EXPECT_FALSE(Format::getDefaultFormat().hasOverlay());
}

TEST(Format, GDIWinsOverCompositionWhenBothSettingsAreOn)
{
    ScriptedPlatform platform;
    SoPreferences::setBool("KVR_PFD_SUPPORT_COMPOSITION", true);
    EXPECT_TRUE(Format().isCompositionRequired());
    SoPreferences::setBool("KVR_PFD_SUPPORT_GDI", true);
    EXPECT_TRUE(Format().isGDISupportRequired());
    EXPECT_FALSE(Format().isCompositionRequired());
    SoPreferences::unset("KVR_PFD_SUPPORT_GDI");
    SoPreferences::unset("KVR_PFD_SUPPORT_COMPOSITION");
}

TEST(Format, IgnoresTheCompositionSettingsBeforeVista)
{
    ScriptedPlatform platform;
    platform.majorVersion = 5;
    SoPreferences::setBool("KVR_PFD_SUPPORT_GDI", true);
    EXPECT_FALSE(Format().isGDISupportRequired());
    SoPreferences::unset("KVR_PFD_SUPPORT_GDI");
}

TEST(Format, SetterOfAWishDropsWhatWasFound)
{
    ScriptedPlatform platform;
    Format format(platform.makeHostDisplay());
    const PIXELFORMATDESCRIPTOR found = ScriptedPlatform::defaultFormat();
    const PIXELFORMATDESCRIPTOR* visualInfo = &found;
    format.setVisualInfo(visualInfo);
    format.setVisualInfoId(1);
    format.setDepthBits(16);
    EXPECT_EQ(format.getVisualInfo(), nullptr);
    EXPECT_EQ(format.getVisualInfoId(), 0);
}

TEST(Format, SettersOfPlaneCompositionGDIAndIdKeepWhatWasFound)
{
    ScriptedPlatform platform;
    Format format(platform.makeHostDisplay());
    const PIXELFORMATDESCRIPTOR found = ScriptedPlatform::defaultFormat();
    const PIXELFORMATDESCRIPTOR* visualInfo = &found;
    format.setVisualInfo(visualInfo);
    format.setPlane(2);
    format.setCompositionRequired(true);
    format.setGDISupportRequired(true);
    format.setVisualInfoId(7);
    EXPECT_NE(format.getVisualInfo(), nullptr);
    EXPECT_EQ(format.getVisualInfoId(), 7);
}

TEST(Format, VisualInfoBringsItsAttributesAndTheFormatOfTheDisplay)
{
    ScriptedPlatform platform;
    Format format(platform.makeHostDisplay(3));
    format.setGDISupportRequired(true);
    PIXELFORMATDESCRIPTOR found = ScriptedPlatform::defaultFormat();
    found.iPixelType = 2;
    found.dwFlags = PFD_STEREO;
    found.cAlphaBits = 0;
    found.cRedBits = 16;
    found.cGreenBits = 15;
    found.cBlueBits = 14;
    found.cDepthBits = 32;
    found.cStencilBits = 0;
    found.cAccumBits = 64;
    found.bReserved = 1;
    const PIXELFORMATDESCRIPTOR* visualInfo = &found;
    format.setVisualInfo(visualInfo);
    EXPECT_FALSE(format.hasAlpha());
    EXPECT_TRUE(format.hasDepth());
    EXPECT_EQ(format.getDepthBits(), 32);
    EXPECT_TRUE(format.hasRgb());
    EXPECT_TRUE(format.hasFloatColorBuffer());
    EXPECT_EQ(format.getRedBits(), 16);
    EXPECT_EQ(format.getGreenBits(), 15);
    EXPECT_EQ(format.getBlueBits(), 14);
    EXPECT_EQ(format.getAlphaBits(), 0);
    EXPECT_FALSE(format.hasDoubleBuffers());
    EXPECT_TRUE(format.hasStereo());
    EXPECT_FALSE(format.isGDISupportRequired());
    EXPECT_FALSE(format.isCompositionRequired());
    EXPECT_TRUE(format.hasAccumBuffer());
    EXPECT_EQ(format.getAccumBufferBits(), 64);
    EXPECT_FALSE(format.hasStencilBuffer());
    EXPECT_TRUE(format.hasOverlay());
    EXPECT_EQ(format.getVisualInfoId(), 3);
    EXPECT_NE(format.getVisualInfo(), &found);
    EXPECT_EQ(format.getVisualInfo()->cAccumBits, 64);
}

TEST(Format, NullOrEmptyVisualInfoDropsTheDescriptor)
{
    ScriptedPlatform platform;
    Format format(platform.makeHostDisplay());
    const PIXELFORMATDESCRIPTOR found = ScriptedPlatform::defaultFormat();
    const PIXELFORMATDESCRIPTOR* visualInfo = &found;
    format.setVisualInfo(visualInfo);
    visualInfo = nullptr;
    format.setVisualInfo(visualInfo);
    EXPECT_EQ(format.getVisualInfo(), nullptr);

    visualInfo = &found;
    format.setVisualInfo(visualInfo);
    const PIXELFORMATDESCRIPTOR empty = {};
    visualInfo = &empty;
    format.setVisualInfo(visualInfo);
    EXPECT_EQ(format.getVisualInfo(), nullptr);
}

TEST(Format, TakesADisplayOfItsOwnForTheWindow)
{
    ScriptedPlatform platform;
    HDC display = platform.makeHostDisplay();
    {
        Format format;
        platform.takeCalls();
        format.setDisplay(display);
        EXPECT_EQ(platform.takeCalls(), (Calls{"WindowFromDC(hostDisplay)", "GetDC(hostWindow)"}));
    }
    EXPECT_EQ(platform.takeCalls(), (Calls{"WindowFromDC(hostDisplay)", "ReleaseDC(hostWindow, hostDisplay)"}));
}

TEST(Format, TakingItsOwnDisplayAgainChangesNothing)
{
    ScriptedPlatform platform;
    Format format(platform.makeHostDisplay());
    HDC display = format.getDisplay();
    platform.takeCalls();
    format.setDisplay(display);
    EXPECT_EQ(format.getDisplay(), display);
    EXPECT_EQ(platform.takeCalls(), Calls{});
}

TEST(Format, KeepsADisplayWithoutWindowAndDoesNotOwnIt)
{
    ScriptedPlatform platform;
    int memory = 0;
    HDC display = reinterpret_cast<HDC>(&memory);
    {
        Format format;
        platform.takeCalls();
        format.setDisplay(display);
        EXPECT_EQ(format.getDisplay(), display);
        EXPECT_EQ(platform.takeCalls(), Calls{"WindowFromDC(null)"});
    }
    EXPECT_EQ(platform.takeCalls(), Calls{});
}

TEST(Format, StoresADisplayThatItIsNotToOwn)
{
    ScriptedPlatform platform;
    HDC display = platform.makeHostDisplay();
    {
        const Format format(display, false);
        EXPECT_EQ(format.getDisplay(), display);
    }
    EXPECT_EQ(platform.takeCalls(), Calls{});
}

TEST(Format, CopyHasWishesDisplayVisualInfoAndId)
{
    ScriptedPlatform platform;
    Format format(platform.makeHostDisplay());
    format.setRedBits(10);
    format.setSampleBuffersEnabled(true);
    format.setSamplesCount(4);
    format.setSoftwareRendererRequired(true);
    const PIXELFORMATDESCRIPTOR found = ScriptedPlatform::defaultFormat();
    const PIXELFORMATDESCRIPTOR* visualInfo = &found;
    format.setVisualInfo(visualInfo);
    format.setVisualInfoId(9);
    format.setCompositionRequired(true);

    const Format copy(format);
    EXPECT_EQ(copy.getRedBits(), 8);
    EXPECT_TRUE(copy.hasSampleBuffers());
    EXPECT_EQ(copy.getSamplesCount(), 4);
    EXPECT_TRUE(copy.isSoftwareRendererRequired());
    EXPECT_TRUE(copy.isCompositionRequired());
    EXPECT_EQ(copy.getDisplay(), format.getDisplay());
    ASSERT_NE(copy.getVisualInfo(), nullptr);
    EXPECT_NE(copy.getVisualInfo(), format.getVisualInfo());
    EXPECT_EQ(copy.getVisualInfoId(), 9);
}

TEST(Format, OpenglAttributesBringTheMultisampling)
{
    ScriptedPlatform platform;
    DebugErrors errors;
    Format format;
    int attributes[] = {WGL_SAMPLE_BUFFERS_ARB, WGL_DEPTH_BITS_ARB, WGL_SAMPLES_ARB, 0};
    int values[] = {1, 99, 4, 0};
    format.setOpenglAttributes(platform.makeHostDisplay(), 1, attributes, values);
    EXPECT_TRUE(format.hasSampleBuffers());
    EXPECT_EQ(format.getSamplesCount(), 4);
    EXPECT_EQ(format.getDepthBits(), 24);
    EXPECT_EQ(format.getVisualInfoId(), 1);
    EXPECT_NE(format.getVisualInfo(), nullptr);
    EXPECT_TRUE(errors.messages().empty());
}

TEST(Format, OpenglAttributesOfAnUnknownFormatArePosted)
{
    ScriptedPlatform platform;
    DebugErrors errors;
    Format format;
    int none[] = {0};
    format.setOpenglAttributes(platform.makeHostDisplay(), 5, none, none);
    EXPECT_EQ(errors.messages(), Calls{"error Format::setOpenglAttributs: wglDescribePixelFormat returned an error"});
    EXPECT_EQ(format.getVisualInfo(), nullptr);
}

TEST(Format, GDIAvailabilityIsAFlagOfTheVisualInfo)
{
    ScriptedPlatform platform;
    DebugErrors errors;
    Format format(platform.makeHostDisplay());
    EXPECT_TRUE(format.isGDIAvailable());
    EXPECT_EQ(errors.messages(),
              Calls{"error Format::isGDIAvailable(): Cannot call this function if the Format is not active"});

    PIXELFORMATDESCRIPTOR found = ScriptedPlatform::defaultFormat();
    const PIXELFORMATDESCRIPTOR* visualInfo = &found;
    format.setVisualInfo(visualInfo);
    EXPECT_FALSE(format.isGDIAvailable());
    found.dwFlags |= PFD_SUPPORT_GDI;
    format.setVisualInfo(visualInfo);
    EXPECT_TRUE(format.isGDIAvailable());
    platform.majorVersion = 5;
    found.dwFlags = 0;
    format.setVisualInfo(visualInfo);
    EXPECT_TRUE(format.isGDIAvailable());
}

TEST(Format, RemoteDesktopIsReadFromTheDeviceKey)
{
    ScriptedPlatform platform;
    const Format format;
    EXPECT_FALSE(format.isRDPMode());
    platform.deviceKey = "\\Registry\\Machine\\System\\Services\\RDPDD\\Device0";
    EXPECT_TRUE(format.isRDPMode());
    platform.deviceKey = "\\Registry\\Machine\\System\\Video\\Device0";
    EXPECT_FALSE(format.isRDPMode());
}

} // namespace
} // namespace renderengine
