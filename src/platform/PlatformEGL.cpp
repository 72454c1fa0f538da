#include "platform/PlatformEGL.h"

#include "platform/EGLAttributes.h"

#include <renderengine/WGLConstants.h>

#include <kavelor/SoDevice.h>
#include <spdlog/spdlog.h>

#include <algorithm>
#include <cstring>
#include <vector>

namespace renderengine
{

namespace
{

thread_local unsigned long t_error = EGL_SUCCESS;

// What the layer bound last on this thread. It counts only while EGL still says the same.
thread_local HDC t_boundDisplay = nullptr;
thread_local EGLContext t_boundContext = EGL_NO_CONTEXT;

void setError(unsigned long error)
{
    t_error = error;
}

EGLContext toEGL(HGLRC context)
{
    return static_cast<EGLContext>(context);
}

HGLRC fromEGL(EGLContext context)
{
    return static_cast<HGLRC>(context);
}

PlatformEGL& instance()
{
    // Never destroyed: contexts may be released by destructors of static objects.
    static PlatformEGL* layer = new PlatformEGL;
    return *layer;
}

// The WGL functions that are found by name.

HDC wglGetCurrentDCAnswer()
{
    return instance().currentDisplay();
}

const char* wglGetExtensionsStringAnswer(HDC)
{
    return "WGL_ARB_extensions_string WGL_ARB_create_context WGL_ARB_create_context_profile WGL_ARB_pixel_format "
           "WGL_ARB_multisample";
}

HGLRC wglCreateContextAttribsAnswer(HDC display, HGLRC shared, const int* attributes)
{
    return instance().createContextAttribs(display, shared, attributes);
}

int wglChoosePixelFormatAnswer(HDC display, const int* attributes, const float*, unsigned int maxFormats, int* formats,
                               unsigned int* count)
{
    return instance().choosePixelFormatARB(display, attributes, maxFormats, formats, count) ? 1 : 0;
}

int wglGetPixelFormatAttribivAnswer(HDC display, int pixelFormat, int layerPlane, unsigned int attributeCount,
                                    const int* attributes, int* values)
{
    return instance().getPixelFormatAttribivARB(display, pixelFormat, layerPlane, attributeCount, attributes, values)
               ? 1
               : 0;
}

struct NamedFunction
{
    const char* name;
    void* function;
};

void* findWGLFunction(const char* name)
{
    const NamedFunction functions[] = {
        {"wglGetCurrentDC", reinterpret_cast<void*>(&wglGetCurrentDCAnswer)},
        {"wglGetExtensionsStringARB", reinterpret_cast<void*>(&wglGetExtensionsStringAnswer)},
        {"wglCreateContextAttribsARB", reinterpret_cast<void*>(&wglCreateContextAttribsAnswer)},
        {"wglChoosePixelFormatARB", reinterpret_cast<void*>(&wglChoosePixelFormatAnswer)},
        {"wglGetPixelFormatAttribivARB", reinterpret_cast<void*>(&wglGetPixelFormatAttribivAnswer)}};
    for (const NamedFunction& row : functions)
    {
        if (std::strcmp(row.name, name) == 0)
        {
            return row.function;
        }
    }
    return nullptr;
}

} // namespace

PlatformLayer& nativePlatform()
{
    return instance();
}

std::shared_ptr<const EGLDisplayInfo> PlatformEGL::chooseDisplay()
{
    {
        EGLApiScope api;
        if (eglGetCurrentContext() != EGL_NO_CONTEXT)
        {
            return readEGLDisplay(eglGetCurrentDisplay());
        }
    }
    std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_ownDisplay)
    {
        m_ownDisplay = openEGLDisplay();
    }
    return m_ownDisplay;
}

bool PlatformEGL::isAlive(HDC display)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_displays.count(display) != 0;
}

/// The display on which the layer made a context, else the one that is current.
EGLDisplay PlatformEGL::displayOf(EGLContext context)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    const auto found = m_contexts.find(context);
    return found == m_contexts.end() ? eglGetCurrentDisplay() : found->second;
}

