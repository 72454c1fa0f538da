#pragma once

#include <renderengine/PlatformTypes.h>

#include <string>

namespace renderengine
{

/// What the engine asks of WGL, GDI and the window system, in their terms. `PlatformWin32` forwards to the system,
/// `PlatformEGL` answers from EGL. The logic above it (pixel formats, the hidden window, contexts) is written once.
///
/// Contexts are current per thread; every function may be called on any thread. A function that fails leaves its reason
/// in `lastError()` of the calling thread.
class PlatformLayer
{
public:
    virtual ~PlatformLayer() = default;

    /// `wglCreateContext`: a context with the system's defaults on a display that has a pixel format; null on failure.
    virtual HGLRC createContext(HDC display) = 0;
    /// `wglDeleteContext`. A context that is current on the calling thread is released first.
    virtual bool deleteContext(HGLRC context) = 0;
    /// `wglMakeCurrent`; a null context releases what is current.
    virtual bool makeCurrent(HDC display, HGLRC context) = 0;
    /// `wglGetCurrentContext`, also for a context that the host made current.
    virtual HGLRC currentContext() = 0;
    /// `wglGetCurrentDC`.
    virtual HDC currentDisplay() = 0;
    /// `wglGetProcAddress`, for every function of GL and for the WGL extensions; null without a current context.
    virtual void* procAddress(const char* name) = 0;

    /// `wglGetPixelFormatAttribivARB`; false also when the driver lacks it.
    virtual bool getPixelFormatAttribivARB(HDC display, int pixelFormat, int layerPlane, unsigned int attributeCount,
                                           const int* attributes, int* values) = 0;
    /// `wglChoosePixelFormatARB` with a zero-ended integer list; false also when the driver lacks it. `count` gets the
    /// number of matches that were written.
    virtual bool choosePixelFormatARB(HDC display, const int* attributes, unsigned int maxFormats, int* formats,
                                      unsigned int* count) = 0;

    /// `ChoosePixelFormat`: the number of the nearest pixel format, 0 on failure.
    virtual int choosePixelFormat(HDC display, const PIXELFORMATDESCRIPTOR& wanted) = 0;
    /// `DescribePixelFormat`: the highest number of a pixel format, 0 on failure.
    virtual int describePixelFormat(HDC display, int pixelFormat, PIXELFORMATDESCRIPTOR* descriptor) = 0;
    /// `GetPixelFormat`: 0 when none is set.
    virtual int getPixelFormat(HDC display) = 0;
    /// `SetPixelFormat`.
    virtual bool setPixelFormat(HDC display, int pixelFormat, const PIXELFORMATDESCRIPTOR* descriptor) = 0;

    /// `GetModuleHandleA(nullptr)`.
    virtual void* moduleHandle() = 0;
    /// `GetClassInfoA`: whether the class is registered.
    virtual bool getClassInfo(void* module, const char* className) = 0;
    /// `RegisterClassA` with `DefWindowProcA` and no icon, cursor, brush or menu.
    virtual bool registerClass(void* module, const char* className, unsigned int style) = 0;
    /// `UnregisterClassA`: fails while a window of the class exists.
    virtual bool unregisterClass(void* module, const char* className) = 0;
    /// `CreateWindowExA` with extended style 0, no parent and no menu; null on failure.
    virtual HWND createWindow(void* module, const char* className, const char* title, unsigned int style, int x, int y,
                              int width, int height) = 0;
    /// `DestroyWindow`.
    virtual bool destroyWindow(HWND window) = 0;
    /// `GetDC`.
    virtual HDC getDC(HWND window) = 0;
    /// `ReleaseDC`.
    virtual bool releaseDC(HWND window, HDC display) = 0;
    /// `WindowFromDC`: null for a display without a window of its own, and for one that is gone.
    virtual HWND windowFromDC(HDC display) = 0;

    /// `EnumDisplayDevicesA`: the registry key of a display device; false when there is no such device.
    virtual bool displayDeviceKey(unsigned int device, std::string& key) = 0;
    /// `GetVersionExA`. A system that is not Windows answers as Vista or later does.
    virtual void systemVersion(int& majorVersion, int& minorVersion) = 0;
    /// `GetLastError` of the calling thread.
    virtual unsigned long lastError() = 0;
    /// `FormatMessageA`: the system's text for an error number, empty when it has none.
    virtual std::string errorText(unsigned long error) = 0;
};

/// Window and window-class styles, with the system's values.
namespace WindowStyle
{
constexpr unsigned int ClassVerticalRedraw = 0x0001;
constexpr unsigned int ClassHorizontalRedraw = 0x0002;
constexpr unsigned int ClassOwnDC = 0x0020;
constexpr unsigned int ClipChildren = 0x02000000;
constexpr unsigned int ClipSiblings = 0x04000000;
} // namespace WindowStyle

/// The type of `wglCreateContextAttribsARB`; 64-bit Windows has one calling convention.
using CreateContextAttribsFunction = HGLRC (*)(HDC display, HGLRC shared, const int* attributes);

/// The layer in use: the system's own unless a test has set another.
PlatformLayer& platform();

/// Replaces the layer, for tests; null puts the system's own back. The caller keeps ownership.
void setPlatform(PlatformLayer* layer);

/// The layer of the system that the library was built for. It lives until the process ends.
PlatformLayer& nativePlatform();

} // namespace renderengine
