#include <renderengine/GLUtils.h>

#include <renderengine/ClearTargetProperties.h>
#include <renderengine/GfxStateProperties.h>
#include <renderengine/WGLConstants.h>

#include "context/ContextGL.h"
#include "gl/GLTables.h"
#include "log/Logging.h"
#include "platform/ContextLookup.h"
#include "platform/PlatformLayer.h"
#include "platform/RenderingWindow.h"

#include <glbinding/SoGLEW.h>
#include <glbinding/SoGLGlew.h>
#include <glbinding/gl.h>
#include <kavelor/SoKavelorBase.h>
#include <kavelor/SoPreferences.h>
#include <spdlog/spdlog.h>

#include <cstdlib>
#include <locale>
#include <memory>
#include <sstream>
#include <string>
#include <thread>

namespace renderengine
{

namespace
{

// The first use comes from init() or from the first context, before any render thread exists.
CreateContextAttribsFunction s_createContextAttribs = nullptr;
bool s_createContextAttribsLookedUp = false;
bool s_bindingInitialized = false;

constexpr int s_makeCurrentTries = 5;

/// Logs a failed call of the window system with the reason that it gives.
void reportPlatformError(const char* function, const std::string& text, unsigned long error)
{
    std::string reason = platform().errorText(error);
    if (reason.empty())
    {
        reason = "<unknown>";
    }
    spdlog::error("{} {} (error {}: {}", function, text, error, reason);
}

/// Looks `wglCreateContextAttribsARB` up, in a context made for it when none is current. False when that context fails.
bool lookUpCreateContextAttribs(HDC display)
{
    const bool isFakeNeeded = !platform().currentContext();
    HGLRC fakeContext = nullptr;
    if (isFakeNeeded)
    {
        fakeContext = platform().createContext(display);
        if (!fakeContext)
        {
            spdlog::error("Can't create context");
            return false;
        }
        if (!platform().makeCurrent(display, fakeContext))
        {
            platform().deleteContext(fakeContext);
            spdlog::error("Can't bind fake context");
            return false;
        }
    }
    s_createContextAttribs =
        reinterpret_cast<CreateContextAttribsFunction>(platform().procAddress("wglCreateContextAttribsARB"));
    if (isFakeNeeded)
    {
        platform().makeCurrent(display, nullptr);
        platform().deleteContext(fakeContext);
    }
    return true;
}

/// Starts the GL binding, once a process, in a hidden context when none is current.
bool initBinding()
{
    if (s_bindingInitialized)
    {
        return true;
    }
    const bool isFakeNeeded = !utils::GL::getCurrentContext();
    ContextGL::ContextDescriptor fake;
    if (isFakeNeeded)
    {
        fake.m_window = std::make_shared<RenderingWindow>(SbVec2i32(1, 1));
        HDC display = fake.m_window->getDisplay();
        PIXELFORMATDESCRIPTOR* visualInfo = fake.m_window->getFormat().getVisualInfo();
        fake.m_context = utils::GL::createContext(display, visualInfo, nullptr, true, 0);
        if (!fake.m_context)
        {
            spdlog::error("Can't create context");
            return false;
        }
        if (!utils::GL::makeCurrent(display, fake.m_window->getDrawable(), fake.m_context))
        {
            spdlog::error("Can't bind fake context");
            utils::GL::destroyContext(display, fake.m_context);
            return false;
        }
    }
    const unsigned int error = SoGLEW::glewContextInit(glewGetContext());
    if (isFakeNeeded)
    {
        HDC display = fake.m_window->getDisplay();
        utils::GL::makeCurrent(display, 0, nullptr);
        utils::GL::destroyContext(display, fake.m_context);
    }
    if (error != 0)
    {
        spdlog::error("Can't initialize context, glewInit failed with error: {}", error);
        return false;
    }
    s_bindingInitialized = true;
    return true;
}

} // namespace

void resetContextLookup()
{
    s_createContextAttribs = nullptr;
    s_createContextAttribsLookedUp = false;
    s_bindingInitialized = false;
}

void init()
{
    SoKavelorBase::init();
    initLogging();
    initBinding();
}

void finish()
{
    SoKavelorBase::finish();
}

GLEWContextStruct* glewGetContext()
{
    return ContextGL::getCurrentBinding().getGLEWContext();
}

WGLEWContextStruct* wglewGetContext()
{
    return ContextGL::getCurrentBinding().getWGLEWContext();
}

void initGlewForCurrentContext()
{
    ContextGL::getCurrentBinding();
}

namespace utils::GL
{

HGLRC getCurrentContext()
{
    return platform().currentContext();
}

HDC getCurrentDisplay()
{
    return platform().currentDisplay();
}

int getCurrentDrawable()
{
    return 0;
}

bool isValidDisplay(HDC display)
{
    return display != nullptr;
}

PIXELFORMATDESCRIPTOR* getWindowVisualInfo(HDC display, int /*drawable*/)
{
    auto* visualInfo = static_cast<PIXELFORMATDESCRIPTOR*>(std::malloc(sizeof(PIXELFORMATDESCRIPTOR)));
    if (visualInfo)
    {
        *visualInfo = {};
        platform().describePixelFormat(display, platform().getPixelFormat(display), visualInfo);
    }
    return visualInfo;
}

PIXELFORMATDESCRIPTOR* getWindowVisualInfo(HDC display, int drawable, HGLRC /*context*/)
{
    return getWindowVisualInfo(display, drawable);
}

void releaseVisualInfo(PIXELFORMATDESCRIPTOR* visualInfo)
{
    if (visualInfo)
    {
        std::free(visualInfo);
    }
}

HGLRC createContext(HDC display, PIXELFORMATDESCRIPTOR* pfd, HGLRC shared, bool direct, int layer)
{
    // The driver stops reading at the first zero, so it gives its default context here, never a debug one.
    std::vector<int> attributes = {0, 0, 0};
    if (SoPreferences::getBool("KVR_OPENGL_DEBUG", false))
    {
        attributes.push_back(WGL_CONTEXT_FLAGS_ARB);
        attributes.push_back(WGL_CONTEXT_DEBUG_BIT_ARB);
        if (layer != 0)
        {
            attributes.push_back(WGL_CONTEXT_LAYER_PLANE_ARB);
            attributes.push_back(layer);
        }
        attributes.push_back(0);
    }
    return createContextAttribs(display, pfd, shared, direct, attributes);
}

HGLRC createContextAttribs(HDC display, PIXELFORMATDESCRIPTOR* /*pfd*/, HGLRC shared, bool /*direct*/,
                           const std::vector<int>& attributes)
{
    if (s_createContextAttribsLookedUp && !s_createContextAttribs)
    {
        return nullptr;
    }
    if (!s_createContextAttribsLookedUp)
    {
        s_createContextAttribsLookedUp = true;
        if (!lookUpCreateContextAttribs(display))
        {
            return nullptr;
        }
    }
    if (!s_createContextAttribs)
    {
        spdlog::error("renderengine::utils::GL::createContext: wglCreateContextAttribsARB cannot be resolved");
        return nullptr;
    }
    const HGLRC previousContext = getCurrentContext();
    const HDC previousDisplay = getCurrentDisplay();
    const HGLRC context = s_createContextAttribs(display, shared, attributes.empty() ? nullptr : attributes.data());
    if (!context)
    {
        reportPlatformError("renderengine::utils::GL::createContext", "wglCreateContextAttribsARB",
                            platform().lastError());
        return nullptr;
    }
    // An earlier context may have left tables behind on this thread, and its address to this one.
    ContextGL::destroyContext(context);
    makeCurrent(display, 0, context);
    initGlewForCurrentContext();
    makeCurrent(previousDisplay, 0, previousContext);
    return context;
}

bool makeCurrent(HDC display, int /*drawable*/, HGLRC context)
{
    for (int i = 0; i < s_makeCurrentTries; ++i)
    {
        if (platform().makeCurrent(display, context))
        {
            ContextGL::installBindingHooks();
            glbinding::refreshCurrentTable();
            return true;
        }
    }
    // Asking for the thread's number clears the reason on Windows.
    const unsigned long error = platform().lastError();
    std::ostringstream text;
    text.imbue(std::locale::classic()); // a host's locale may group digits
    text << "Thread " << std::this_thread::get_id() << " Context " << static_cast<const void*>(context) << " Display "
         << static_cast<const void*>(display);
    reportPlatformError("renderengine::utils::GL::makeCurrent", text.str(), error);
    return false;
}

bool destroyContext(HDC /*display*/, HGLRC context)
{
    ContextGL::destroyContext(context);
    if (!context || !platform().deleteContext(context))
    {
        reportPlatformError("renderengine::utils::GL::destroyContext", "wglDeleteContext", platform().lastError());
        return false;
    }
    return true;
}

void clearCurrentFrameBuffer(const ClearTargetProperties& properties)
{
    ContextGL::installBindingHooks();
    glbinding::refreshCurrentTable();
    GLbitfield mask = 0;
    if ((properties.flags & 1) != 0)
    {
        const SbVec4f& color = properties.colors[0];
        glClearColor(color[0], color[1], color[2], color[3]);
        mask |= GL_COLOR_BUFFER_BIT;
    }
    if ((properties.flags & 2) != 0)
    {
        glClearDepth(properties.depth);
        mask |= GL_DEPTH_BUFFER_BIT;
    }
    if ((properties.flags & 4) != 0)
    {
        glClearStencil(properties.stencil);
        mask |= GL_STENCIL_BUFFER_BIT;
    }
    glClear(mask);
}

void setDepthParameters(const DepthStencilProperties& properties)
{
    ContextGL::installBindingHooks();
    glbinding::refreshCurrentTable();
    if (!properties.depthTest)
    {
        glDisable(GL_DEPTH_TEST);
        return;
    }
    glEnable(GL_DEPTH_TEST);
    glDepthMask(properties.depthWrite ? GL_TRUE : GL_FALSE);
    if (const GLenum* function = gltables::comparisons.find(properties.depthFunc))
    {
        glDepthFunc(*function);
    }
}

} // namespace utils::GL
} // namespace renderengine