HGLRC PlatformEGL::createContext(HDC display)
{
    return createContextAttribs(display, nullptr, nullptr);
}

HGLRC PlatformEGL::createContextAttribs(HDC display, HGLRC shared, const int* attributes)
{
    if (!isAlive(display))
    {
        setError(EGL_BAD_DISPLAY);
        return nullptr;
    }
    const EGLConfigInfo* config = display->info->find(display->pixelFormat);
    if (!config)
    {
        setError(EGL_BAD_CONFIG);
        return nullptr;
    }
    std::vector<EGLint> translated;
    if (!translateContextAttributes(attributes, translated))
    {
        setError(EGL_BAD_ATTRIBUTE);
        return nullptr;
    }
    EGLApiScope api;
    EGLContext context = eglCreateContext(display->info->display, config->config, toEGL(shared), translated.data());
    if (context == EGL_NO_CONTEXT)
    {
        setError(static_cast<unsigned long>(eglGetError()));
        return nullptr;
    }
    std::lock_guard<std::mutex> lock(m_mutex);
    m_contexts[context] = display->info->display;
    return fromEGL(context);
}

bool PlatformEGL::deleteContext(HGLRC context)
{
    if (!context)
    {
        setError(EGL_BAD_CONTEXT);
        return false;
    }
    if (currentContext() == context)
    {
        makeCurrent(nullptr, nullptr);
    }
    EGLApiScope api;
    if (!eglDestroyContext(displayOf(toEGL(context)), toEGL(context)))
    {
        setError(static_cast<unsigned long>(eglGetError()));
        return false;
    }
    std::lock_guard<std::mutex> lock(m_mutex);
    m_contexts.erase(toEGL(context));
    return true;
}

bool PlatformEGL::makeCurrent(HDC display, HGLRC context)
{
    EGLApiScope api;
    if (!context)
    {
        t_boundDisplay = nullptr;
        t_boundContext = EGL_NO_CONTEXT;
        // What is current may belong to another display than the given one.
        EGLDisplay current = eglGetCurrentDisplay();
        if (current == EGL_NO_DISPLAY || eglMakeCurrent(current, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT))
        {
            return true;
        }
        setError(static_cast<unsigned long>(eglGetError()));
        return false;
    }
    if (!isAlive(display))
    {
        setError(EGL_BAD_DISPLAY);
        return false;
    }
    if (eglMakeCurrent(display->info->display, display->draw, display->read, toEGL(context)))
    {
        t_boundDisplay = display;
        t_boundContext = toEGL(context);
        return true;
    }
    setError(static_cast<unsigned long>(eglGetError()));
    if (isForeignBindingCurrent())
    {
        static std::once_flag s_told;
        std::call_once(
            s_told,
            []
            {
                spdlog::error(
                    "A GLX context is current on this thread, which keeps EGL from binding one: the host must "
                    "make its contexts through EGL");
            });
    }
    return false;
}

HGLRC PlatformEGL::currentContext()
{
    EGLApiScope api;
    return fromEGL(eglGetCurrentContext());
}

HDC PlatformEGL::currentDisplay()
{
    EGLApiScope api;
    EGLContext context = eglGetCurrentContext();
    if (context == EGL_NO_CONTEXT)
    {
        return nullptr;
    }
    if (context == t_boundContext && isAlive(t_boundDisplay) &&
        t_boundDisplay->info->display == eglGetCurrentDisplay() &&
        t_boundDisplay->draw == eglGetCurrentSurface(EGL_DRAW) &&
        t_boundDisplay->read == eglGetCurrentSurface(EGL_READ))
    {
        return t_boundDisplay;
    }
    return findForeignDisplay(context);
}

