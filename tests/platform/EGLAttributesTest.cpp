#include "platform/EGLAttributes.h"

#include <renderengine/WGLConstants.h>

#include <EGL/eglext.h>
#include <gtest/gtest.h>

#include <optional>
#include <vector>

namespace renderengine
{
namespace
{

EGLConfigInfo makeConfig(int color, int depth, int stencil, int samples)
{
    EGLConfigInfo config;
    config.red = color;
    config.green = color;
    config.blue = color;
    config.alpha = color;
    config.depth = depth;
    config.stencil = stencil;
    config.samples = samples;
    config.sampleBuffers = samples > 0 ? 1 : 0;
    return config;
}

EGLDisplayInfo makeDisplay()
{
    EGLDisplayInfo display;
    display.configs = {makeConfig(4, 0, 0, 0), makeConfig(8, 24, 8, 4), makeConfig(8, 24, 8, 0),
                       makeConfig(8, 16, 0, 0)};
    for (size_t i = 0; i < display.configs.size(); ++i)
    {
        display.configs[i].id = static_cast<EGLint>(i) + 100;
    }
    return display;
}

/// Nothing when an attribute is refused.
std::optional<std::vector<EGLint>> translate(const std::vector<int>& attributes)
{
    std::vector<EGLint> translated;
    const int* const list = attributes.empty() ? nullptr : attributes.data();
    return translateContextAttributes(list, translated) ? std::optional(translated) : std::nullopt;
}

TEST(EGLAttributes, ContextAttributesAreTranslated)
{
    EXPECT_EQ(translate({}), std::vector<EGLint>{EGL_NONE});
    EXPECT_EQ(translate({0, 0, 0, WGL_CONTEXT_FLAGS_ARB, 1, 0}), std::vector<EGLint>{EGL_NONE});
    EXPECT_EQ(translate({WGL_CONTEXT_MAJOR_VERSION_ARB, 4, WGL_CONTEXT_MINOR_VERSION_ARB, 6,
                         WGL_CONTEXT_PROFILE_MASK_ARB, WGL_CONTEXT_CORE_PROFILE_BIT_ARB, 0}),
              (std::vector<EGLint>{0x3098, 4, 0x30FB, 6, 0x30FD, 1, EGL_NONE}));
    EXPECT_EQ(translate({WGL_CONTEXT_FLAGS_ARB, WGL_CONTEXT_DEBUG_BIT_ARB, WGL_CONTEXT_LAYER_PLANE_ARB, 1, 0}),
              (std::vector<EGLint>{0x31B0, EGL_TRUE, EGL_NONE}));
    EXPECT_EQ(translate({WGL_CONTEXT_FLAGS_ARB, WGL_CONTEXT_FORWARD_COMPATIBLE_BIT_ARB, 0}),
              (std::vector<EGLint>{0x31B1, EGL_TRUE, EGL_NONE}));
}

TEST(EGLAttributes, UnknownContextAttributesAreRefused)
{
    EXPECT_EQ(translate({0x4711, 1, 0}), std::nullopt);
    EXPECT_EQ(translate({WGL_CONTEXT_FLAGS_ARB, 0x40, 0}), std::nullopt);
}

TEST(EGLAttributes, AConfigurationIsDescribedAsAPixelFormat)
{
    const PIXELFORMATDESCRIPTOR descriptor = describeConfig(makeConfig(8, 24, 8, 0));
    EXPECT_EQ(descriptor.nSize, 40);
    EXPECT_EQ(descriptor.nVersion, 1);
    EXPECT_EQ(descriptor.dwFlags, 0x8025u);
    EXPECT_EQ(descriptor.iPixelType, 0);
    EXPECT_EQ(descriptor.cColorBits, 24);
    EXPECT_EQ(descriptor.cRedBits, 8);
    EXPECT_EQ(descriptor.cAlphaBits, 8);
    EXPECT_EQ(descriptor.cDepthBits, 24);
    EXPECT_EQ(descriptor.cStencilBits, 8);
    EXPECT_EQ(descriptor.bReserved, 0);
    EGLConfigInfo config;
    config.isFloat = true;
    EXPECT_EQ(describeConfig(config).iPixelType, 2);
}

TEST(EGLAttributes, PixelFormatsCountFromOne)
{
    const EGLDisplayInfo display = makeDisplay();
    EXPECT_EQ(display.find(0), nullptr);
    EXPECT_EQ(display.find(1), &display.configs[0]);
    EXPECT_EQ(display.find(4), &display.configs[3]);
    EXPECT_EQ(display.find(5), nullptr);
    EXPECT_EQ(display.findPixelFormat(102), 3);
    EXPECT_EQ(display.findPixelFormat(7), 0);
}

TEST(EGLAttributes, TheNearestFormatMissesLeastAndHasNoSamplesUnasked)
{
    const EGLDisplayInfo display = makeDisplay();
    PIXELFORMATDESCRIPTOR wanted = describeConfig(makeConfig(8, 24, 8, 0));
    EXPECT_EQ(chooseNearestPixelFormat(display, wanted), 3);
    wanted.cDepthBits = 16;
    wanted.cStencilBits = 0;
    EXPECT_EQ(chooseNearestPixelFormat(display, wanted), 4);
    wanted.cDepthBits = 32;
    wanted.cStencilBits = 8;
    EXPECT_EQ(chooseNearestPixelFormat(display, wanted), 3);
    EXPECT_EQ(chooseNearestPixelFormat(EGLDisplayInfo(), wanted), 0);
}

TEST(EGLAttributes, ListsAreMatchedByMinimaAndExactValues)
{
    const EGLDisplayInfo display = makeDisplay();
    const auto choose = [&display](const std::vector<int>& list) { return choosePixelFormats(display, list.data()); };
    EXPECT_EQ(choose({WGL_RED_BITS_ARB, 8, 0}), (std::vector<int>{4, 3, 2}));
    EXPECT_EQ(choose({WGL_DEPTH_BITS_ARB, 24, WGL_DOUBLE_BUFFER_ARB, 0, 0}), (std::vector<int>{3, 2}));
    EXPECT_EQ(choose({WGL_SAMPLE_BUFFERS_ARB, 1, WGL_SAMPLES_ARB, 2, 0}), std::vector<int>{2});
    EXPECT_EQ(choose({WGL_SAMPLES_ARB, 8, 0}), std::vector<int>{});
    EXPECT_EQ(choose({WGL_SUPPORT_GDI_ARB, 1, 0}), std::vector<int>{});
    EXPECT_EQ(choose({WGL_STEREO_ARB, 1, 0}), std::vector<int>{});
    EXPECT_EQ(choose({WGL_PIXEL_TYPE_ARB, WGL_TYPE_COLORINDEX_ARB, 0}), std::vector<int>{});
    EXPECT_EQ(choose({WGL_ACCELERATION_ARB, WGL_FULL_ACCELERATION_ARB, WGL_SUPPORT_OPENGL_ARB, 1,
                      WGL_DRAW_TO_WINDOW_ARB, 1, WGL_STENCIL_BITS_ARB, 8, 0}),
              (std::vector<int>{3, 2}));
    EXPECT_EQ(choose({0x4711, 1, 0}), std::vector<int>{});
}

TEST(EGLAttributes, TheNumberOfFormatsNeedsNoFormat)
{
    const EGLDisplayInfo display = makeDisplay();
    int value = 0;
    EXPECT_TRUE(readPixelFormatAttribute(display, 0, WGL_NUMBER_PIXEL_FORMATS_ARB, value));
    EXPECT_EQ(value, 4);
    EXPECT_FALSE(readPixelFormatAttribute(display, 0, WGL_RED_BITS_ARB, value));
    EXPECT_TRUE(readPixelFormatAttribute(display, 2, WGL_SAMPLES_ARB, value));
    EXPECT_EQ(value, 4);
}

TEST(EGLAttributes, ErrorsHaveNames)
{
    EXPECT_EQ(eglErrorName(EGL_BAD_MATCH), "EGL_BAD_MATCH");
    EXPECT_EQ(eglErrorName(EGL_BAD_CONFIG), "EGL_BAD_CONFIG");
    EXPECT_EQ(eglErrorName(EGL_SUCCESS), "");
    EXPECT_EQ(eglErrorName(1), "");
}

TEST(EGLAttributes, ExtensionsAreWholeWords)
{
    EXPECT_TRUE(hasExtension("A_one B_two", "A_one"));
    EXPECT_TRUE(hasExtension("A_one B_two", "B_two"));
    EXPECT_FALSE(hasExtension("A_one B_two", "B_t"));
    EXPECT_FALSE(hasExtension("A_one_more", "A_one"));
    EXPECT_FALSE(hasExtension(nullptr, "A_one"));
}

} // namespace
} // namespace renderengine
