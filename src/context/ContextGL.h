#pragma once

#include "context/ContextBase.h"

#include <renderengine/ContextInfo.h>
#include <renderengine/Export.h>
#include <renderengine/PlatformTypes.h>

#include <cstdint>
#include <memory>
#include <vector>

class SoGLGlew;

namespace renderengine
{

class RenderingWindow;

/// The context on OpenGL: a hidden window with a GL context of its own, probed once, and the renderer chosen by what
/// the probe found.
///
/// init(), getContextInfo() and the destructor run on the client's thread. makeCurrent() and doneCurrent() run on the
/// render thread when there is one, and else on the client's, where they save and put back what the host had current.
class ContextGL : public ContextBase
{
public:
    /// A window, the context on it and the facts about it. A plain record: whoever makes the context destroys it before
    /// the window goes.
    struct ContextDescriptor
    {
        std::shared_ptr<RenderingWindow> m_window;
        HGLRC m_context = nullptr;
        ContextInfo m_info;
    };

    /// \p flags: bits of ContextFlag. Touches no device.
    explicit ContextGL(uint8_t flags);
    /// Stops the render thread and releases context and window.
    ~ContextGL() override;

    bool isValid() override { return m_descriptor.m_context != nullptr; }
    void init() override;

    /// The facts about the device. Before init() each call makes a context, probes it and destroys it again; throws
    /// `std::runtime_error` when that fails.
    const ContextInfo& getContextInfo() override;

    bool makeCurrent() override;
    void doneCurrent() override;

    /// Drops the function tables that the calling thread keeps for `context`. The context itself stays.
    RENDERENGINE_API static void destroyContext(HGLRC context);

    /// The binding object of the context that is current on the calling thread, made when the thread has none for it
    /// yet. It belongs to the thread and lives until destroyContext() or the end of the thread.
    static SoGLGlew& getCurrentBinding();

    /// Lets the GL binding find functions through the platform layer and tables through getCurrentBinding(). Any thread
    /// may call it at any time; only the first call does something.
    static void installBindingHooks();

private:
    ContextDescriptor createContext() const;
    std::vector<int> buildAttributeList(int majorVersion, int minorVersion) const;
    RendererBase* createRenderer() const;
    static void releaseContext(ContextDescriptor& descriptor);

    ContextDescriptor m_descriptor;
    HGLRC m_previousContext = nullptr;
    int m_previousDrawable = 0;
    HDC m_previousDisplay = nullptr;
};

} // namespace renderengine