HDC PlatformEGL::findForeignDisplay(EGLContext context)
{
    EGLDisplay display = eglGetCurrentDisplay();
    EGLSurface draw = eglGetCurrentSurface(EGL_DRAW);
    EGLSurface read = eglGetCurrentSurface(EGL_READ);
    EGLint configId = 0;
    eglQueryContext(display, context, EGL_CONFIG_ID, &configId);

    std::lock_guard<std::mutex> lock(m_mutex);
    std::unique_ptr<HDC__>& record = m_foreignDisplays[ForeignKey(display, draw, read, configId)];
    if (!record)
    {
        record = std::make_unique<HDC__>();
        record->info = readEGLDisplay(display);
        record->pixelFormat = record->info->findPixelFormat(configId);
        record->draw = draw;
        record->read = read;
        m_displays.insert(record.get());
    }
    return record.get();
}

void* PlatformEGL::procAddress(const char* name)
{
    EGLApiScope api;
    if (eglGetCurrentContext() == EGL_NO_CONTEXT)
    {
        setError(EGL_BAD_CONTEXT);
        return nullptr;
    }
    if (std::strncmp(name, "wgl", 3) == 0)
    {
        return findWGLFunction(name);
    }
    return reinterpret_cast<void*>(eglGetProcAddress(name));
}

bool PlatformEGL::getPixelFormatAttribivARB(HDC display, int pixelFormat, int /*layerPlane*/,
                                            unsigned int attributeCount, const int* attributes, int* values)
{
    if (!isAlive(display))
    {
        setError(EGL_BAD_DISPLAY);
        return false;
    }
    for (unsigned int i = 0; i < attributeCount; ++i)
    {
        if (!readPixelFormatAttribute(*display->info, pixelFormat, attributes[i], values[i]))
        {
            setError(EGL_BAD_ATTRIBUTE);
            return false;
        }
    }
    return true;
}

bool PlatformEGL::choosePixelFormatARB(HDC display, const int* attributes, unsigned int maxFormats, int* formats,
                                       unsigned int* count)
{
    if (!isAlive(display))
    {
        setError(EGL_BAD_DISPLAY);
        return false;
    }
    const std::vector<int> matches = choosePixelFormats(*display->info, attributes);
    *count = std::min(maxFormats, static_cast<unsigned int>(matches.size()));
    std::copy_n(matches.begin(), *count, formats);
    return true;
}

int PlatformEGL::choosePixelFormat(HDC display, const PIXELFORMATDESCRIPTOR& wanted)
{
    if (!isAlive(display))
    {
        setError(EGL_BAD_DISPLAY);
        return 0;
    }
    return chooseNearestPixelFormat(*display->info, wanted);
}

int PlatformEGL::describePixelFormat(HDC display, int pixelFormat, PIXELFORMATDESCRIPTOR* descriptor)
{
    const EGLConfigInfo* config = isAlive(display) ? display->info->find(pixelFormat) : nullptr;
    if (!config)
    {
        setError(isAlive(display) ? EGL_BAD_CONFIG : EGL_BAD_DISPLAY);
        return 0;
    }
    if (descriptor)
    {
        *descriptor = describeConfig(*config);
    }
    return static_cast<int>(display->info->configs.size());
}

int PlatformEGL::getPixelFormat(HDC display)
{
    return isAlive(display) ? display->pixelFormat : 0;
}

bool PlatformEGL::setPixelFormat(HDC display, int pixelFormat, const PIXELFORMATDESCRIPTOR* /*descriptor*/)
{
    const EGLConfigInfo* config = isAlive(display) ? display->info->find(pixelFormat) : nullptr;
    if (!config)
    {
        setError(isAlive(display) ? EGL_BAD_CONFIG : EGL_BAD_DISPLAY);
        return false;
    }
    if (display->pixelFormat == pixelFormat)
    {
        return true;
    }
    if (display->pixelFormat != 0 || !display->window)
    {
        // A window takes a pixel format once, and the host's surfaces have theirs.
        setError(EGL_BAD_MATCH);
        return false;
    }
    if (config->hasPbuffer)
    {
        const EGLint attributes[] = {EGL_WIDTH, display->window->width, EGL_HEIGHT, display->window->height, EGL_NONE};
        EGLSurface surface = eglCreatePbufferSurface(display->info->display, config->config, attributes);
        if (surface == EGL_NO_SURFACE)
        {
            setError(static_cast<unsigned long>(eglGetError()));
            return false;
        }
        display->draw = surface;
        display->read = surface;
    }
    else if (!display->info->isSurfaceless)
    {
        setError(EGL_BAD_MATCH);
        return false;
    }
    display->pixelFormat = pixelFormat;
    return true;
}

