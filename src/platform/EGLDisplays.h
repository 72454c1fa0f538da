#pragma once

#include <EGL/egl.h>

#include <memory>
#include <vector>

namespace renderengine
{

/// Binds OpenGL as the thread's EGL API for its life, since EGL's default is another one, and puts the old one back.
class EGLApiScope
{
public:
    EGLApiScope();
    ~EGLApiScope();
    EGLApiScope(const EGLApiScope&) = delete;
    EGLApiScope& operator=(const EGLApiScope&) = delete;

private:
    EGLenum m_previous;
};

/// One configuration that OpenGL can render to, with its sizes in bits.
struct EGLConfigInfo
{
    EGLConfig config = nullptr;
    EGLint id = 0;
    int red = 0;
    int green = 0;
    int blue = 0;
    int alpha = 0;
    int depth = 0;
    int stencil = 0;
    int sampleBuffers = 0;
    int samples = 0;
    bool isFloat = false;
    bool isSlow = false;
    bool hasPbuffer = false;
};

/// A display and its configurations in EGL's order. The number of a pixel format is 1 + the index here.
struct EGLDisplayInfo
{
    EGLDisplay display = EGL_NO_DISPLAY;
    /// A context can be current without a surface.
    bool isSurfaceless = false;
    std::vector<EGLConfigInfo> configs;

    /// The configuration of a pixel format, null for a number that is out of range.
    const EGLConfigInfo* find(int pixelFormat) const;
    /// The pixel format of a configuration by its EGL_CONFIG_ID, 0 when it is not here.
    int findPixelFormat(EGLint configId) const;
};

/// Reads an initialised display.
std::shared_ptr<const EGLDisplayInfo> readEGLDisplay(EGLDisplay display);

/// Opens and initialises the engine's own display: the X server of the variable DISPLAY, else a device (hardware
/// first), else the surfaceless platform, else EGL's default. Null when none of them gives OpenGL. It is never
/// terminated, as EGL shares displays within the process.
std::shared_ptr<const EGLDisplayInfo> openEGLDisplay();

/// Whether a list of extensions, separated by blanks, holds a name. A null list is empty.
bool hasExtension(const char* list, const char* name);

/// Whether another window-system binding (GLX) has a context current on this thread, which EGL does not see.
bool isForeignBindingCurrent();

} // namespace renderengine
