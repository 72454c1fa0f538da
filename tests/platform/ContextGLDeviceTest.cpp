#include "context/ContextFactory.h"
#include "context/ContextGL.h"
#include "platform/RenderingWindow.h"

#include <renderengine/GLUtils.h>
#include <renderengine/WGLConstants.h>

#include <glbinding/gl.h>
#include <gtest/gtest.h>
#include <kavelor/SoPreferences.h>

#include <memory>
#include <thread>

namespace renderengine
{
namespace
{

GLint integer(GLenum name)
{
    GLint value = 0;
    glGetIntegerv(name, &value);
    return value;
}

/// A buffer object of the current context.
GLuint makeBuffer()
{
    GLuint buffer = 0;
    glGenBuffers(1, &buffer);
    glBindBuffer(GL_ARRAY_BUFFER, buffer);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    return buffer;
}

TEST(ContextGLDeviceTest, InitFindsADeviceAndLeavesNothingCurrent)
{
    ContextGL context(ContextShare);
    context.init();
    ASSERT_TRUE(context.isValid());
    EXPECT_NE(context.getRenderer(), nullptr);
    EXPECT_EQ(utils::GL::getCurrentContext(), nullptr);
    EXPECT_EQ(utils::GL::getCurrentDisplay(), nullptr);

    const ContextInfo& info = context.getContextInfo();
    EXPECT_GE(info.version, 410);
    EXPECT_FALSE(info.renderer.isEmpty());
    EXPECT_GT(info.maxTextureSize, 0);
    EXPECT_GT(info.max3DTextureSize, 0);
    EXPECT_GE(info.maxVertexAttribs, 16);
    EXPECT_GE(info.maxUniformBlockSize, 16384);
    EXPECT_GT(info.maxViewportDims[0], 0);
    EXPECT_GT(info.maxViewportDims[1], 0);
    EXPECT_EQ(info.hasDoublePrecision, 1);
    EXPECT_EQ(info.maxTextureCoords, 8);
}

TEST(ContextGLDeviceTest, InfoBeforeInitIsTheInfoAfterIt)
{
    ContextGL context(ContextShare);
    const ContextInfo before = context.getContextInfo();
    EXPECT_FALSE(context.isValid());
    context.init();
    EXPECT_EQ(context.getContextInfo().version, before.version);
    EXPECT_EQ(context.getContextInfo().renderer, before.renderer);
    EXPECT_EQ(context.getContextInfo().maxTextureSize, before.maxTextureSize);
}

TEST(ContextGLDeviceTest, TheProbedVersionIsTheContexts)
{
    ContextGL context(0);
    context.init();
    ASSERT_TRUE(context.makeCurrent());
    EXPECT_EQ(context.getContextInfo().version, integer(GL_MAJOR_VERSION) * 100 + integer(GL_MINOR_VERSION) * 10);
    EXPECT_EQ(context.getContextInfo().profile, integer(GL_CONTEXT_PROFILE_MASK));
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    context.doneCurrent();
    EXPECT_EQ(utils::GL::getCurrentContext(), nullptr);
}

TEST(ContextGLDeviceTest, CanBeCurrentOnAnotherThread)
{
    ContextGL context(0);
    context.init();
    GLuint buffer = 0;
    GLenum error = GL_INVALID_OPERATION;
    std::thread(
        [&]
        {
            ASSERT_TRUE(context.makeCurrent());
            buffer = makeBuffer();
            error = glGetError();
            const GLuint deleted = buffer;
            glDeleteBuffers(1, &deleted);
            context.doneCurrent();
        })
        .join();
    EXPECT_NE(buffer, 0u);
    EXPECT_EQ(error, static_cast<GLenum>(GL_NO_ERROR));
}

TEST(ContextGLDeviceTest, InitRunsOnAnyThread)
{
    bool isValid = false;
    std::thread(
        [&]
        {
            ContextGL context(ContextShare);
            context.init();
            isValid = context.isValid() && context.makeCurrent();
            context.doneCurrent();
        })
        .join();
    EXPECT_TRUE(isValid);
}

TEST(ContextGLDeviceTest, RenderThreadHoldsTheContext)
{
    ContextGL context(ContextMultithread | ContextShare);
    context.init();
    ASSERT_TRUE(context.isRenderThreaded());
    context.executeResourceCommands();
    EXPECT_EQ(utils::GL::getCurrentContext(), nullptr);
}

TEST(ContextGLDeviceTest, ContextsShareWithWhatIsCurrent)
{
    ContextGL first(0);
    first.init();
    ASSERT_TRUE(first.makeCurrent());
    const GLuint buffer = makeBuffer();

    ContextGL second(ContextShare);
    second.init();
    EXPECT_EQ(integer(GL_ARRAY_BUFFER_BINDING), 0);
    EXPECT_EQ(glIsBuffer(buffer), GL_TRUE);
    ContextGL stranger(0);
    HGLRC current = utils::GL::getCurrentContext();
    HDC display = utils::GL::getCurrentDisplay();
    stranger.init();
    ASSERT_TRUE(utils::GL::makeCurrent(display, 0, current));

    ASSERT_TRUE(second.makeCurrent());
    EXPECT_EQ(glIsBuffer(buffer), GL_TRUE);
    second.doneCurrent();
    ASSERT_TRUE(stranger.makeCurrent());
    EXPECT_EQ(glIsBuffer(buffer), GL_FALSE);
    stranger.doneCurrent();
    glDeleteBuffers(1, &buffer);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    first.doneCurrent();
}

TEST(ContextGLDeviceTest, WhatWasCurrentIsPutBack)
{
    ContextGL host(0);
    host.init();
    ContextGL engine(0);
    engine.init();
    ASSERT_TRUE(host.makeCurrent());
    const HGLRC hostContext = utils::GL::getCurrentContext();
    const HDC hostDisplay = utils::GL::getCurrentDisplay();
    const GLEWContextStruct* hostTable = glewGetContext();
    ASSERT_NE(hostContext, nullptr);

    ASSERT_TRUE(engine.makeCurrent());
    EXPECT_NE(utils::GL::getCurrentContext(), hostContext);
    EXPECT_NE(glewGetContext(), hostTable);
    EXPECT_EQ(glbinding::t_table, glewGetContext());
    engine.doneCurrent();
    EXPECT_EQ(utils::GL::getCurrentContext(), hostContext);
    EXPECT_EQ(utils::GL::getCurrentDisplay(), hostDisplay);
    EXPECT_EQ(glbinding::t_table, hostTable);
    host.doneCurrent();
}

TEST(ContextGLDeviceTest, OneContextOutlivesTheOther)
{
    auto first = std::make_unique<ContextGL>(static_cast<uint8_t>(0));
    ContextGL second(0);
    first->init();
    second.init();
    first.reset();
    ASSERT_TRUE(second.makeCurrent());
    const GLuint buffer = makeBuffer();
    EXPECT_NE(buffer, 0u);
    glDeleteBuffers(1, &buffer);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    second.doneCurrent();
}

TEST(ContextGLDeviceTest, AContextIsDestroyedWhileItIsCurrent)
{
    {
        ContextGL context(0);
        context.init();
        ASSERT_TRUE(context.makeCurrent());
    }
    EXPECT_EQ(utils::GL::getCurrentContext(), nullptr);
    EXPECT_EQ(glbinding::t_table, &glbinding::g_silentTable);
}

TEST(ContextGLDeviceTest, DebugFlagMakesADebugContext)
{
    ContextGL context(ContextDebug);
    context.init();
    ASSERT_TRUE(context.makeCurrent());
    EXPECT_EQ(integer(GL_CONTEXT_FLAGS) & GL_CONTEXT_FLAG_DEBUG_BIT, GL_CONTEXT_FLAG_DEBUG_BIT);
    context.doneCurrent();
}

TEST(ContextGLCoreDeviceTest, CoreSettingMakesACoreContext)
{
    SoPreferences::setBool("KVR_RENDERENGINE_USE_GLCORE", true);
    ContextGL context(0);
    context.init();
    EXPECT_EQ(context.getContextInfo().profile, GL_CONTEXT_CORE_PROFILE_BIT);
    EXPECT_GE(context.getContextInfo().version, 410);
}

TEST(ContextGLDeviceTest, DefaultIsTheCompatibilityProfile)
{
    ContextGL context(0);
    context.init();
    EXPECT_EQ(context.getContextInfo().profile, GL_CONTEXT_COMPATIBILITY_PROFILE_BIT);
}

TEST(ContextGLDeviceTest, LibraryStartsAndEnds)
{
    init();
    EXPECT_EQ(utils::GL::getCurrentContext(), nullptr);
    init();
    finish();
    finish();
}

TEST(RenderingWindowDeviceTest, WindowHasAPixelFormatWithTheDefaultWishes)
{
    const RenderingWindow window(SbVec2i32(1, 1));
    PIXELFORMATDESCRIPTOR* visualInfo = utils::GL::getWindowVisualInfo(window.getDisplay(), window.getDrawable());
    ASSERT_NE(visualInfo, nullptr);
    EXPECT_GE(visualInfo->cRedBits, 8);
    EXPECT_GE(visualInfo->cAlphaBits, 8);
    EXPECT_GE(visualInfo->cDepthBits, 24);
    EXPECT_GE(visualInfo->cStencilBits, 8);
    EXPECT_NE(visualInfo->dwFlags & PFD_SUPPORT_OPENGL, 0u);
    utils::GL::releaseVisualInfo(visualInfo);
}

TEST(FormatDeviceTest, SearchInACurrentContextFindsMultisampling)
{
    ContextGL context(0);
    context.init();
    ASSERT_TRUE(context.makeCurrent());
    utils::GL::Format format;
    EXPECT_TRUE(format.isAvailable());
    format.setSampleBuffersEnabled(true);
    format.setSamplesCount(4);
    const utils::GL::Format nearest = format.getNearest();
    EXPECT_GT(nearest.getVisualInfoId(), 0);
    EXPECT_GE(nearest.getDepthBits(), 24);
    context.doneCurrent();
}

} // namespace
} // namespace renderengine
