// The engine beside a host that made its window and context through Win32 and WGL on its own.

#include "context/ContextFactory.h"
#include "context/ContextGL.h"
#include "platform/PlatformLayer.h"
#include "platform/RenderingWindow.h"
#include "support/LogLines.h"
#include "support/Triangle.h"

#include <renderengine/Format.h>
#include <renderengine/GLUtils.h>
#include <renderengine/WGLConstants.h>

#include <glbinding/WGLEWContextStruct.h>
#include <glbinding/gl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <thread>

namespace renderengine
{
namespace
{

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::StartsWith;

/// A context on a window whose class has no device context of its own, current on the thread that makes the object.
class HostContext
{
public:
    HostContext()
    {
        WNDCLASSA windowClass = {};
        windowClass.lpfnWndProc = &DefWindowProcA;
        windowClass.hInstance = GetModuleHandleA(nullptr);
        windowClass.lpszClassName = "HostContext";
        RegisterClassA(&windowClass);
        m_window = CreateWindowExA(0, "HostContext", "HostContext", WS_OVERLAPPEDWINDOW, 0, 0, 64, 64, nullptr, nullptr,
                                   windowClass.hInstance, nullptr);
        m_display = GetDC(m_window);
        PIXELFORMATDESCRIPTOR wanted = {};
        wanted.nSize = sizeof(wanted);
        wanted.nVersion = 1;
        wanted.dwFlags = PFD_DRAW_TO_WINDOW | PFD_SUPPORT_OPENGL | PFD_DOUBLEBUFFER;
        wanted.cColorBits = 24;
        wanted.cDepthBits = 24;
        SetPixelFormat(m_display, ChoosePixelFormat(m_display, &wanted), &wanted);
        m_context = wglCreateContext(m_display);
        wglMakeCurrent(m_display, m_context);
    }
    ~HostContext()
    {
        wglMakeCurrent(nullptr, nullptr);
        wglDeleteContext(m_context);
        ReleaseDC(m_window, m_display);
        DestroyWindow(m_window);
        UnregisterClassA("HostContext", GetModuleHandleA(nullptr));
    }
    HostContext(const HostContext&) = delete;
    HostContext& operator=(const HostContext&) = delete;

