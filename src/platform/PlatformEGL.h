#pragma once

#include "platform/EGLDisplays.h"
#include "platform/PlatformLayer.h"

#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <tuple>

// The records behind the opaque handles.

/// A display to bind contexts on: a window of the engine's, or the surfaces of a context that the host made current.
struct HDC__
{
    std::shared_ptr<const renderengine::EGLDisplayInfo> info;
    int pixelFormat = 0;
    EGLSurface draw = EGL_NO_SURFACE;
    EGLSurface read = EGL_NO_SURFACE;
    HWND window = nullptr;
};

/// A window that never appears: its surface is made with its pixel format.
struct HWND__
{
    std::string className;
    int width = 0;
    int height = 0;
    HDC__ display;
};

namespace renderengine
{

/// Answers from EGL. An `HGLRC` is an `EGLContext`, also one of the host. A window is a pbuffer, or no surface at all
/// where a context can do without; it lives on the host's display when the host has a context current, since only
/// contexts of one display share.
class PlatformEGL : public PlatformLayer
{
public:
    HGLRC createContext(HDC display) override;
    bool deleteContext(HGLRC context) override;
    bool makeCurrent(HDC display, HGLRC context) override;
    HGLRC currentContext() override;
    HDC currentDisplay() override;
    void* procAddress(const char* name) override;

    bool getPixelFormatAttribivARB(HDC display, int pixelFormat, int layerPlane, unsigned int attributeCount,
                                   const int* attributes, int* values) override;
    bool choosePixelFormatARB(HDC display, const int* attributes, unsigned int maxFormats, int* formats,
                              unsigned int* count) override;

    int choosePixelFormat(HDC display, const PIXELFORMATDESCRIPTOR& wanted) override;
    int describePixelFormat(HDC display, int pixelFormat, PIXELFORMATDESCRIPTOR* descriptor) override;
    int getPixelFormat(HDC display) override;
    bool setPixelFormat(HDC display, int pixelFormat, const PIXELFORMATDESCRIPTOR* descriptor) override;

    void* moduleHandle() override;
    bool getClassInfo(void* module, const char* className) override;
    bool registerClass(void* module, const char* className, unsigned int style) override;
    bool unregisterClass(void* module, const char* className) override;
    HWND createWindow(void* module, const char* className, const char* title, unsigned int style, int x, int y,
                      int width, int height) override;
    bool destroyWindow(HWND window) override;
    HDC getDC(HWND window) override;
    bool releaseDC(HWND window, HDC display) override;
    HWND windowFromDC(HDC display) override;

    bool displayDeviceKey(unsigned int device, std::string& key) override;
    void systemVersion(int& majorVersion, int& minorVersion) override;
    unsigned long lastError() override;
    std::string errorText(unsigned long error) override;

    /// The answer to `wglCreateContextAttribsARB`.
    HGLRC createContextAttribs(HDC display, HGLRC shared, const int* attributes);

private:
    std::shared_ptr<const EGLDisplayInfo> chooseDisplay();
    bool isAlive(HDC display);
    HDC findForeignDisplay(EGLContext context);
    EGLDisplay displayOf(EGLContext context);

    using ForeignKey = std::tuple<EGLDisplay, EGLSurface, EGLSurface, EGLint>;

    std::mutex m_mutex; // guards everything below, and is never held while EGL binds or makes a context
    std::shared_ptr<const EGLDisplayInfo> m_ownDisplay;
    std::map<std::string, int> m_windowsOfClass;
    std::set<HWND> m_windows;
    std::set<HDC> m_displays;
    // Kept to the end of the process: a record may be asked for as long as its surfaces live, which is the host's
    // affair.
    std::map<ForeignKey, std::unique_ptr<HDC__>> m_foreignDisplays;
    std::map<EGLContext, EGLDisplay> m_contexts;
};

} // namespace renderengine
