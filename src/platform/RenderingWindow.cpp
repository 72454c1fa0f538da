#include "platform/RenderingWindow.h"

#include "platform/PlatformLayer.h"

#include <stdexcept>

namespace renderengine
{

namespace
{

constexpr const char* s_className = "RenderingWindow";

} // namespace

RenderingWindow::RenderingWindow(const SbVec2i32& size)
{
    registerWindowClass();
    m_window = platform().createWindow(platform().moduleHandle(), s_className, s_className,
                                       WindowStyle::ClipSiblings | WindowStyle::ClipChildren, 0, 0, size[0], size[1]);
    if (!m_window)
    {
        throw std::runtime_error("can't create window");
    }
    m_display = platform().getDC(m_window);
    if (!m_display)
    {
        release();
        throw std::runtime_error("can't create window, can't retrieve window's DC");
    }
    if (!activateFormat())
    {
        release();
        throw std::runtime_error("can't create visual for window");
    }
}

RenderingWindow::~RenderingWindow()
{
    release();
}

void RenderingWindow::registerWindowClass()
{
    void* module = platform().moduleHandle();
    if (platform().getClassInfo(module, s_className))
    {
        return;
    }
    const unsigned int style =
        WindowStyle::ClassHorizontalRedraw | WindowStyle::ClassVerticalRedraw | WindowStyle::ClassOwnDC;
    if (!platform().registerClass(module, s_className, style))
    {
        throw std::runtime_error("can't create window, class register failed");
    }
}

bool RenderingWindow::activateFormat()
{
    m_format.setDisplay(m_display);
    if (m_format.activate())
    {
        return true;
    }
    // Each fall-back is one change from the default. The assignments also take over that format's empty display, so
    // that the searches below run on the display that is current on this thread.
    utils::GL::Format withoutGDI;
    withoutGDI.setGDISupportRequired(false);
    m_format = withoutGDI;
    if (m_format.activate())
    {
        return true;
    }
    utils::GL::Format shallowDepth;
    shallowDepth.setDepthBits(16);
    m_format = shallowDepth;
    if (m_format.activate())
    {
        return true;
    }
    utils::GL::Format fewColors;
    fewColors.setRedBits(4);
    fewColors.setGreenBits(4);
    fewColors.setBlueBits(4);
    m_format = fewColors;
    return m_format.activate();
}

void RenderingWindow::release()
{
    if (!m_window)
    {
        return;
    }
    if (m_display)
    {
        platform().releaseDC(m_window, m_display);
    }
    platform().destroyWindow(m_window);
    // Fails as long as another window uses the class; the last one removes it.
    platform().unregisterClass(platform().moduleHandle(), s_className);
    m_window = nullptr;
    m_display = nullptr;
}

} // namespace renderengine
