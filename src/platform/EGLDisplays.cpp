#include "platform/EGLDisplays.h"

#include "platform/EGLAttributes.h"

#include <EGL/eglext.h>
#include <dlfcn.h>
#include <spdlog/spdlog.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>

namespace renderengine
{

namespace
{

int readAttribute(EGLDisplay display, EGLConfig config, EGLint attribute)
{
    EGLint value = 0;
    return eglGetConfigAttrib(display, config, attribute, &value) ? value : 0;
}

EGLConfigInfo readConfig(EGLDisplay display, EGLConfig config, bool hasFloat)
{
    EGLConfigInfo info;
    info.config = config;
    info.id = readAttribute(display, config, EGL_CONFIG_ID);
    info.red = readAttribute(display, config, EGL_RED_SIZE);
    info.green = readAttribute(display, config, EGL_GREEN_SIZE);
    info.blue = readAttribute(display, config, EGL_BLUE_SIZE);
    info.alpha = readAttribute(display, config, EGL_ALPHA_SIZE);
    info.depth = readAttribute(display, config, EGL_DEPTH_SIZE);
    info.stencil = readAttribute(display, config, EGL_STENCIL_SIZE);
    info.sampleBuffers = readAttribute(display, config, EGL_SAMPLE_BUFFERS);
    info.samples = readAttribute(display, config, EGL_SAMPLES);
    info.isSlow = readAttribute(display, config, EGL_CONFIG_CAVEAT) == EGL_SLOW_CONFIG;
    info.hasPbuffer = (readAttribute(display, config, EGL_SURFACE_TYPE) & EGL_PBUFFER_BIT) != 0;
    info.isFloat =
        hasFloat && readAttribute(display, config, EGL_COLOR_COMPONENT_TYPE_EXT) == EGL_COLOR_COMPONENT_TYPE_FLOAT_EXT;
    return info;
}

void reportRefused(const std::string& name, const std::string& reason)
{
    spdlog::info("Platform: EGL on {} is not taken: {}", name, reason);
}

/// The display, read, when it can be initialised and offers OpenGL. The log tells the choice and the reason against.
std::shared_ptr<const EGLDisplayInfo> tryDisplay(const std::string& name, EGLDisplay display)
{
    if (display == EGL_NO_DISPLAY || !eglInitialize(display, nullptr, nullptr))
    {
        reportRefused(name, eglErrorName(static_cast<unsigned long>(eglGetError())));
        return nullptr;
    }
    std::shared_ptr<const EGLDisplayInfo> info = readEGLDisplay(display);
    if (info->configs.empty())
    {
        reportRefused(name, "it offers no OpenGL");
        return nullptr;
    }
    const char* version = eglQueryString(display, EGL_VERSION);
    const char* vendor = eglQueryString(display, EGL_VENDOR);
    spdlog::info("Platform: EGL on {}, version {} of {}", name, version ? version : "?", vendor ? vendor : "?");
    return info;
}

std::shared_ptr<const EGLDisplayInfo> tryDevices(bool isHardware)
{
    const auto queryDevices = reinterpret_cast<PFNEGLQUERYDEVICESEXTPROC>(eglGetProcAddress("eglQueryDevicesEXT"));
    const auto queryDeviceString =
        reinterpret_cast<PFNEGLQUERYDEVICESTRINGEXTPROC>(eglGetProcAddress("eglQueryDeviceStringEXT"));
    const std::string name = isHardware ? "a hardware device" : "a software device";
    EGLint count = 0;
    if (!queryDevices || !queryDevices(0, nullptr, &count) || count <= 0)
    {
        reportRefused(name, "EGL lists no devices");
        return nullptr;
    }
    std::vector<EGLDeviceEXT> devices(static_cast<size_t>(count));
    if (!queryDevices(count, devices.data(), &count))
    {
        return nullptr;
    }
    devices.resize(static_cast<size_t>(count));
    bool isTried = false;
    for (EGLDeviceEXT device : devices)
    {
        const char* extensions = queryDeviceString ? queryDeviceString(device, EGL_EXTENSIONS) : nullptr;
        if (isHardware == hasExtension(extensions, "EGL_MESA_device_software"))
        {
            continue;
        }
        isTried = true;
        if (auto info = tryDisplay(name, eglGetPlatformDisplay(EGL_PLATFORM_DEVICE_EXT, device, nullptr)))
        {
            return info;
        }
    }
    if (!isTried)
    {
        reportRefused(name, "there is none");
    }
    return nullptr;
}

} // namespace

EGLApiScope::EGLApiScope() : m_previous(eglQueryAPI())
{
    if (m_previous != EGL_OPENGL_API)
    {
        eglBindAPI(EGL_OPENGL_API);
    }
}

EGLApiScope::~EGLApiScope()
{
    if (m_previous != EGL_OPENGL_API && m_previous != EGL_NONE)
    {
        eglBindAPI(m_previous);
    }
}

const EGLConfigInfo* EGLDisplayInfo::find(int pixelFormat) const
{
    if (pixelFormat < 1 || static_cast<size_t>(pixelFormat) > configs.size())
    {
        return nullptr;
    }
    return &configs[static_cast<size_t>(pixelFormat) - 1];
}

int EGLDisplayInfo::findPixelFormat(EGLint configId) const
{
    const auto found = std::find_if(configs.begin(), configs.end(),
                                    [configId](const EGLConfigInfo& config) { return config.id == configId; });
    return found == configs.end() ? 0 : static_cast<int>(found - configs.begin()) + 1;
}

std::shared_ptr<const EGLDisplayInfo> readEGLDisplay(EGLDisplay display)
{
    auto info = std::make_shared<EGLDisplayInfo>();
    info->display = display;
    const char* extensions = eglQueryString(display, EGL_EXTENSIONS);
    info->isSurfaceless = hasExtension(extensions, "EGL_KHR_surfaceless_context");
    const bool hasFloat = hasExtension(extensions, "EGL_EXT_pixel_format_float");

    EGLint count = 0;
    eglGetConfigs(display, nullptr, 0, &count);
    std::vector<EGLConfig> configs(static_cast<size_t>(std::max(count, 0)));
    if (configs.empty() || !eglGetConfigs(display, configs.data(), count, &count))
    {
        return info;
    }
    configs.resize(static_cast<size_t>(count));
    for (EGLConfig config : configs)
    {
        if ((readAttribute(display, config, EGL_RENDERABLE_TYPE) & EGL_OPENGL_BIT) != 0)
        {
            info->configs.push_back(readConfig(display, config, hasFloat));
        }
    }
    return info;
}

std::shared_ptr<const EGLDisplayInfo> openEGLDisplay()
{
    const char* extensions = eglQueryString(EGL_NO_DISPLAY, EGL_EXTENSIONS);
    const char* server = std::getenv("DISPLAY");
    if (!server || *server == '\0')
    {
        reportRefused("an X server", "DISPLAY names none");
    }
    else if (!hasExtension(extensions, "EGL_KHR_platform_x11") && !hasExtension(extensions, "EGL_EXT_platform_x11"))
    {
        reportRefused("an X server", "EGL lacks the extension");
    }
    else if (auto info = tryDisplay(std::string("the X server ") + server,
                                    eglGetPlatformDisplay(EGL_PLATFORM_X11_KHR, EGL_DEFAULT_DISPLAY, nullptr)))
    {
        return info;
    }
    if (hasExtension(extensions, "EGL_EXT_platform_device"))
    {
        for (bool isHardware : {true, false})
        {
            if (auto info = tryDevices(isHardware))
            {
                return info;
            }
        }
    }
    if (hasExtension(extensions, "EGL_MESA_platform_surfaceless"))
    {
        if (auto info = tryDisplay("the surfaceless platform",
                                   eglGetPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr)))
        {
            return info;
        }
    }
    return tryDisplay("the default display", eglGetDisplay(EGL_DEFAULT_DISPLAY));
}

bool hasExtension(const char* list, const char* name)
{
    const size_t length = std::strlen(name);
    while (list && *list != '\0')
    {
        const size_t wordLength = std::strcspn(list, " ");
        if (wordLength == length && std::strncmp(list, name, length) == 0)
        {
            return true;
        }
        list += wordLength;
        list += std::strspn(list, " ");
    }
    return false;
}

bool isForeignBindingCurrent()
{
    for (const char* library : {"libGLX.so.0", "libGL.so.1"})
    {
        // Only a library that the host has loaded can have a context.
        void* handle = dlopen(library, RTLD_LAZY | RTLD_NOLOAD);
        if (!handle)
        {
            continue;
        }
        using GetCurrentContext = void* (*)();
        const auto getCurrentContext = reinterpret_cast<GetCurrentContext>(dlsym(handle, "glXGetCurrentContext"));
        const bool isCurrent = getCurrentContext && getCurrentContext();
        dlclose(handle);
        if (isCurrent)
        {
            return true;
        }
    }
    return false;
}

} // namespace renderengine
