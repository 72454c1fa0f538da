// A host whose context comes from GLX. EGL neither sees it nor binds another one beside it on the same thread.

#include "context/ContextFactory.h"
#include "context/ContextGL.h"
#include "platform/PlatformLayer.h"
#include "support/LogLines.h"
#include "support/Triangle.h"

#include <renderengine/GLUtils.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

// The names of these headers' macros are common words, so they come last.
#include <GL/glx.h>
#include <X11/Xlib.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <thread>

namespace renderengine
{
namespace
{

using ::testing::Contains;
using ::testing::HasSubstr;

/// A GLX context on a window of its own, current on the thread that makes the object.
class GLXHost
{
public:
    GLXHost()
    {
        m_display = XOpenDisplay(nullptr);
        if (!m_display)
        {
            throw std::runtime_error("there is no X server");
        }
        int attributes[] = {GLX_RGBA, GLX_DOUBLEBUFFER, GLX_DEPTH_SIZE, 24, 0};
        XVisualInfo* visual = glXChooseVisual(m_display, DefaultScreen(m_display), attributes);
        if (!visual)
        {
            throw std::runtime_error("the X server has no visual for OpenGL");
        }
        const ::Window root = RootWindow(m_display, visual->screen);
        XSetWindowAttributes window = {};
        window.colormap = XCreateColormap(m_display, root, visual->visual, AllocNone);
        m_window = XCreateWindow(m_display, root, 0, 0, 16, 16, 0, visual->depth, InputOutput, visual->visual,
                                 CWColormap, &window);
        m_context = glXCreateContext(m_display, visual, nullptr, True);
        XFree(visual);
        glXMakeCurrent(m_display, m_window, m_context);
    }
    ~GLXHost()
    {
        glXMakeCurrent(m_display, 0, nullptr);
        glXDestroyContext(m_display, m_context);
        XDestroyWindow(m_display, m_window);
        XCloseDisplay(m_display);
    }
    GLXHost(const GLXHost&) = delete;
    GLXHost& operator=(const GLXHost&) = delete;

    bool isCurrent() const { return m_context && glXGetCurrentContext() == m_context; }

private:
    ::Display* m_display = nullptr;
    ::Window m_window = 0;
    GLXContext m_context = nullptr;
};

constexpr const char* s_message = "A GLX context is current on this thread, which keeps EGL from binding one: the host "
                                  "must make its contexts through EGL";

TEST(GLXHostDeviceTest, ItsContextIsNotSeen)
{
    const GLXHost host;
    ASSERT_TRUE(host.isCurrent());
    EXPECT_EQ(utils::GL::getCurrentContext(), nullptr);
    EXPECT_EQ(utils::GL::getCurrentDisplay(), nullptr);
    EXPECT_EQ(platform().procAddress("glClear"), nullptr);
}

TEST(GLXHostDeviceTest, ItIsToldOnceInOneError)
{
    const GLXHost host;
    ASSERT_TRUE(host.isCurrent());
    testing::LogLines log;
    for (int i = 0; i < 2; ++i)
    {
        ContextGL engine(ContextShare);
        EXPECT_THROW(engine.init(), std::runtime_error);
        EXPECT_FALSE(engine.isValid());
        EXPECT_TRUE(host.isCurrent());
    }
    int told = 0;
    for (const std::string& line : log.take())
    {
        told += line == std::string("error: ") + s_message ? 1 : 0;
    }
    EXPECT_EQ(told, 1);
}

TEST(GLXHostDeviceTest, TheEngineWorksOnAThreadWithoutItsContext)
{
    const GLXHost host;
    ASSERT_TRUE(host.isCurrent());
    bool isDrawn = false;
    std::thread(
        [&isDrawn]
        {
            ContextGL engine(ContextShare);
            engine.init();
            isDrawn = testing::isTriangle(testing::drawTriangle(engine));
        })
        .join();
    EXPECT_TRUE(isDrawn);
    EXPECT_TRUE(host.isCurrent());
}

} // namespace
} // namespace renderengine
