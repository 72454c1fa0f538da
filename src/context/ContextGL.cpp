#include "context/ContextGL.h"

#include "context/ContextFactory.h"
#include "context/ContextProbe.h"
#include "gl/RendererGL41.h"
#include "gl/RendererGL46.h"
#include "platform/PlatformLayer.h"
#include "platform/RenderingWindow.h"

#include <renderengine/GLUtils.h>
#include <renderengine/WGLConstants.h>

#include <glbinding/CurrentTable.h>
#include <glbinding/SoGLGlew.h>
#include <kavelor/SoPreferences.h>
#include <spdlog/spdlog.h>

#include <map>
#include <mutex>
#include <stdexcept>
#include <utility>

namespace renderengine
{

namespace
{

using BindingMap = std::map<HGLRC, std::shared_ptr<SoGLGlew>>;

// Trivial, so that it can still be read after the thread's other objects are gone: contexts may be destroyed by
// destructors of static objects, which run later than those of thread-local ones.
thread_local bool t_isThreadEnding = false;

struct ThreadBindings
{
    ~ThreadBindings() { t_isThreadEnding = true; }

    std::shared_ptr<BindingMap> map;
};

thread_local ThreadBindings t_bindings;

/// The binding object of a thread that has none left, for code that runs at its very end.
SoGLGlew& silentBinding()
{
    static SoGLGlew* binding = new SoGLGlew;
    return *binding;
}

const GLEWContextStruct* resolveCurrentTable()
{
    if (!platform().currentContext())
    {
        return nullptr;
    }
    return ContextGL::getCurrentBinding().getGLEWContext();
}

void* loadFunction(const char* name)
{
    return platform().procAddress(name);
}

bool isCoreProfileWanted()
{
    static const bool s_useCore = SoPreferences::getBool("KVR_RENDERENGINE_USE_GLCORE", false);
    return s_useCore;
}

} // namespace

ContextGL::ContextGL(uint8_t flags) : ContextBase(flags, 1) {}

ContextGL::~ContextGL()
{
    stopRenderThread();
    releaseContext(m_descriptor);
}

void ContextGL::releaseContext(ContextDescriptor& descriptor)
{
    if (descriptor.m_context)
    {
        utils::GL::destroyContext(descriptor.m_window->getDisplay(), descriptor.m_context);
        descriptor.m_context = nullptr;
    }
    descriptor.m_window.reset();
}

void ContextGL::init()
{
    m_descriptor = createContext();
    m_renderer = createRenderer();
    if (isValid() && m_multithread)
    {
        startRenderThread();
    }
}

RendererBase* ContextGL::createRenderer() const
{
    const SbString setting = SoPreferences::getString("KVR_RENDERENGINE_RENDERER", "GL").upper();
    if (RendererBase* renderer = createDebugRenderer())
    {
        return renderer;
    }
    if (setting != "GL" && setting != "GL41")
    {
        spdlog::warn("Unknown render engine {}, falling back to GL.", setting.getString());
    }
    if (m_descriptor.m_info.version < 430)
    {
        return new RendererGL41(m_debug);
    }
    return new RendererGL46(m_debug);
}

const ContextInfo& ContextGL::getContextInfo()
{
    if (!isValid())
    {
        ContextDescriptor descriptor = createContext();
        m_descriptor.m_info = descriptor.m_info;
        releaseContext(descriptor);
    }
    return m_descriptor.m_info;
}

std::vector<int> ContextGL::buildAttributeList(int majorVersion, int minorVersion) const
{
    std::vector<int> attributes;
    if (isCoreProfileWanted())
    {
        attributes.insert(attributes.end(),
                          {WGL_CONTEXT_MAJOR_VERSION_ARB, majorVersion, WGL_CONTEXT_MINOR_VERSION_ARB, minorVersion,
                           WGL_CONTEXT_PROFILE_MASK_ARB, WGL_CONTEXT_CORE_PROFILE_BIT_ARB});
    }
    if (m_debug)
    {
        attributes.insert(attributes.end(), {WGL_CONTEXT_FLAGS_ARB, WGL_CONTEXT_DEBUG_BIT_ARB});
    }
    attributes.push_back(0);
    return attributes;
}

ContextGL::ContextDescriptor ContextGL::createContext() const
{
    HDC currentDisplay = nullptr;
    int currentDrawable = 0;
    HGLRC currentContext = nullptr;
    if (m_shareContext)
    {
        currentDisplay = utils::GL::getCurrentDisplay();
        currentDrawable = utils::GL::getCurrentDrawable();
        currentContext = utils::GL::getCurrentContext();
    }
    ContextDescriptor descriptor;
    descriptor.m_window = std::make_shared<RenderingWindow>(SbVec2i32(1, 1));
    const HDC display = descriptor.m_window->getDisplay();
    PIXELFORMATDESCRIPTOR* visualInfo = descriptor.m_window->getFormat().getVisualInfo();
    descriptor.m_context =
        utils::GL::createContextAttribs(display, visualInfo, currentContext, true, buildAttributeList(4, 6));
    if (!descriptor.m_context)
    {
        descriptor.m_context =
            utils::GL::createContextAttribs(display, visualInfo, currentContext, true, buildAttributeList(4, 1));
    }
    if (!descriptor.m_context)
    {
        throw std::runtime_error("can't create a GL context");
    }
    utils::GL::makeCurrent(display, descriptor.m_window->getDrawable(), descriptor.m_context);
    descriptor.m_info = probeCurrentContext();
    utils::GL::makeCurrent(display, 0, nullptr);
    if (currentContext)
    {
        utils::GL::makeCurrent(currentDisplay, currentDrawable, currentContext);
    }
    return descriptor;
}

bool ContextGL::makeCurrent()
{
    if (!isRenderThreaded())
    {
        m_previousContext = utils::GL::getCurrentContext();
        m_previousDrawable = utils::GL::getCurrentDrawable();
        m_previousDisplay = utils::GL::getCurrentDisplay();
    }
    return utils::GL::makeCurrent(m_descriptor.m_window->getDisplay(), m_descriptor.m_window->getDrawable(),
                                  m_descriptor.m_context);
}

void ContextGL::doneCurrent()
{
    utils::GL::makeCurrent(m_descriptor.m_window->getDisplay(), 0, nullptr);
    if (!isRenderThreaded() && m_previousContext)
    {
        utils::GL::makeCurrent(m_previousDisplay, m_previousDrawable, m_previousContext);
    }
}

void ContextGL::destroyContext(HGLRC context)
{
    if (t_isThreadEnding || !t_bindings.map || t_bindings.map->empty())
    {
        return;
    }
    const auto entry = t_bindings.map->find(context);
    if (entry == t_bindings.map->end())
    {
        return;
    }
    if (glbinding::t_table == entry->second->getGLEWContext())
    {
        glbinding::setCurrentTable(nullptr);
    }
    t_bindings.map->erase(entry);
}

SoGLGlew& ContextGL::getCurrentBinding()
{
    installBindingHooks();
    if (t_isThreadEnding)
    {
        return silentBinding();
    }
    if (!t_bindings.map)
    {
        t_bindings.map = std::make_shared<BindingMap>();
    }
    const HGLRC context = utils::GL::getCurrentContext();
    std::shared_ptr<SoGLGlew>& binding = (*t_bindings.map)[context];
    if (!binding)
    {
        binding = std::make_shared<SoGLGlew>();
        binding->initGLEWContext();
        // Without a context the tables stay silent.
        if (context)
        {
            binding->initGLEW();
        }
    }
    return *binding;
}

void ContextGL::installBindingHooks()
{
    static std::once_flag s_installed;
    std::call_once(s_installed,
                   []
                   {
                       glbinding::setProcAddressLoader(&loadFunction);
                       glbinding::setTableResolver(&resolveCurrentTable);
                   });
}

} // namespace renderengine
