// The engine as a client uses it, on contexts of the system's own making.

#include "context/ContextFactory.h"
#include "context/ContextGL.h"
#include "platform/PlatformLayer.h"
#include "support/ContextObjects.h"
#include "support/ProcessUsage.h"
#include "support/Triangle.h"

#include <renderengine/GLUtils.h>
#include <renderengine/PlatformTypes.h>
#include <renderengine/WGLConstants.h>

#include <glbinding/gl.h>
#include <gtest/gtest.h>
#include <kavelor/SoPreferences.h>

#include <cstddef>
#include <memory>
#include <thread>

namespace renderengine
{
namespace
{

using testing::deleteObjects;
using testing::drawTriangle;
using testing::isTriangle;

TEST(EngineDeviceTest, DrawsOnTheCallingThread)
{
    ContextGL context(ContextShare);
    context.init();
    EXPECT_TRUE(isTriangle(drawTriangle(context)));
    EXPECT_EQ(utils::GL::getCurrentContext(), nullptr);
    deleteObjects(context);
}

TEST(EngineDeviceTest, DrawsOnTheRenderThread)
{
    ContextGL context(ContextMultithread | ContextShare);
    context.init();
    ASSERT_TRUE(context.isRenderThreaded());
    EXPECT_TRUE(isTriangle(drawTriangle(context)));
}

TEST(EngineDeviceTest, DrawsInACoreContext)
{
    SoPreferences::setBool("KVR_RENDERENGINE_USE_GLCORE", true);
    ContextGL context(ContextMultithread | ContextShare);
    context.init();
    ASSERT_EQ(context.getContextInfo().profile, GL_CONTEXT_CORE_PROFILE_BIT);
    EXPECT_TRUE(isTriangle(drawTriangle(context)));
}

TEST(EngineDeviceTest, DrawsWithTheRendererOfOlderDevices)
{
    SoPreferences::setString("KVR_RENDERENGINE_RENDERER", "GL41");
    ContextGL context(ContextMultithread | ContextShare);
    context.init();
    ASSERT_EQ(context.getContextInfo().version, 410);
    EXPECT_TRUE(isTriangle(drawTriangle(context)));
}

TEST(EngineDeviceTest, PutsTheHostsContextBackAfterAnInlineFrame)
{
    ContextGL host(0);
    host.init();
    ContextGL engine(ContextShare);
    ASSERT_TRUE(host.makeCurrent());
    const HGLRC hostContext = utils::GL::getCurrentContext();
    const HDC hostDisplay = utils::GL::getCurrentDisplay();
    engine.init();
    EXPECT_EQ(utils::GL::getCurrentContext(), hostContext);
    EXPECT_EQ(utils::GL::getCurrentDisplay(), hostDisplay);
    EXPECT_TRUE(isTriangle(drawTriangle(engine)));
    EXPECT_EQ(utils::GL::getCurrentContext(), hostContext);
    EXPECT_EQ(utils::GL::getCurrentDisplay(), hostDisplay);
    deleteObjects(engine);
    host.doneCurrent();
}

TEST(EngineDeviceTest, TwoSharingContextsDrawAtOnce)
{
    constexpr int frames = 20;
    ContextGL host(0);
    host.init();
    ASSERT_TRUE(host.makeCurrent());
    ContextGL first(ContextMultithread | ContextShare);
    ContextGL second(ContextMultithread | ContextShare);
    first.init();
    second.init();
    const auto drawAll = [](ContextGL& context, int& good)
    {
        for (int i = 0; i < frames; ++i)
        {
            good += isTriangle(drawTriangle(context)) ? 1 : 0;
        }
    };
    int goodOfFirst = 0;
    int goodOfSecond = 0;
    std::thread other([&] { drawAll(first, goodOfFirst); });
    drawAll(second, goodOfSecond);
    other.join();
    EXPECT_EQ(goodOfFirst, frames);
    EXPECT_EQ(goodOfSecond, frames);
    host.doneCurrent();
}

TEST(EngineDeviceTest, WhatOneOfTwoSharingContextsWritesTheOtherReads)
{
    ContextGL first(0);
    first.init();
    ASSERT_TRUE(first.makeCurrent());
    ContextGL second(ContextShare);
    second.init();
    const GLuint written = 0x12345678;
    GLuint buffer = 0;
    glGenBuffers(1, &buffer);
    glBindBuffer(GL_ARRAY_BUFFER, buffer);
    glBufferData(GL_ARRAY_BUFFER, sizeof(written), &written, GL_STATIC_DRAW);
    glFinish();

    GLuint read = 0;
    GLenum error = GL_INVALID_OPERATION;
    std::thread(
        [&]
        {
            ASSERT_TRUE(second.makeCurrent());
            glBindBuffer(GL_ARRAY_BUFFER, buffer);
            glGetBufferSubData(GL_ARRAY_BUFFER, 0, sizeof(read), &read);
            error = glGetError();
            second.doneCurrent();
        })
        .join();
    EXPECT_EQ(read, written);
    EXPECT_EQ(error, static_cast<GLenum>(GL_NO_ERROR));
    glDeleteBuffers(1, &buffer);
    first.doneCurrent();
}

TEST(EngineDeviceTest, ReleasingNothingSucceeds)
{
    EXPECT_TRUE(platform().makeCurrent(nullptr, nullptr));
    EXPECT_TRUE(utils::GL::makeCurrent(nullptr, 0, nullptr));
}

TEST(EngineDeviceTest, ADriversContextFunctionsNeedACurrentContext)
{
    EXPECT_EQ(platform().procAddress("glClear"), nullptr);
    ContextGL context(0);
    context.init();
    ASSERT_TRUE(context.makeCurrent());
    EXPECT_NE(platform().procAddress("glClear"), nullptr);
    EXPECT_NE(platform().procAddress("glDispatchCompute"), nullptr);
    EXPECT_NE(platform().procAddress("wglCreateContextAttribsARB"), nullptr);
    EXPECT_EQ(platform().procAddress("wglNoSuchFunction"), nullptr);
    context.doneCurrent();
}

TEST(EngineDeviceTest, TheWindowClassGoesWithItsLastWindow)
{
    PlatformLayer& layer = platform();
    void* module = layer.moduleHandle();
    ASSERT_TRUE(layer.registerClass(module, "EngineDeviceTest", WindowStyle::ClassOwnDC));
    EXPECT_TRUE(layer.getClassInfo(module, "EngineDeviceTest"));
    HWND window = layer.createWindow(module, "EngineDeviceTest", "", 0, 0, 0, 1, 1);
    ASSERT_NE(window, nullptr);
    EXPECT_FALSE(layer.unregisterClass(module, "EngineDeviceTest"));
    HDC display = layer.getDC(window);
    EXPECT_EQ(layer.windowFromDC(display), window);
    // Without a pixel format there is no context.
    EXPECT_EQ(layer.getPixelFormat(display), 0);
    EXPECT_EQ(layer.createContext(display), nullptr);
    EXPECT_TRUE(layer.releaseDC(window, display));
    EXPECT_TRUE(layer.destroyWindow(window));
    EXPECT_TRUE(layer.unregisterClass(module, "EngineDeviceTest"));
    EXPECT_FALSE(layer.getClassInfo(module, "EngineDeviceTest"));
}

TEST(EngineDeviceTest, AWindowKeepsItsPixelFormat)
{
    PlatformLayer& layer = platform();
    void* module = layer.moduleHandle();
    ASSERT_TRUE(layer.registerClass(module, "EngineDeviceTest", WindowStyle::ClassOwnDC));
    HWND window = layer.createWindow(module, "EngineDeviceTest", "", 0, 0, 0, 1, 1);
    HDC display = layer.getDC(window);
    PIXELFORMATDESCRIPTOR wanted = {};
    wanted.nSize = sizeof(wanted);
    wanted.nVersion = 1;
    wanted.dwFlags = PFD_DRAW_TO_WINDOW | PFD_SUPPORT_OPENGL | PFD_DOUBLEBUFFER;
    wanted.cColorBits = 24;
    wanted.cDepthBits = 24;
    const int format = layer.choosePixelFormat(display, wanted);
    ASSERT_GT(format, 0);
    PIXELFORMATDESCRIPTOR found = {};
    EXPECT_GE(layer.describePixelFormat(display, format, &found), format);
    EXPECT_NE(found.dwFlags & PFD_SUPPORT_OPENGL, 0u);
    EXPECT_GE(found.cDepthBits, 24);
    EXPECT_TRUE(layer.setPixelFormat(display, format, &found));
    EXPECT_FALSE(layer.setPixelFormat(display, format == 1 ? 2 : 1, &found));
    EXPECT_EQ(layer.getPixelFormat(display), format);
    layer.releaseDC(window, display);
    layer.destroyWindow(window);
    layer.unregisterClass(module, "EngineDeviceTest");
}

void makeUseAndDestroy(int cycles)
{
    for (int i = 0; i < cycles; ++i)
    {
        ContextGL context(static_cast<uint8_t>(i % 2 == 0 ? ContextShare : ContextMultithread | ContextShare));
        context.init();
        context.executeResourceCommands();
    }
}

TEST(EngineDeviceTest, TwoHundredContextsOneAfterTheOtherLeaveNothingBehind)
{
    // Drivers keep some for the next context, so growth counts from the second hundred on.
    makeUseAndDestroy(100);
    const testing::ProcessUsage before = testing::readProcessUsage();
    makeUseAndDestroy(100);
    const testing::ProcessUsage after = testing::readProcessUsage();
    constexpr std::size_t mebibyte = 1024 * 1024;
    EXPECT_GT(before.memory, mebibyte);
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    // A sanitizer keeps memory for a while after it is freed.
    EXPECT_LE(after.memory, before.memory + 4 * mebibyte);
#endif
    EXPECT_LE(after.handles, before.handles + 4);
    EXPECT_LE(after.windowObjects, before.windowObjects + 4);
    EXPECT_EQ(utils::GL::getCurrentContext(), nullptr);
}

} // namespace
} // namespace renderengine
