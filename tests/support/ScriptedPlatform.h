#pragma once

#include "platform/PlatformLayer.h"

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace renderengine
{

/// A platform layer without a system behind it: it answers plausibly, can be told to fail, and writes down each call.
///
/// While an object lives it is the layer in use, and what the process has found out about context creation starts
/// afresh. Calls are logged in the system's names with the handles as "window1", "display1", "context1", or "null":
/// "wglMakeCurrent(display1, context2)". Pure queries (current context and display, version, errors, module) and the
/// look-up of GL functions are not logged. One thread at a time, except that each thread has a current context of its
/// own.
class ScriptedPlatform : public PlatformLayer
{
public:
    /// One pixel format of the device; its number is its place, from 1.
    struct PixelFormat
    {
        PIXELFORMATDESCRIPTOR descriptor;
        int samples = 0;
    };

    /// What `wglCreateContextAttribsARB` was asked for.
    struct ContextRequest
    {
        HDC display = nullptr;
        HGLRC shared = nullptr;
        /// Up to its ending zero; empty for a null list.
        std::vector<int> attributes;
        bool hasAttributes = false;
    };

    /// Installs itself. The device has one pixel format, `defaultFormat()`.
    ScriptedPlatform();
    /// Puts the system's layer back.
    ~ScriptedPlatform() override;
    ScriptedPlatform(const ScriptedPlatform&) = delete;
    ScriptedPlatform& operator=(const ScriptedPlatform&) = delete;

    // What the device is like

    /// Red, green, blue, alpha 8 bits each, depth 24, stencil 8, double-buffered and composed.
    static PIXELFORMATDESCRIPTOR defaultFormat();

    std::vector<PixelFormat> formats;
    /// The version of Windows.
    int majorVersion = 10;
    int minorVersion = 0;
    /// Registry key of the first display device; none when empty.
    std::string deviceKey;
    /// Whether the driver knows `wglCreateContextAttribsARB`.
    bool hasCreateContextAttribs = true;
    /// The highest version of a context that names one, as 410.
    int highestVersion = 460;
    /// Finds GL functions by name; none when empty.
    std::function<void*(const char*)> glFunction;

    // Faults

    /// So many of the next bindings of a context fail.
    int failingBinds = 0;
    /// `wglCreateContext`, `wglCreateContextAttribsARB` and `wglDeleteContext` fail.
    bool failCreateContext = false;
    bool failCreateContextAttribs = false;
    bool failDeleteContext = false;
    bool failRegisterClass = false;
    bool failCreateWindow = false;
    bool failGetDC = false;
    /// `SetPixelFormat` fails, so many times.
    int failingSetPixelFormats = 0;
    bool failDescribePixelFormat = false;
    /// `wglGetPixelFormatAttribivARB` and `wglChoosePixelFormatARB` fail.
    bool failAttributeQuery = false;
    bool failChooseARB = false;
    /// `wglChoosePixelFormatARB` fails for a list that asks for samples.
    bool failChooseARBWithSamples = false;
    /// `ChoosePixelFormat` gives this when it is not 1 or more; 1 lets it search.
    int chooseResult = 1;
    unsigned long error = 2000;
    /// The system's text for every error.
    std::string errorMessage = "scripted failure";

    // What happened

    const std::vector<std::string>& calls() const { return m_calls; }
    std::vector<std::string> takeCalls();
    /// Those of the calls that begin with `prefix`.
    std::vector<std::string> callsMatching(const std::string& prefix) const;
    /// What was asked of `wglCreateContextAttribsARB`, oldest first.
    const std::vector<ContextRequest>& contextRequests() const { return m_contextRequests; }
    /// The integer lists that `wglChoosePixelFormatARB` got, without their ending zero.
    const std::vector<std::vector<int>>& attributeLists() const { return m_attributeLists; }
    /// What `ChoosePixelFormat` was asked for, oldest first.
    const std::vector<PIXELFORMATDESCRIPTOR>& wantedDescriptors() const { return m_wantedDescriptors; }
    size_t liveContexts() const { return m_contexts.size(); }
    size_t liveWindows() const { return m_windows.size(); }
    bool isClassRegistered() const { return m_isClassRegistered; }

    // Handles of a host

    /// A window with a pixel format, and its display; the calls are not logged.
    HDC makeHostDisplay(int pixelFormat = 1);
    /// A context of the host's that is current on the calling thread; the calls are not logged.
    HGLRC makeHostContextCurrent(HDC display);
    /// The name under which a handle is logged.
    std::string nameOf(HGLRC context) const;
    std::string nameOf(HDC display) const;
    std::string nameOf(HWND window) const;

    // The layer

    HGLRC createContext(HDC display) override;
    bool deleteContext(HGLRC context) override;
    bool makeCurrent(HDC display, HGLRC context) override;
    HGLRC currentContext() override;
    HDC currentDisplay() override;
    void* procAddress(const char* name) override;
    bool getPixelFormatAttribivARB(HDC display, int pixelFormat, int layerPlane, unsigned int attributeCount,
                                   const int* attributes, int* values) override;
    bool choosePixelFormatARB(HDC display, const int* attributes, unsigned int maxFormats, int* numbers,
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
    void systemVersion(int& major, int& minor) override;
    unsigned long lastError() override;
    std::string errorText(unsigned long number) override;

private:
    static HGLRC createContextAttribsEntry(HDC display, HGLRC shared, const int* attributes);
    HGLRC createContextAttribs(HDC display, HGLRC shared, const int* attributes);
    HGLRC newContext();
    HDC displayOf(HWND window);
    void log(const std::string& call);

    struct Window
    {
        HDC display = nullptr;
        int pixelFormat = 0;
        bool isHost = false;
    };

    std::vector<std::string> m_calls;
    std::vector<ContextRequest> m_contextRequests;
    std::vector<std::vector<int>> m_attributeLists;
    std::vector<PIXELFORMATDESCRIPTOR> m_wantedDescriptors;
    std::set<HGLRC> m_contexts;
    std::map<HWND, Window> m_windows;
    bool m_isClassRegistered = false;
    std::map<const void*, std::string> m_names;
    int m_contextCount = 0;
    int m_windowCount = 0;
};

} // namespace renderengine