void* PlatformEGL::moduleHandle()
{
    return this;
}

bool PlatformEGL::getClassInfo(void* /*module*/, const char* className)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_windowsOfClass.count(className) != 0;
}

bool PlatformEGL::registerClass(void* /*module*/, const char* className, unsigned int /*style*/)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_windowsOfClass.emplace(className, 0).second)
    {
        setError(EGL_BAD_PARAMETER);
        return false;
    }
    return true;
}

bool PlatformEGL::unregisterClass(void* /*module*/, const char* className)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    const auto found = m_windowsOfClass.find(className);
    if (found == m_windowsOfClass.end() || found->second != 0)
    {
        setError(EGL_BAD_ACCESS);
        return false;
    }
    m_windowsOfClass.erase(found);
    return true;
}

HWND PlatformEGL::createWindow(void* /*module*/, const char* className, const char* /*title*/, unsigned int /*style*/,
                               int /*x*/, int /*y*/, int width, int height)
{
    std::shared_ptr<const EGLDisplayInfo> info = chooseDisplay();
    if (!info)
    {
        spdlog::error("No EGL display offers OpenGL: tried the X server of DISPLAY, the devices, the surfaceless "
                      "platform and the default display");
        setError(EGL_NOT_INITIALIZED);
        return nullptr;
    }
    std::lock_guard<std::mutex> lock(m_mutex);
    const auto windowClass = m_windowsOfClass.find(className);
    if (windowClass == m_windowsOfClass.end())
    {
        setError(EGL_BAD_PARAMETER);
        return nullptr;
    }
    ++windowClass->second;
    auto window = std::make_unique<HWND__>();
    window->className = className;
    window->width = width;
    window->height = height;
    window->display.info = std::move(info);
    window->display.window = window.get();
    m_windows.insert(window.get());
    m_displays.insert(&window->display);
    return window.release();
}

bool PlatformEGL::destroyWindow(HWND window)
{
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (m_windows.erase(window) == 0)
        {
            setError(EGL_BAD_NATIVE_WINDOW);
            return false;
        }
        m_displays.erase(&window->display);
        const auto windowClass = m_windowsOfClass.find(window->className);
        if (windowClass != m_windowsOfClass.end())
        {
            --windowClass->second;
        }
    }
    if (window->display.draw != EGL_NO_SURFACE)
    {
        eglDestroySurface(window->display.info->display, window->display.draw);
    }
    delete window;
    return true;
}

HDC PlatformEGL::getDC(HWND window)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_windows.count(window) != 0 ? &window->display : nullptr;
}

bool PlatformEGL::releaseDC(HWND window, HDC display)
{
    // A window has one display of its own for its whole life, so there is nothing to give back.
    return getDC(window) == display;
}

HWND PlatformEGL::windowFromDC(HDC display)
{
    return isAlive(display) ? display->window : nullptr;
}

bool PlatformEGL::displayDeviceKey(unsigned int /*device*/, std::string& /*key*/)
{
    return false;
}

void PlatformEGL::systemVersion(int& majorVersion, int& minorVersion)
{
    SoDevice::readSystemVersion(majorVersion, minorVersion);
}

unsigned long PlatformEGL::lastError()
{
    return t_error;
}

std::string PlatformEGL::errorText(unsigned long error)
{
    return eglErrorName(error);
}

} // namespace renderengine
