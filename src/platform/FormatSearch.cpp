// How a Format finds a pixel format of the device, and sets it.

#include <renderengine/Format.h>
#include <renderengine/WGLConstants.h>

#include "platform/PlatformLayer.h"

#include <kavelor/SoError.h>

#include <cstdint>

namespace renderengine::utils::GL
{

namespace
{

constexpr unsigned int s_maxFormats = 256;
constexpr size_t s_maxAttributes = 50;

uint8_t bits(bool enabled, int count)
{
    return enabled ? static_cast<uint8_t>(count) : static_cast<uint8_t>(0);
}

/// Whether `found` has everything that `wanted` asks for. Composition counts only when it is required.
bool matches(const PIXELFORMATDESCRIPTOR& wanted, const PIXELFORMATDESCRIPTOR& found, bool compositionRequired)
{
    uint32_t wantedFlags = static_cast<uint32_t>(wanted.dwFlags);
    uint32_t foundFlags = static_cast<uint32_t>(found.dwFlags);
    if (!compositionRequired)
    {
        wantedFlags &= ~static_cast<uint32_t>(PFD_SUPPORT_COMPOSITION);
        foundFlags &= ~static_cast<uint32_t>(PFD_SUPPORT_COMPOSITION);
    }
    return (wantedFlags & ~foundFlags) == 0 && found.iPixelType == wanted.iPixelType &&
           found.cDepthBits >= wanted.cDepthBits && found.cStencilBits >= wanted.cStencilBits &&
           found.cRedBits >= wanted.cRedBits && found.cGreenBits >= wanted.cGreenBits &&
           found.cBlueBits >= wanted.cBlueBits && found.cAlphaBits >= wanted.cAlphaBits &&
           (found.bReserved & 0x0F) >= (wanted.bReserved & 0x0F);
}

} // namespace

Format Format::getNearest() const
{
    Format nearest(*this);
    bool isExact = false;
    if (search(nearest, isExact) == -1)
    {
        SoDebugError::postInfo("renderengine::utils::GL::Format::getNearest", "Couldn't get a valid pixel format\n");
    }
    return nearest;
}

bool Format::isAvailable() const
{
    Format copy(*this);
    bool isExact = false;
    search(copy, isExact);
    return isExact;
}

bool Format::activate()
{
    if (isRDPMode())
    {
        SoDebugError::postInfo("Format::activate()", "RDP mode limited to OpenGL1.1 (no acceleration)");
        setAccelerationRequired(false);
    }
    const bool isKnown = m_visualInfo && m_visualInfo->nSize != 0 && m_visualInfoId >= 1 && m_display;
    if (!isKnown)
    {
        Format copy(*this);
        bool isExact = false;
        const int result = search(copy, isExact);
        if ((copy.isAccelerationRequired() && !isExact) || result < 0)
        {
            return false;
        }
        if (!m_display)
        {
            setDisplay(copy.getDisplay());
        }
        const PIXELFORMATDESCRIPTOR* found = copy.getVisualInfo();
        setVisualInfo(found);
        setVisualInfoId(result);
    }
    if (!platform().setPixelFormat(m_display, m_visualInfoId, m_visualInfo))
    {
        SoDebugError::post("Format", "SetPixelFormat returned an error (code: %lu).", platform().lastError());
        return false;
    }
    return true;
}

int Format::search(Format& format, bool& isExact)
{
    isExact = false;
    if (!format.m_display)
    {
        format.setDisplay(platform().currentDisplay());
    }
    if (format.m_accelerationRequired && platform().currentContext())
    {
        int result = 0;
        if (searchARB(format, isExact, result))
        {
            return result;
        }
    }
    return searchClassic(format, isExact);
}

/// Returns false when the classic path is to go on.
bool Format::searchARB(Format& format, bool& isExact, int& result)
{
    const int attribute = WGL_NUMBER_PIXEL_FORMATS_ARB;
    int formatCount = 0;
    if (!platform().getPixelFormatAttribivARB(format.m_display, 0, 0, 1, &attribute, &formatCount))
    {
        SoDebugError::post("Format", "wglGetPixelFormatAttribivARB returned an error (code: %d)",
                           static_cast<int>(platform().lastError()));
        result = -1;
        return true;
    }
    if (formatCount == 0)
    {
        SoDebugError::post("Format", "OpenGL acceleration not available on this device!");
        result = -1;
        return true;
    }
    int samplesPosition = -1;
    std::vector<int> attributes = format.buildAttributeList(samplesPosition);
    const int found = format.findARB(attributes, samplesPosition);
    if (found == 0)
    {
        return false;
    }
    if (samplesPosition >= 0)
    {
        format.setSamplesCount(attributes[static_cast<size_t>(samplesPosition)]);
    }
    PIXELFORMATDESCRIPTOR descriptor = {};
    platform().describePixelFormat(format.m_display, found, &descriptor);
    const PIXELFORMATDESCRIPTOR* visualInfo = &descriptor;
    format.setVisualInfo(visualInfo);
    format.setVisualInfoId(found);
    isExact = true;
    result = found;
    return true;
}

/// `samplesPosition` gets the place of the sample count, or stays as it is without sample buffers.
std::vector<int> Format::buildAttributeList(int& samplesPosition) const
{
    std::vector<int> list;
    list.reserve(s_maxAttributes);
    const auto add = [&list](int attribute, int value)
    {
        list.push_back(attribute);
        list.push_back(value);
    };
    add(WGL_ACCELERATION_ARB, WGL_FULL_ACCELERATION_ARB);
    add(WGL_SUPPORT_OPENGL_ARB, 1);
    add(WGL_DRAW_TO_WINDOW_ARB, 1);
    add(WGL_RED_BITS_ARB, m_redBits);
    add(WGL_GREEN_BITS_ARB, m_greenBits);
    add(WGL_BLUE_BITS_ARB, m_blueBits);
    add(WGL_DOUBLE_BUFFER_ARB, m_doubleBuffers ? 1 : 0);
    if (m_depth)
    {
        add(WGL_DEPTH_BITS_ARB, m_depthBits);
    }
    const int rgbType = m_floatColorBuffer ? WGL_TYPE_RGBA_FLOAT_ARB : WGL_TYPE_RGBA_ARB;
    add(WGL_PIXEL_TYPE_ARB, m_rgb ? rgbType : WGL_TYPE_COLORINDEX_ARB);
    add(WGL_ALPHA_BITS_ARB, m_alpha ? m_alphaBits : 0);
    if (m_overlay)
    {
        add(WGL_NUMBER_OVERLAYS_ARB, 1);
    }
    if (m_stereo)
    {
        add(WGL_STEREO_ARB, 1);
    }
    if (m_stencilBuffer)
    {
        add(WGL_STENCIL_BITS_ARB, m_stencilBufferBits);
    }
    if (m_sampleBuffers)
    {
        add(WGL_SAMPLE_BUFFERS_ARB, 1);
        add(WGL_SAMPLES_ARB, m_samplesCount);
        samplesPosition = static_cast<int>(list.size()) - 1;
    }
    if (isVistaOrLater() && !m_compositionRequired && m_gdiSupportRequired)
    {
        add(WGL_SUPPORT_GDI_ARB, 1);
    }
    list.push_back(0);
    return list;
}

/// Asks with fewer and fewer samples until the device has a format, and returns its number, or 0. The sample count is
/// halved in the list.
int Format::findARB(std::vector<int>& attributes, int samplesPosition) const
{
    int* samples = samplesPosition >= 0 ? &attributes[static_cast<size_t>(samplesPosition)] : nullptr;
    const bool isVista = isVistaOrLater();
    for (;;)
    {
        int formats[s_maxFormats] = {};
        unsigned int count = 0;
        const bool success =
            platform().choosePixelFormatARB(m_display, attributes.data(), s_maxFormats, formats, &count);
        if (!success)
        {
            count = 0;
            if (!samples || *samples < 2)
            {
                return 0;
            }
        }
        int found = 0;
        bool isDone = false;
        if (!isVista)
        {
            found = count > 0 ? formats[0] : 0;
            isDone = true;
        }
        else if (success)
        {
            found = selectFormat(formats, count);
        }
        // From Vista on a pass never counts as done, so the stored count is half of the one that the format was chosen
        // with. Clients rely on that figure.
        if ((count == 0 || !isDone) && samples)
        {
            *samples /= 2;
        }
        if (count != 0 || !samples || *samples < 2)
        {
            return found;
        }
    }
}

/// Takes the first format that composes (or draws with GDI, when that is required). `count` becomes 0 when none will
/// do.
int Format::selectFormat(const int* formats, unsigned int& count) const
{
    for (unsigned int i = 0; i < count && i < s_maxFormats; ++i)
    {
        PIXELFORMATDESCRIPTOR descriptor = {};
        platform().describePixelFormat(m_display, formats[i], &descriptor);
        if ((descriptor.dwFlags & PFD_SUPPORT_COMPOSITION) != 0 ||
            (m_gdiSupportRequired && (descriptor.dwFlags & PFD_SUPPORT_GDI) != 0))
        {
            return formats[i];
        }
    }
    if (!m_compositionRequired && !m_gdiSupportRequired)
    {
        return count > 0 ? formats[0] : 0;
    }
    count = 0;
    return 0;
}

PIXELFORMATDESCRIPTOR Format::buildDescriptor() const
{
    PIXELFORMATDESCRIPTOR wanted = {};
    wanted.nSize = sizeof(PIXELFORMATDESCRIPTOR);
    wanted.nVersion = 1;
    wanted.dwFlags = PFD_DRAW_TO_WINDOW | PFD_SUPPORT_OPENGL;
    if (m_doubleBuffers)
    {
        wanted.dwFlags |= PFD_DOUBLEBUFFER;
    }
    if (m_stereo)
    {
        wanted.dwFlags |= PFD_STEREO;
    }
    if (isVistaOrLater())
    {
        wanted.dwFlags |= m_gdiSupportRequired ? PFD_SUPPORT_GDI : PFD_SUPPORT_COMPOSITION;
    }
    wanted.iLayerType = 0;
    wanted.bReserved = m_overlay ? 1 : 0;
    wanted.cDepthBits = bits(m_depth, m_depthBits);
    wanted.iPixelType = m_rgb ? PFD_TYPE_RGBA : PFD_TYPE_COLORINDEX;
    // Depth and alpha can be switched off here, stencil cannot: only the WGL query leaves it out.
    wanted.cStencilBits = bits(true, m_stencilBufferBits);
    wanted.cRedBits = bits(true, m_redBits);
    wanted.cGreenBits = bits(true, m_greenBits);
    wanted.cBlueBits = bits(true, m_blueBits);
    wanted.cAlphaBits = bits(m_alpha, m_alphaBits);
    return wanted;
}

int Format::searchClassic(Format& format, bool& isExact)
{
    const PIXELFORMATDESCRIPTOR wanted = format.buildDescriptor();
    const int result = platform().choosePixelFormat(format.m_display, wanted);
    if (result <= 0)
    {
        return result;
    }
    isExact = true;
    PIXELFORMATDESCRIPTOR found = {};
    if (platform().describePixelFormat(format.m_display, result, &found) == 0)
    {
        isExact = false;
    }
    if (!matches(wanted, found, format.m_compositionRequired))
    {
        isExact = false;
    }
    const PIXELFORMATDESCRIPTOR* visualInfo = &found;
    format.setVisualInfo(visualInfo);
    format.setVisualInfoId(result);
    return result;
}

} // namespace renderengine::utils::GL
