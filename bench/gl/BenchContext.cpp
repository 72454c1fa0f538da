#include "gl/BenchContext.h"

#include "platform/PlatformLayer.h"

#include <stdexcept>

namespace bench
{

namespace
{

using renderengine::platform;

constexpr const char* s_className = "BenchContext";

} // namespace

BenchContext::BenchContext()
{
    void* module = platform().moduleHandle();
    if (!platform().getClassInfo(module, s_className))
    {
        platform().registerClass(module, s_className, renderengine::WindowStyle::ClassOwnDC);
    }
    m_window = platform().createWindow(module, s_className, s_className, 0, 0, 0, 16, 16);
    m_display = m_window ? platform().getDC(m_window) : nullptr;
    PIXELFORMATDESCRIPTOR wanted{};
    wanted.nSize = sizeof(wanted);
    wanted.nVersion = 1;
    wanted.cColorBits = 32;
    wanted.cDepthBits = 24;
    const int format = m_display ? platform().choosePixelFormat(m_display, wanted) : 0;
    if (format != 0 && platform().setPixelFormat(m_display, format, &wanted))
    {
        m_context = platform().createContext(m_display);
    }
    if (!m_context || !platform().makeCurrent(m_display, m_context))
    {
        release();
        throw std::runtime_error("there is no context for the benchmark");
    }
    renderengine::glbinding::setProcAddressLoader([](const char* name) { return platform().procAddress(name); });
    m_functions.initGLEWContext();
    if (m_functions.initGLEW() != 0)
    {
        release();
        throw std::runtime_error("the functions of the benchmark's context cannot be loaded");
    }
    platform().makeCurrent(nullptr, nullptr);
}

BenchContext::~BenchContext()
{
    release();
}

void BenchContext::release()
{
    if (m_context)
    {
        platform().makeCurrent(nullptr, nullptr);
        platform().deleteContext(m_context);
        m_context = nullptr;
    }
    if (m_display)
    {
        platform().releaseDC(m_window, m_display);
        m_display = nullptr;
    }
    if (m_window)
    {
        platform().destroyWindow(m_window);
        m_window = nullptr;
    }
}

BenchContext::Current::Current(BenchContext& context) : m_scope(context.m_functions.getGLEWContext())
{
    platform().makeCurrent(context.m_display, context.m_context);
}

BenchContext::Current::~Current()
{
    platform().makeCurrent(nullptr, nullptr);
}

} // namespace bench