    HGLRC handle() const { return m_context; }
    HDC display() const { return m_display; }
    bool isCurrent() const
    {
        return m_context && wglGetCurrentContext() == m_context && wglGetCurrentDC() == m_display;
    }

private:
    HWND m_window = nullptr;
    HDC m_display = nullptr;
    HGLRC m_context = nullptr;
};

TEST(PlatformWin32DeviceTest, ContextOfTheHostIsAValidHandle)
{
    const HostContext host;
    ASSERT_TRUE(host.isCurrent());
    EXPECT_EQ(utils::GL::getCurrentContext(), host.handle());
    EXPECT_EQ(utils::GL::getCurrentDisplay(), host.display());
    EXPECT_GT(platform().getPixelFormat(host.display()), 0);
}

TEST(PlatformWin32DeviceTest, HostIsSharedWithAndPutBackWithItsDisplay)
{
    const HostContext host;
    ASSERT_TRUE(host.isCurrent());
    GLuint buffer = 0;
    {
        ContextGL engine(ContextShare);
        engine.init();
        EXPECT_TRUE(host.isCurrent());
        initGlewForCurrentContext();
        glGenBuffers(1, &buffer);
        glBindBuffer(GL_ARRAY_BUFFER, buffer);

        ASSERT_TRUE(engine.makeCurrent());
        EXPECT_FALSE(host.isCurrent());
        EXPECT_EQ(glIsBuffer(buffer), GL_TRUE);
        engine.doneCurrent();
        EXPECT_TRUE(host.isCurrent());
        EXPECT_TRUE(testing::isTriangle(testing::drawTriangle(engine)));
        EXPECT_TRUE(host.isCurrent());
    }
    EXPECT_TRUE(host.isCurrent());
    EXPECT_EQ(glIsBuffer(buffer), GL_TRUE);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    glDeleteBuffers(1, &buffer);
}

TEST(PlatformWin32DeviceTest, HostWithARenderThreadBesideIt)
{
    const HostContext host;
    ContextGL engine(ContextMultithread | ContextShare);
    engine.init();
    EXPECT_TRUE(testing::isTriangle(testing::drawTriangle(engine)));
    EXPECT_TRUE(host.isCurrent());
}

TEST(PlatformWin32DeviceTest, InfoBeforeInitPutsTheHostBack)
{
    const HostContext host;
    ContextGL engine(ContextShare);
    EXPECT_GE(engine.getContextInfo().version, 410);
    EXPECT_TRUE(host.isCurrent());
}

TEST(PlatformWin32DeviceTest, TheHiddenWindowIsNeverShown)
{
    const RenderingWindow window(SbVec2i32(1, 1));
    const HWND handle = WindowFromDC(window.getDisplay());
    ASSERT_NE(handle, nullptr);
    EXPECT_FALSE(IsWindowVisible(handle));
    EXPECT_EQ(GetParent(handle), nullptr);
    const auto style = static_cast<DWORD>(GetWindowLongA(handle, GWL_STYLE));
    EXPECT_EQ(style & (WS_CLIPSIBLINGS | WS_CLIPCHILDREN), WS_CLIPSIBLINGS | WS_CLIPCHILDREN);
    char name[32] = {};
    GetClassNameA(handle, name, sizeof(name));
    EXPECT_STREQ(name, "RenderingWindow");
    GetWindowTextA(handle, name, sizeof(name));
    EXPECT_STREQ(name, "RenderingWindow");
    EXPECT_EQ(GetClassLongA(handle, GCL_STYLE), static_cast<DWORD>(CS_HREDRAW | CS_VREDRAW | CS_OWNDC));
}

TEST(PlatformWin32DeviceTest, ErrorsHaveTheTextOfTheSystem)
{
    EXPECT_NE(platform().errorText(ERROR_INVALID_HANDLE), "");
    EXPECT_EQ(platform().errorText(0x2FFFFFFF), "");
    SetLastError(ERROR_INVALID_HANDLE);
    EXPECT_EQ(platform().lastError(), static_cast<unsigned long>(ERROR_INVALID_HANDLE));
}

TEST(PlatformWin32DeviceTest, AContextThatAnotherThreadHoldsIsRefusedWithTheSystemsReason)
{
    const HostContext host;
    bool isBound = true;
    bool isDeleted = true;
    testing::LogLines log;
    std::thread(
        [&]
        {
            isBound = utils::GL::makeCurrent(host.display(), 0, host.handle());
            isDeleted = utils::GL::destroyContext(host.display(), host.handle());
        })
        .join();
    EXPECT_FALSE(isBound);
    EXPECT_FALSE(isDeleted);
    // 170 stands for busy.
    const std::string reason = "(error 170: " + platform().errorText(ERROR_BUSY);
    EXPECT_THAT(log.take(),
                ElementsAre(AllOf(StartsWith("error: renderengine::utils::GL::makeCurrent Thread "), EndsWith(reason)),
                            "error: renderengine::utils::GL::destroyContext wglDeleteContext " + reason));
    EXPECT_TRUE(host.isCurrent());
}

TEST(PlatformWin32DeviceTest, ADisplayDeviceHasAKeyAndIsNotRemote)
{
    std::string key;
    EXPECT_TRUE(platform().displayDeviceKey(0, key));
    EXPECT_NE(key, "");
    EXPECT_FALSE(platform().displayDeviceKey(1000, key));
    EXPECT_FALSE(utils::GL::Format().isRDPMode());
}

TEST(PlatformWin32DeviceTest, TheSystemIsVistaOrLater)
{
    int major = 0;
    int minor = 0;
    platform().systemVersion(major, minor);
    EXPECT_GE(major, 6);
}

TEST(PlatformWin32DeviceTest, TheTableBesideGLIsTheDrivers)
{
    const HostContext host;
    ASSERT_TRUE(host.isCurrent());
    const WGLEWContextStruct& wgl = *wglewGetContext();
    EXPECT_TRUE(wgl.kvr_common__WGLEW_ARB_create_context);
    EXPECT_TRUE(wgl.kvr_common__WGLEW_ARB_pixel_format);
    const int attribute = WGL_NUMBER_PIXEL_FORMATS_ARB;
    int count = 0;
    EXPECT_EQ(wgl.kvr_common__wglewGetPixelFormatAttribivARB(host.display(), 0, 0, 1, &attribute, &count), 1);
    EXPECT_GT(count, 0);
}

} // namespace
} // namespace renderengine
