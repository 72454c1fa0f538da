#include <renderengine/Format.h>
#include <renderengine/WGLConstants.h>

#include "platform/PlatformLayer.h"

#include <kavelor/SoError.h>
#include <kavelor/SoPreferences.h>

#include <cstdlib>
#include <cstring>
#include <new>
#include <string>

namespace renderengine::utils::GL
{

namespace
{

PIXELFORMATDESCRIPTOR* copyDescriptor(const PIXELFORMATDESCRIPTOR& source, PIXELFORMATDESCRIPTOR* target)
{
    if (!target)
    {
        target = static_cast<PIXELFORMATDESCRIPTOR*>(std::malloc(sizeof(PIXELFORMATDESCRIPTOR)));
        if (!target)
        {
            throw std::bad_alloc();
        }
    }
    std::memmove(target, &source, sizeof(PIXELFORMATDESCRIPTOR));
    return target;
}

} // namespace

Format::Format()
{
    init();
}

Format::Format(HDC display)
{
    init();
    setDisplay(display);
}

Format::Format(HDC display, bool ownsDisplay)
{
    init();
    setDisplay(display, ownsDisplay);
}

Format::Format(const Format& other)
{
    init();
    *this = other;
}

Format::~Format()
{
    setDisplay(nullptr, false);
    resetDetectedData();
}

Format& Format::operator=(const Format& other)
{
    if (this == &other)
    {
        return *this;
    }
    m_copying = true;
    setDoubleBuffersEnabled(other.m_doubleBuffers);
    setDepthEnabled(other.m_depth);
    setDepthBits(other.m_depthBits);
    setAlphaEnabled(other.m_alpha);
    setOverlayEnabled(other.m_overlay);
    setPlane(other.m_plane);
    setSampleBuffersEnabled(other.m_sampleBuffers);
    setSamplesCount(other.m_samplesCount);
    setStereoEnabled(other.m_stereo);
    setRgbEnabled(other.m_rgb);
    setRedBits(other.m_redBits);
    setGreenBits(other.m_greenBits);
    setBlueBits(other.m_blueBits);
    setAlphaBits(other.m_alphaBits);
    setFloatColorBufferEnabled(other.m_floatColorBuffer);
    setAccumBufferEnabled(other.m_accumBuffer);
    setAccumBufferBits(other.m_accumBufferBits);
    setStencilBufferEnabled(other.m_stencilBuffer);
    setStencilBufferBits(other.m_stencilBufferBits);
    setAccelerationRequired(other.m_accelerationRequired);
    setSoftwareRendererRequired(other.m_softwareRendererRequired);
    setCompositionRequired(other.m_compositionRequired);
    setGDISupportRequired(other.m_gdiSupportRequired);
    m_copying = false;

    setDisplay(other.m_display, other.m_ownsDisplay);
    // The bytes alone: deriving attributes from the descriptor would undo what was wanted after a search.
    if (other.m_visualInfo)
    {
        m_visualInfo = copyDescriptor(*other.m_visualInfo, m_visualInfo);
    }
    else
    {
        resetDetectedData();
    }
    setVisualInfoId(other.m_visualInfoId);
    return *this;
}

Format Format::getDefaultFormat()
{
    return Format();
}

Format Format::getDefaultOverlayFormat()
{
    Format format;
    format.setOverlayEnabled(true);
    format.setPlane(1);
    return format;
}

void Format::init()
{
    m_doubleBuffers = true;
    m_depth = true;
    m_depthBits = 24;
    m_alpha = true;
    m_overlay = false;
    m_plane = 0;
    m_sampleBuffers = false;
    m_samplesCount = 0;
    m_stereo = false;
    m_rgb = true;
    m_redBits = 8;
    m_greenBits = 8;
    m_blueBits = 8;
    m_alphaBits = 8;
    m_floatColorBuffer = false;
    m_accumBuffer = false;
    m_accumBufferBits = 8;
    m_stencilBuffer = true;
    m_stencilBufferBits = 8;
    m_accelerationRequired = true;
    m_softwareRendererRequired = false;
    m_compositionRequired = false;
    m_gdiSupportRequired = false;
    m_copying = false;
    m_ownsDisplay = true;
    m_display = nullptr;
    m_visualInfo = nullptr;
    m_visualInfoId = 0;

    if (!isVistaOrLater())
    {
        return;
    }
    // Such a system composes its windows and cannot do both in one format: GDI wins.
    if (SoPreferences::getBool("KVR_PFD_SUPPORT_GDI", false))
    {
        m_gdiSupportRequired = true;
    }
    else if (SoPreferences::getBool("KVR_PFD_SUPPORT_COMPOSITION", false))
    {
        m_compositionRequired = true;
    }
}

void Format::readSystemVersion(int& majorVersion, int& minorVersion)
{
    platform().systemVersion(majorVersion, minorVersion);
}

bool Format::isVistaOrLater()
{
    int majorVersion = 0;
    int minorVersion = 0;
    readSystemVersion(majorVersion, minorVersion);
    return majorVersion >= 6;
}

void Format::resetDetectedData()
{
    std::free(m_visualInfo);
    m_visualInfo = nullptr;
    m_visualInfoId = 0;
}

template <class T> void Format::setWanted(T& field, T value)
{
    field = value;
    // A copy takes over what its source has found, so there is nothing to drop in between.
    if (!m_copying)
    {
        resetDetectedData();
    }
}

void Format::setDoubleBuffersEnabled(bool enabled)
{
    setWanted(m_doubleBuffers, enabled);
}

void Format::setDepthEnabled(bool enabled)
{
    setWanted(m_depth, enabled);
}

void Format::setDepthBits(int bits)
{
    setWanted(m_depthBits, bits);
}

void Format::setAlphaEnabled(bool enabled)
{
    setWanted(m_alpha, enabled);
}

void Format::setOverlayEnabled(bool enabled)
{
    setWanted(m_overlay, enabled);
}

void Format::setSampleBuffersEnabled(bool enabled)
{
    setWanted(m_sampleBuffers, enabled);
}

void Format::setSamplesCount(int count)
{
    setWanted(m_samplesCount, count);
}

void Format::setStereoEnabled(bool enabled)
{
    setWanted(m_stereo, enabled);
}

void Format::setRgbEnabled(bool enabled)
{
    setWanted(m_rgb, enabled);
}

void Format::setRedBits(int bits)
{
    setWanted(m_redBits, bits);
}

void Format::setGreenBits(int bits)
{
    setWanted(m_greenBits, bits);
}

void Format::setBlueBits(int bits)
{
    setWanted(m_blueBits, bits);
}

void Format::setAlphaBits(int bits)
{
    setWanted(m_alphaBits, bits);
}

void Format::setFloatColorBufferEnabled(bool enabled)
{
    setWanted(m_floatColorBuffer, enabled);
}

void Format::setAccumBufferEnabled(bool enabled)
{
    setWanted(m_accumBuffer, enabled);
}

void Format::setAccumBufferBits(int bits)
{
    setWanted(m_accumBufferBits, bits);
}

void Format::setStencilBufferEnabled(bool enabled)
{
    setWanted(m_stencilBuffer, enabled);
}

void Format::setStencilBufferBits(int bits)
{
    setWanted(m_stencilBufferBits, bits);
}

void Format::setAccelerationRequired(bool required)
{
    setWanted(m_accelerationRequired, required);
}

void Format::setSoftwareRendererRequired(bool required)
{
    setWanted(m_softwareRendererRequired, required);
}

void Format::setDisplay(const HDC& display)
{
    setDisplay(display, true);
}

void Format::setDisplay(const HDC& display, bool ownsDisplay)
{
    // A copy, as the argument may be this object's own field.
    const HDC wanted = display;
    if (wanted && wanted == m_display && ownsDisplay && m_ownsDisplay)
    {
        // Giving the device context back would leave no way to find its window.
        return;
    }
    if (m_ownsDisplay && m_display)
    {
        if (HWND window = platform().windowFromDC(m_display))
        {
            platform().releaseDC(window, m_display);
        }
    }
    m_display = nullptr;
    m_ownsDisplay = ownsDisplay;
    if (!ownsDisplay)
    {
        m_display = wanted;
        return;
    }
    HWND window = wanted ? platform().windowFromDC(wanted) : nullptr;
    if (window)
    {
        m_display = platform().getDC(window);
    }
    else
    {
        m_display = wanted;
        m_ownsDisplay = false;
    }
}

void Format::setVisualInfo(const PIXELFORMATDESCRIPTOR*& visualInfo)
{
    if (!visualInfo || visualInfo->nSize == 0)
    {
        std::free(m_visualInfo);
        m_visualInfo = nullptr;
        return;
    }
    const PIXELFORMATDESCRIPTOR& found = *visualInfo;
    m_alpha = found.cAlphaBits != 0;
    m_depth = found.cDepthBits != 0;
    m_depthBits = found.cDepthBits;
    m_rgb = found.iPixelType != PFD_TYPE_COLORINDEX;
    // The ARB pixel formats with float components have type 2, which GDI does not name.
    m_floatColorBuffer = found.iPixelType == 2;
    m_redBits = found.cRedBits;
    m_greenBits = found.cGreenBits;
    m_blueBits = found.cBlueBits;
    m_alphaBits = found.cAlphaBits;
    m_doubleBuffers = (found.dwFlags & PFD_DOUBLEBUFFER) != 0;
    m_stereo = (found.dwFlags & PFD_STEREO) != 0;
    m_gdiSupportRequired = false;
    m_compositionRequired = false;
    m_accumBuffer = found.cAccumBits != 0;
    m_accumBufferBits = found.cAccumBits;
    m_stencilBuffer = found.cStencilBits != 0;
    m_stencilBufferBits = found.cStencilBits;
    m_overlay = found.bReserved == 1;
    m_visualInfo = copyDescriptor(found, m_visualInfo);
    m_visualInfoId = platform().getPixelFormat(m_display);
}

void Format::setOpenglAttributes(const HDC& display, int pixelFormat, int* attributes, int* values)
{
    PIXELFORMATDESCRIPTOR descriptor = {};
    if (platform().describePixelFormat(display, pixelFormat, &descriptor) == 0)
    {
        SoDebugError::post("Format::setOpenglAttributs", "wglDescribePixelFormat returned an error");
        return;
    }
    setDisplay(display);
    const PIXELFORMATDESCRIPTOR* found = &descriptor;
    setVisualInfo(found);
    setVisualInfoId(pixelFormat);
    for (int i = 0; attributes[i] != 0; ++i)
    {
        // Plain stores, so that the description taken above stays.
        if (attributes[i] == WGL_SAMPLE_BUFFERS_ARB)
        {
            m_sampleBuffers = values[i] != 0;
        }
        else if (attributes[i] == WGL_SAMPLES_ARB)
        {
            m_samplesCount = values[i];
        }
    }
}

bool Format::isGDIAvailable() const
{
    if (!isVistaOrLater())
    {
        return true;
    }
    if (!m_visualInfo)
    {
        SoDebugError::post("Format::isGDIAvailable()", "Cannot call this function if the Format is not active");
        return true;
    }
    return (m_visualInfo->dwFlags & PFD_SUPPORT_GDI) != 0;
}

bool Format::isRDPMode() const
{
    std::string key;
    return platform().displayDeviceKey(0, key) && key.find("RDPDD") != std::string::npos;
}

} // namespace renderengine::utils::GL
