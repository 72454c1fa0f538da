#include "platform/PlatformLayer.h"

#include <renderengine/WGLConstants.h>

#include <kavelor/SoDevice.h>
#include <spdlog/spdlog.h>

#include <cstdint>
#include <mutex>

namespace renderengine
{

namespace
{

using ChoosePixelFormatARB = BOOL(WINAPI*)(HDC, const int*, const FLOAT*, UINT, int*, UINT*);
using GetPixelFormatAttribivARB = BOOL(WINAPI*)(HDC, int, int, UINT, const int*, int*);

/// Some drivers say "not found" with a small number.
bool isFunction(PROC address)
{
    const auto value = reinterpret_cast<std::intptr_t>(address);
    return value > 3 || value < -1;
}

/// Forwards to WGL, GDI and the window system.
class PlatformWin32 : public PlatformLayer
{
public:
    HGLRC createContext(HDC display) override { return wglCreateContext(display); }
    bool deleteContext(HGLRC context) override { return wglDeleteContext(context) != FALSE; }
    bool makeCurrent(HDC display, HGLRC context) override
    {
        // Releasing nothing succeeds; not every driver's function agrees.
        const bool isNothing = !context && !wglGetCurrentContext();
        return isNothing || wglMakeCurrent(display, context) != FALSE;
    }
    HGLRC currentContext() override { return wglGetCurrentContext(); }
    HDC currentDisplay() override { return wglGetCurrentDC(); }
    void* procAddress(const char* name) override;

    bool getPixelFormatAttribivARB(HDC display, int pixelFormat, int layerPlane, unsigned int attributeCount,
                                   const int* attributes, int* values) override;
    bool choosePixelFormatARB(HDC display, const int* attributes, unsigned int maxFormats, int* formats,
                              unsigned int* count) override;

    int choosePixelFormat(HDC display, const PIXELFORMATDESCRIPTOR& wanted) override
    {
        return ChoosePixelFormat(display, &wanted);
    }
    int describePixelFormat(HDC display, int pixelFormat, PIXELFORMATDESCRIPTOR* descriptor) override
    {
        return DescribePixelFormat(display, pixelFormat, sizeof(PIXELFORMATDESCRIPTOR), descriptor);
    }
    int getPixelFormat(HDC display) override { return GetPixelFormat(display); }
    bool setPixelFormat(HDC display, int pixelFormat, const PIXELFORMATDESCRIPTOR* descriptor) override
    {
        return SetPixelFormat(display, pixelFormat, descriptor) != FALSE;
    }

    void* moduleHandle() override { return GetModuleHandleA(nullptr); }
    bool getClassInfo(void* module, const char* className) override;
    bool registerClass(void* module, const char* className, unsigned int style) override;
    bool unregisterClass(void* module, const char* className) override
    {
        return UnregisterClassA(className, static_cast<HINSTANCE>(module)) != FALSE;
    }
    HWND createWindow(void* module, const char* className, const char* title, unsigned int style, int x, int y,
                      int width, int height) override
    {
        static std::once_flag s_told;
        std::call_once(s_told, [] { spdlog::info("Platform: WGL on windows of the system"); });
        return CreateWindowExA(0, className, title, style, x, y, width, height, nullptr, nullptr,
                               static_cast<HINSTANCE>(module), nullptr);
    }
    bool destroyWindow(HWND window) override { return DestroyWindow(window) != FALSE; }
    HDC getDC(HWND window) override { return GetDC(window); }
    bool releaseDC(HWND window, HDC display) override { return ReleaseDC(window, display) != 0; }
    HWND windowFromDC(HDC display) override { return WindowFromDC(display); }

    bool displayDeviceKey(unsigned int device, std::string& key) override;
    void systemVersion(int& majorVersion, int& minorVersion) override
    {
        SoDevice::readSystemVersion(majorVersion, minorVersion);
    }
    unsigned long lastError() override { return GetLastError(); }
    std::string errorText(unsigned long error) override;
};

void* PlatformWin32::procAddress(const char* name)
{
    if (!wglGetCurrentContext())
    {
        return nullptr;
    }
    PROC address = wglGetProcAddress(name);
    if (!isFunction(address))
    {
        // GL 1.1 and WGL itself are exported by the library, not found at run time.
        HMODULE library = GetModuleHandleA("opengl32.dll");
        address = library ? reinterpret_cast<PROC>(GetProcAddress(library, name)) : nullptr;
    }
    return reinterpret_cast<void*>(address);
}

bool PlatformWin32::getPixelFormatAttribivARB(HDC display, int pixelFormat, int layerPlane, unsigned int attributeCount,
                                              const int* attributes, int* values)
{
    const auto function = reinterpret_cast<GetPixelFormatAttribivARB>(procAddress("wglGetPixelFormatAttribivARB"));
    return function && function(display, pixelFormat, layerPlane, attributeCount, attributes, values) != FALSE;
}

bool PlatformWin32::choosePixelFormatARB(HDC display, const int* attributes, unsigned int maxFormats, int* formats,
                                         unsigned int* count)
{
    const auto function = reinterpret_cast<ChoosePixelFormatARB>(procAddress("wglChoosePixelFormatARB"));
    return function && function(display, attributes, nullptr, maxFormats, formats, count) != FALSE;
}

bool PlatformWin32::getClassInfo(void* module, const char* className)
{
    WNDCLASSA info = {};
    return GetClassInfoA(static_cast<HINSTANCE>(module), className, &info) != FALSE;
}

bool PlatformWin32::registerClass(void* module, const char* className, unsigned int style)
{
    WNDCLASSA info = {};
    info.style = style;
    info.lpfnWndProc = &DefWindowProcA;
    info.hInstance = static_cast<HINSTANCE>(module);
    info.lpszClassName = className;
    return RegisterClassA(&info) != 0;
}

bool PlatformWin32::displayDeviceKey(unsigned int device, std::string& key)
{
    DISPLAY_DEVICEA info = {};
    info.cb = sizeof(info);
    if (!EnumDisplayDevicesA(nullptr, device, &info, 0))
    {
        return false;
    }
    key = info.DeviceKey;
    return true;
}

std::string PlatformWin32::errorText(unsigned long error)
{
    char* buffer = nullptr;
    const DWORD flags = FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
    const DWORD length = FormatMessageA(flags, nullptr, error, 0, reinterpret_cast<char*>(&buffer), 0, nullptr);
    const std::string text = length > 0 && buffer ? std::string(buffer, length) : std::string();
    LocalFree(buffer);
    return text;
}

static_assert(WindowStyle::ClassVerticalRedraw == CS_VREDRAW && WindowStyle::ClassHorizontalRedraw == CS_HREDRAW &&
                  WindowStyle::ClassOwnDC == CS_OWNDC && WindowStyle::ClipChildren == WS_CLIPCHILDREN &&
                  WindowStyle::ClipSiblings == WS_CLIPSIBLINGS,
              "the styles have the system's values");

} // namespace

PlatformLayer& nativePlatform()
{
    // Never destroyed: contexts may be released by destructors of static objects.
    static PlatformWin32* layer = new PlatformWin32;
    return *layer;
}

} // namespace renderengine
