#pragma once

#include <renderengine/Format.h>
#include <renderengine/PlatformTypes.h>

#include <kavelor/SbVec.h>

namespace renderengine
{

/// The hidden window that a GL context needs for its pixel format, since the engine renders into targets of its own. It
/// is never shown and gets no messages. Made and destroyed on the client's thread; its display may be current with a
/// context on another thread meanwhile.
class RenderingWindow
{
public:
    /// Makes a window of `size` pixels with a pixel format. Throws `std::runtime_error` on failure.
    explicit RenderingWindow(const SbVec2i32& size);
    ~RenderingWindow();

    RenderingWindow(const RenderingWindow&) = delete;
    RenderingWindow& operator=(const RenderingWindow&) = delete;

    /// Device context of the window; it belongs to this object.
    HDC getDisplay() const { return m_display; }
    /// Always 0.
    int getDrawable() const { return m_drawable; }
    /// The format that is set on the window.
    const utils::GL::Format& getFormat() const { return m_format; }

private:
    void registerWindowClass();
    bool activateFormat();
    void release();

    HWND m_window = nullptr;
    int m_drawable = 0;
    HDC m_display = nullptr;
    utils::GL::Format m_format;
};

} // namespace renderengine
