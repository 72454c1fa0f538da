#include "support/ScriptedPlatform.h"

#include "context/ContextGL.h"
#include "platform/ContextLookup.h"

#include <renderengine/WGLConstants.h>

#include <fmt/format.h>
#include <glbinding/CurrentTable.h>

#include <atomic>
#include <cstdint>
#include <cstring>

namespace renderengine
{

namespace
{

// What is current, for each thread. The layer that set it may be gone by the time a thread asks.
struct Binding
{
    const ScriptedPlatform* owner = nullptr;
    HDC display = nullptr;
    HGLRC context = nullptr;
};

thread_local Binding t_binding;

std::atomic<std::uintptr_t> s_nextHandle{0x10000};

/// An address that no other handle of the process has had, since the engine keeps tables by address.
template <class Handle> Handle newHandle()
{
    return reinterpret_cast<Handle>(s_nextHandle += 0x10);
}

int findAttribute(const std::vector<int>& list, int attribute, int fallback)
{
    for (size_t i = 0; i + 1 < list.size(); i += 2)
    {
        if (list[i] == attribute)
        {
            return list[i + 1];
        }
    }
    return fallback;
}

std::vector<int> readList(const int* attributes)
{
    std::vector<int> list;
    for (const int* pair = attributes; pair && pair[0] != 0; pair += 2)
    {
        list.push_back(pair[0]);
        list.push_back(pair[1]);
    }
    return list;
}

bool isMatch(const ScriptedPlatform::PixelFormat& format, const std::vector<int>& list)
{
    const PIXELFORMATDESCRIPTOR& found = format.descriptor;
    const bool wantsGDI = findAttribute(list, WGL_SUPPORT_GDI_ARB, 0) != 0;
    const bool wantsStereo = findAttribute(list, WGL_STEREO_ARB, 0) != 0;
    return found.cRedBits >= findAttribute(list, WGL_RED_BITS_ARB, 0) &&
           found.cGreenBits >= findAttribute(list, WGL_GREEN_BITS_ARB, 0) &&
           found.cBlueBits >= findAttribute(list, WGL_BLUE_BITS_ARB, 0) &&
           found.cAlphaBits >= findAttribute(list, WGL_ALPHA_BITS_ARB, 0) &&
           found.cDepthBits >= findAttribute(list, WGL_DEPTH_BITS_ARB, 0) &&
           found.cStencilBits >= findAttribute(list, WGL_STENCIL_BITS_ARB, 0) &&
           format.samples >= findAttribute(list, WGL_SAMPLES_ARB, 0) &&
           (!wantsGDI || (found.dwFlags & PFD_SUPPORT_GDI) != 0) && (!wantsStereo || (found.dwFlags & PFD_STEREO) != 0);
}

} // namespace

ScriptedPlatform::ScriptedPlatform()
{
    formats.push_back(PixelFormat{defaultFormat(), 0});
    setPlatform(this);
    resetContextLookup();
}

ScriptedPlatform::~ScriptedPlatform()
{
    for (HGLRC context : m_contexts)
    {
        ContextGL::destroyContext(context);
    }
    t_binding = Binding();
    resetContextLookup();
    setPlatform(nullptr);
}

PIXELFORMATDESCRIPTOR ScriptedPlatform::defaultFormat()
{
    PIXELFORMATDESCRIPTOR format = {};
    format.nSize = sizeof(PIXELFORMATDESCRIPTOR);
    format.nVersion = 1;
    format.dwFlags = PFD_DRAW_TO_WINDOW | PFD_SUPPORT_OPENGL | PFD_DOUBLEBUFFER | PFD_SUPPORT_COMPOSITION;
    format.iPixelType = PFD_TYPE_RGBA;
    format.cColorBits = 24;
    format.cRedBits = 8;
    format.cGreenBits = 8;
    format.cBlueBits = 8;
    format.cAlphaBits = 8;
    format.cDepthBits = 24;
    format.cStencilBits = 8;
    return format;
}

std::vector<std::string> ScriptedPlatform::takeCalls()
{
    std::vector<std::string> calls;
    calls.swap(m_calls);
    return calls;
}

std::vector<std::string> ScriptedPlatform::callsMatching(const std::string& prefix) const
{
    std::vector<std::string> matches;
    for (const std::string& call : m_calls)
    {
        if (call.rfind(prefix, 0) == 0)
        {
            matches.push_back(call);
        }
    }
    return matches;
}

HDC ScriptedPlatform::makeHostDisplay(int pixelFormat)
{
    HWND window = newHandle<HWND>();
    Window& record = m_windows[window];
    record.display = newHandle<HDC>();
    record.pixelFormat = pixelFormat;
    record.isHost = true;
    m_names[window] = "hostWindow";
    m_names[record.display] = "hostDisplay";
    return record.display;
}

HGLRC ScriptedPlatform::makeHostContextCurrent(HDC display)
{
    HGLRC context = newHandle<HGLRC>();
    m_contexts.insert(context);
    m_names[context] = "hostContext";
    t_binding = Binding{this, display, context};
    return context;
}

std::string ScriptedPlatform::nameOf(HGLRC context) const
{
    const auto found = m_names.find(context);
    return found == m_names.end() ? "null" : found->second;
}

std::string ScriptedPlatform::nameOf(HDC display) const
{
    const auto found = m_names.find(display);
    return found == m_names.end() ? "null" : found->second;
}

std::string ScriptedPlatform::nameOf(HWND window) const
{
    const auto found = m_names.find(window);
    return found == m_names.end() ? "null" : found->second;
}

void ScriptedPlatform::log(const std::string& call)
{
    m_calls.push_back(call);
}

HGLRC ScriptedPlatform::newContext()
{
    HGLRC context = newHandle<HGLRC>();
    m_contexts.insert(context);
    m_names[context] = fmt::format("context{}", ++m_contextCount);
    return context;
}

HDC ScriptedPlatform::displayOf(HWND window)
{
    const auto found = m_windows.find(window);
    return found == m_windows.end() ? nullptr : found->second.display;
}

HGLRC ScriptedPlatform::createContext(HDC display)
{
    HGLRC context = failCreateContext ? nullptr : newContext();
    log(fmt::format("wglCreateContext({}) -> {}", nameOf(display), nameOf(context)));
    return context;
}

bool ScriptedPlatform::deleteContext(HGLRC context)
{
    log(fmt::format("wglDeleteContext({})", nameOf(context)));
    if (failDeleteContext || m_contexts.erase(context) == 0)
    {
        return false;
    }
    if (currentContext() == context)
    {
        t_binding = Binding();
    }
    return true;
}

bool ScriptedPlatform::makeCurrent(HDC display, HGLRC context)
{
    log(fmt::format("wglMakeCurrent({}, {})", nameOf(display), nameOf(context)));
    if (!context)
    {
        t_binding = Binding();
        return true;
    }
    if (failingBinds > 0)
    {
        --failingBinds;
        return false;
    }
    t_binding = Binding{this, display, context};
    return true;
}

HGLRC ScriptedPlatform::currentContext()
{
    return t_binding.owner == this ? t_binding.context : nullptr;
}

HDC ScriptedPlatform::currentDisplay()
{
    return t_binding.owner == this ? t_binding.display : nullptr;
}

void* ScriptedPlatform::procAddress(const char* name)
{
    if (std::strcmp(name, "wglCreateContextAttribsARB") == 0)
    {
        log(fmt::format("wglGetProcAddress({})", name));
        const bool isFound = hasCreateContextAttribs && currentContext();
        return isFound ? reinterpret_cast<void*>(&ScriptedPlatform::createContextAttribsEntry) : nullptr;
    }
    return glFunction ? glFunction(name) : nullptr;
}

HGLRC ScriptedPlatform::createContextAttribsEntry(HDC display, HGLRC shared, const int* attributes)
{
    return static_cast<ScriptedPlatform&>(platform()).createContextAttribs(display, shared, attributes);
}

HGLRC ScriptedPlatform::createContextAttribs(HDC display, HGLRC shared, const int* attributes)
{
    ContextRequest request;
    request.display = display;
    request.shared = shared;
    request.attributes = readList(attributes);
    request.hasAttributes = attributes != nullptr;
    m_contextRequests.push_back(request);
    const int version = findAttribute(request.attributes, WGL_CONTEXT_MAJOR_VERSION_ARB, 1) * 100 +
                        findAttribute(request.attributes, WGL_CONTEXT_MINOR_VERSION_ARB, 0) * 10;
    HGLRC context = failCreateContextAttribs || version > highestVersion ? nullptr : newContext();
    log(fmt::format("wglCreateContextAttribsARB({}, {}) -> {}", nameOf(display), nameOf(shared), nameOf(context)));
    return context;
}

bool ScriptedPlatform::getPixelFormatAttribivARB(HDC display, int pixelFormat, int /*layerPlane*/,
                                                 unsigned int /*attributeCount*/, const int* attributes, int* values)
{
    log(fmt::format("wglGetPixelFormatAttribivARB({}, {})", nameOf(display), pixelFormat));
    if (failAttributeQuery || attributes[0] != WGL_NUMBER_PIXEL_FORMATS_ARB)
    {
        return false;
    }
    values[0] = static_cast<int>(formats.size());
    return true;
}

bool ScriptedPlatform::choosePixelFormatARB(HDC display, const int* attributes, unsigned int maxFormats, int* numbers,
                                            unsigned int* count)
{
    const std::vector<int> list = readList(attributes);
    m_attributeLists.push_back(list);
    log(fmt::format("wglChoosePixelFormatARB({}, {})", nameOf(display), maxFormats));
    if (failChooseARB || (failChooseARBWithSamples && findAttribute(list, WGL_SAMPLES_ARB, 0) > 0))
    {
        return false;
    }
    unsigned int found = 0;
    for (size_t i = 0; i < formats.size() && found < maxFormats; ++i)
    {
        if (isMatch(formats[i], list))
        {
            numbers[found++] = static_cast<int>(i) + 1;
        }
    }
    *count = found;
    return true;
}

int ScriptedPlatform::choosePixelFormat(HDC display, const PIXELFORMATDESCRIPTOR& wanted)
{
    log(fmt::format("ChoosePixelFormat({})", nameOf(display)));
    m_wantedDescriptors.push_back(wanted);
    if (chooseResult < 1)
    {
        return chooseResult;
    }
    if (!display || formats.empty())
    {
        return 0;
    }
    // The system takes something even when nothing fits; here that is the first one.
    for (size_t i = 0; i < formats.size(); ++i)
    {
        const PIXELFORMATDESCRIPTOR& found = formats[i].descriptor;
        if (found.cDepthBits >= wanted.cDepthBits && found.cRedBits >= wanted.cRedBits &&
            (wanted.dwFlags & ~found.dwFlags) == 0)
        {
            return static_cast<int>(i) + 1;
        }
    }
    return 1;
}

int ScriptedPlatform::describePixelFormat(HDC /*display*/, int pixelFormat, PIXELFORMATDESCRIPTOR* descriptor)
{
    log(fmt::format("DescribePixelFormat({})", pixelFormat));
    if (failDescribePixelFormat || pixelFormat < 1 || static_cast<size_t>(pixelFormat) > formats.size())
    {
        return 0;
    }
    *descriptor = formats[static_cast<size_t>(pixelFormat) - 1].descriptor;
    return static_cast<int>(formats.size());
}

int ScriptedPlatform::getPixelFormat(HDC display)
{
    for (const auto& window : m_windows)
    {
        if (window.second.display == display)
        {
            return window.second.pixelFormat;
        }
    }
    return 0;
}

bool ScriptedPlatform::setPixelFormat(HDC display, int pixelFormat, const PIXELFORMATDESCRIPTOR* /*descriptor*/)
{
    log(fmt::format("SetPixelFormat({}, {})", nameOf(display), pixelFormat));
    if (failingSetPixelFormats > 0)
    {
        --failingSetPixelFormats;
        return false;
    }
    for (auto& window : m_windows)
    {
        if (window.second.display == display)
        {
            window.second.pixelFormat = pixelFormat;
            return pixelFormat > 0;
        }
    }
    return false;
}

void* ScriptedPlatform::moduleHandle()
{
    return this;
}

bool ScriptedPlatform::getClassInfo(void* /*module*/, const char* className)
{
    log(fmt::format("GetClassInfoA({})", className));
    return m_isClassRegistered;
}

bool ScriptedPlatform::registerClass(void* /*module*/, const char* className, unsigned int style)
{
    log(fmt::format("RegisterClassA({}, {:#x})", className, style));
    m_isClassRegistered = !failRegisterClass;
    return m_isClassRegistered;
}

bool ScriptedPlatform::unregisterClass(void* /*module*/, const char* className)
{
    log(fmt::format("UnregisterClassA({})", className));
    for (const auto& window : m_windows)
    {
        if (!window.second.isHost)
        {
            return false;
        }
    }
    const bool wasRegistered = m_isClassRegistered;
    m_isClassRegistered = false;
    return wasRegistered;
}

HWND ScriptedPlatform::createWindow(void* /*module*/, const char* className, const char* title, unsigned int style,
                                    int x, int y, int width, int height)
{
    HWND window = nullptr;
    if (!failCreateWindow)
    {
        window = newHandle<HWND>();
        Window& record = m_windows[window];
        record.display = newHandle<HDC>();
        ++m_windowCount;
        m_names[window] = fmt::format("window{}", m_windowCount);
        m_names[record.display] = fmt::format("display{}", m_windowCount);
    }
    log(fmt::format("CreateWindowExA({}, {}, {:#x}, {}, {}, {}, {}) -> {}", className, title, style, x, y, width,
                    height, nameOf(window)));
    return window;
}

bool ScriptedPlatform::destroyWindow(HWND window)
{
    log(fmt::format("DestroyWindow({})", nameOf(window)));
    return m_windows.erase(window) != 0;
}

HDC ScriptedPlatform::getDC(HWND window)
{
    log(fmt::format("GetDC({})", nameOf(window)));
    return failGetDC ? nullptr : displayOf(window);
}

bool ScriptedPlatform::releaseDC(HWND window, HDC display)
{
    log(fmt::format("ReleaseDC({}, {})", nameOf(window), nameOf(display)));
    return displayOf(window) == display;
}

HWND ScriptedPlatform::windowFromDC(HDC display)
{
    log(fmt::format("WindowFromDC({})", nameOf(display)));
    for (const auto& window : m_windows)
    {
        if (window.second.display == display)
        {
            return window.first;
        }
    }
    return nullptr;
}

bool ScriptedPlatform::displayDeviceKey(unsigned int device, std::string& key)
{
    log(fmt::format("EnumDisplayDevicesA({})", device));
    if (deviceKey.empty() || device != 0)
    {
        return false;
    }
    key = deviceKey;
    return true;
}

void ScriptedPlatform::systemVersion(int& major, int& minor)
{
    major = majorVersion;
    minor = minorVersion;
}

unsigned long ScriptedPlatform::lastError()
{
    return error;
}

std::string ScriptedPlatform::errorText(unsigned long /*number*/)
{
    return errorMessage;
}

} // namespace renderengine
