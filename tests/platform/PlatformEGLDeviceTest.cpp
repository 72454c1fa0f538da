#include "context/ContextFactory.h"
#include "context/ContextGL.h"
#include "platform/PlatformLayer.h"
#include "platform/RenderingWindow.h"
#include "support/LogLines.h"
#include "support/Triangle.h"

#include <renderengine/GLUtils.h>

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <glbinding/WGLEWContextStruct.h>
#include <glbinding/gl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>

namespace renderengine
{
namespace
{

/// A context that a host made through EGL on its own, with a surface to draw to and another one to read from.
class HostContext
{
public:
    explicit HostContext(EGLenum api = EGL_OPENGL_API)
    {
        m_display = eglGetPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
        eglInitialize(m_display, nullptr, nullptr);
        eglBindAPI(api);
        const EGLint renderable = api == EGL_OPENGL_API ? EGL_OPENGL_BIT : EGL_OPENGL_ES3_BIT;
        const EGLint wanted[] = {EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RENDERABLE_TYPE, renderable, EGL_DEPTH_SIZE, 24,
                                 EGL_NONE};
        EGLConfig config = nullptr;
        EGLint count = 0;
        eglChooseConfig(m_display, wanted, &config, 1, &count);
        const EGLint size[] = {EGL_WIDTH, 4, EGL_HEIGHT, 4, EGL_NONE};
        m_draw = eglCreatePbufferSurface(m_display, config, size);
        m_read = eglCreatePbufferSurface(m_display, config, size);
        const EGLint version[] = {EGL_CONTEXT_MAJOR_VERSION, 3, EGL_NONE};
        m_context = eglCreateContext(m_display, config, EGL_NO_CONTEXT, api == EGL_OPENGL_API ? nullptr : version);
        eglMakeCurrent(m_display, m_draw, m_read, m_context);
    }
    ~HostContext()
    {
        eglMakeCurrent(m_display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
        eglDestroyContext(m_display, m_context);
        eglDestroySurface(m_display, m_draw);
        eglDestroySurface(m_display, m_read);
    }
    HostContext(const HostContext&) = delete;
    HostContext& operator=(const HostContext&) = delete;

    HGLRC handle() const { return static_cast<HGLRC>(m_context); }
    EGLDisplay display() const { return m_display; }

    bool isCurrentWithItsSurfaces() const
    {
        return m_context != EGL_NO_CONTEXT && m_draw != EGL_NO_SURFACE && m_draw != m_read &&
               eglGetCurrentContext() == m_context && eglGetCurrentDisplay() == m_display &&
               eglGetCurrentSurface(EGL_DRAW) == m_draw && eglGetCurrentSurface(EGL_READ) == m_read;
    }

private:
    EGLDisplay m_display = EGL_NO_DISPLAY;
    EGLSurface m_draw = EGL_NO_SURFACE;
    EGLSurface m_read = EGL_NO_SURFACE;
    EGLContext m_context = EGL_NO_CONTEXT;
};

TEST(PlatformEGLDeviceTest, ContextOfTheHostIsAValidHandle)
{
    const HostContext host;
    ASSERT_TRUE(host.isCurrentWithItsSurfaces());
    EXPECT_EQ(utils::GL::getCurrentContext(), host.handle());
    HDC display = utils::GL::getCurrentDisplay();
    ASSERT_NE(display, nullptr);
    EXPECT_EQ(utils::GL::getCurrentDisplay(), display);
    EXPECT_GT(platform().getPixelFormat(display), 0);
    EXPECT_EQ(platform().windowFromDC(display), nullptr);
}

TEST(PlatformEGLDeviceTest, HostIsSharedWithAndPutBackWithItsSurfaces)
{
    const HostContext host;
    ASSERT_TRUE(host.isCurrentWithItsSurfaces());
    GLuint buffer = 0;
    {
        ContextGL engine(ContextShare);
        engine.init();
        EXPECT_TRUE(host.isCurrentWithItsSurfaces());
        glGenBuffers(1, &buffer);
        glBindBuffer(GL_ARRAY_BUFFER, buffer);

        ASSERT_TRUE(engine.makeCurrent());
        EXPECT_FALSE(host.isCurrentWithItsSurfaces());
        EXPECT_EQ(eglGetCurrentDisplay(), host.display());
        EXPECT_EQ(glIsBuffer(buffer), GL_TRUE);
        engine.doneCurrent();
        EXPECT_TRUE(host.isCurrentWithItsSurfaces());
    }
    EXPECT_TRUE(host.isCurrentWithItsSurfaces());
    EXPECT_EQ(glIsBuffer(buffer), GL_TRUE);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST(PlatformEGLDeviceTest, HostOfOpenGLESIsPutBackWithItsSurfaces)
{
    const HostContext host(EGL_OPENGL_ES_API);
    ASSERT_TRUE(host.isCurrentWithItsSurfaces());
    ContextGL engine(ContextShare);
    engine.init();
    EXPECT_GE(engine.getContextInfo().version, 410);
    EXPECT_TRUE(host.isCurrentWithItsSurfaces());
    EXPECT_TRUE(testing::isTriangle(testing::drawTriangle(engine)));
    EXPECT_TRUE(host.isCurrentWithItsSurfaces());
    EXPECT_EQ(eglQueryAPI(), static_cast<EGLenum>(EGL_OPENGL_ES_API));
}

TEST(PlatformEGLDeviceTest, AnInlineFramePutsTheHostBackWithItsSurfaces)
{
    const HostContext host;
    ContextGL engine(ContextShare);
    engine.init();
    EXPECT_TRUE(testing::isTriangle(testing::drawTriangle(engine)));
    EXPECT_TRUE(host.isCurrentWithItsSurfaces());
}

TEST(PlatformEGLDeviceTest, InfoBeforeInitPutsTheHostBack)
{
    const HostContext host;
    ContextGL engine(ContextShare);
    EXPECT_GE(engine.getContextInfo().version, 410);
    EXPECT_TRUE(host.isCurrentWithItsSurfaces());
}

TEST(PlatformEGLDeviceTest, HostWithARenderThreadBesideIt)
{
    const HostContext host;
    ContextGL engine(ContextMultithread | ContextShare);
    engine.init();
    engine.executeResourceCommands();
    EXPECT_TRUE(host.isCurrentWithItsSurfaces());
}

TEST(PlatformEGLDeviceTest, TheThreadKeepsItsEGLApi)
{
    ASSERT_TRUE(eglBindAPI(EGL_OPENGL_ES_API));
    ContextGL engine(ContextShare);
    engine.init();
    ASSERT_TRUE(engine.makeCurrent());
    EXPECT_EQ(eglQueryAPI(), static_cast<EGLenum>(EGL_OPENGL_ES_API));
    engine.doneCurrent();
    EXPECT_EQ(eglQueryAPI(), static_cast<EGLenum>(EGL_OPENGL_ES_API));
}

TEST(PlatformEGLDeviceTest, FunctionsNeedACurrentContext)
{
    EXPECT_EQ(platform().procAddress("glClear"), nullptr);
    EXPECT_EQ(platform().procAddress("wglCreateContextAttribsARB"), nullptr);
    EXPECT_EQ(platform().lastError(), static_cast<unsigned long>(EGL_BAD_CONTEXT));
    const HostContext host;
    EXPECT_NE(platform().procAddress("glClear"), nullptr);
    EXPECT_NE(platform().procAddress("wglCreateContextAttribsARB"), nullptr);
    EXPECT_EQ(platform().procAddress("wglNoSuchFunction"), nullptr);
}

TEST(PlatformEGLDeviceTest, TheTableBesideGLAnswersLikeTheLayer)
{
    const HostContext host;
    HDC display = utils::GL::getCurrentDisplay();
    const WGLEWContextStruct& wgl = *wglewGetContext();
    EXPECT_TRUE(wgl.kvr_common__WGLEW_ARB_pixel_format);
    EXPECT_FALSE(wgl.kvr_common__WGLEW_EXT_swap_control);
    const int attribute = WGL_NUMBER_PIXEL_FORMATS_ARB;
    int count = 0;
    EXPECT_EQ(wgl.kvr_common__wglewGetPixelFormatAttribivARB(display, 0, 0, 1, &attribute, &count), 1);
    EXPECT_GT(count, 0);
    const int attributes[] = {WGL_DEPTH_BITS_ARB, 24, 0};
    int formats[4] = {};
    unsigned int found = 0;
    EXPECT_EQ(wgl.kvr_common__wglewChoosePixelFormatARB(display, attributes, nullptr, 4, formats, &found), 1);
    EXPECT_GT(found, 0u);
    EXPECT_LE(found, 4u);
    EXPECT_GT(formats[0], 0);
}

TEST(PlatformEGLDeviceTest, ClassesAreCountedByTheirWindows)
{
    PlatformLayer& layer = platform();
    void* module = layer.moduleHandle();
    EXPECT_FALSE(layer.getClassInfo(module, "Test"));
    EXPECT_EQ(layer.createWindow(module, "Test", "", 0, 0, 0, 1, 1), nullptr);
    EXPECT_TRUE(layer.registerClass(module, "Test", 0));
    EXPECT_FALSE(layer.registerClass(module, "Test", 0));
    HWND window = layer.createWindow(module, "Test", "", 0, 0, 0, 1, 1);
    ASSERT_NE(window, nullptr);
    EXPECT_FALSE(layer.unregisterClass(module, "Test"));
    HDC display = layer.getDC(window);
    EXPECT_EQ(layer.windowFromDC(display), window);
    EXPECT_TRUE(layer.releaseDC(window, display));
    EXPECT_TRUE(layer.destroyWindow(window));
    EXPECT_FALSE(layer.destroyWindow(window));
    EXPECT_EQ(layer.windowFromDC(display), nullptr);
    EXPECT_EQ(layer.getDC(window), nullptr);
    EXPECT_TRUE(layer.unregisterClass(module, "Test"));
    EXPECT_FALSE(layer.unregisterClass(module, "Test"));
}

TEST(PlatformEGLDeviceTest, AWindowTakesOnePixelFormat)
{
    PlatformLayer& layer = platform();
    void* module = layer.moduleHandle();
    ASSERT_TRUE(layer.registerClass(module, "Test", 0));
    HWND window = layer.createWindow(module, "Test", "", 0, 0, 0, 1, 1);
    HDC display = layer.getDC(window);
    ASSERT_NE(display, nullptr);
    EXPECT_EQ(layer.createContext(display), nullptr);
    EXPECT_EQ(layer.lastError(), static_cast<unsigned long>(EGL_BAD_CONFIG));
    EXPECT_EQ(layer.errorText(layer.lastError()), "EGL_BAD_CONFIG");
    EXPECT_FALSE(layer.setPixelFormat(display, 0, nullptr));
    EXPECT_FALSE(layer.setPixelFormat(display, 100000, nullptr));
    EXPECT_TRUE(layer.setPixelFormat(display, 1, nullptr));
    EXPECT_TRUE(layer.setPixelFormat(display, 1, nullptr));
    EXPECT_FALSE(layer.setPixelFormat(display, 2, nullptr));
    EXPECT_EQ(layer.getPixelFormat(display), 1);
    PIXELFORMATDESCRIPTOR descriptor = {};
    EXPECT_GT(layer.describePixelFormat(display, 1, &descriptor), 1);
    EXPECT_EQ(descriptor.nSize, 40);
    EXPECT_EQ(layer.describePixelFormat(display, 0, &descriptor), 0);
    layer.destroyWindow(window);
    layer.unregisterClass(module, "Test");
    EXPECT_FALSE(layer.makeCurrent(display, reinterpret_cast<HGLRC>(&descriptor)));
    EXPECT_EQ(layer.lastError(), static_cast<unsigned long>(EGL_BAD_DISPLAY));
}

TEST(PlatformEGLDeviceTest, ReleasingNothingSucceeds)
{
    EXPECT_TRUE(platform().makeCurrent(nullptr, nullptr));
    EXPECT_EQ(platform().currentContext(), nullptr);
    EXPECT_EQ(platform().currentDisplay(), nullptr);
}

TEST(PlatformEGLDeviceTest, CountsAsALaterWindowsWithoutDisplayDevices)
{
    int major = 0;
    int minor = 0;
    platform().systemVersion(major, minor);
    EXPECT_GE(major, 6);
    std::string key;
    EXPECT_FALSE(platform().displayDeviceKey(0, key));
    EXPECT_FALSE(utils::GL::Format().isRDPMode());
}

/// Tells on the standard error what making a window throws in a process without an EGL driver.
[[noreturn]] void makeWindowWithoutDriver()
{
    setenv("__EGL_VENDOR_LIBRARY_DIRS", "/nonexistent", 1);
    testing::LogLines log;
    std::string reason;
    try
    {
        RenderingWindow window(SbVec2i32(1, 1));
    }
    catch (const std::runtime_error& error)
    {
        reason = error.what();
    }
    for (const std::string& line : log.take())
    {
        std::fprintf(stderr, "%s\n", line.c_str());
    }
    std::fprintf(stderr, "%s\n", reason.c_str());
    std::exit(0);
}

TEST(PlatformEGLDeathTest, MissingDriverIsAClearError)
{
    // A process of its own, since the drivers are looked for once.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(makeWindowWithoutDriver(), ::testing::ExitedWithCode(0),
                "error: No EGL display offers OpenGL(.|\n)*can't create window");
}

} // namespace
} // namespace renderengine
