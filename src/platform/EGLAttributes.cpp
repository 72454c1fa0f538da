#include "platform/EGLAttributes.h"

#include <renderengine/WGLConstants.h>

#include <EGL/eglext.h>

#include <algorithm>
#include <cstdint>
#include <tuple>

namespace renderengine
{

namespace
{

constexpr int s_fullColorType = 2; // float components; GDI has no name for it

bool translateFlags(int flags, std::vector<EGLint>& translated)
{
    if ((flags & WGL_CONTEXT_DEBUG_BIT_ARB) != 0)
    {
        translated.insert(translated.end(), {EGL_CONTEXT_OPENGL_DEBUG, EGL_TRUE});
    }
    if ((flags & WGL_CONTEXT_FORWARD_COMPATIBLE_BIT_ARB) != 0)
    {
        translated.insert(translated.end(), {EGL_CONTEXT_OPENGL_FORWARD_COMPATIBLE, EGL_TRUE});
    }
    return (flags & ~(WGL_CONTEXT_DEBUG_BIT_ARB | WGL_CONTEXT_FORWARD_COMPATIBLE_BIT_ARB)) == 0;
}

/// Whether an attribute asks for "at least", and not for "exactly".
bool isMinimum(int attribute)
{
    switch (attribute)
    {
    case WGL_RED_BITS_ARB:
    case WGL_GREEN_BITS_ARB:
    case WGL_BLUE_BITS_ARB:
    case WGL_ALPHA_BITS_ARB:
    case WGL_DEPTH_BITS_ARB:
    case WGL_STENCIL_BITS_ARB:
    case WGL_SAMPLE_BUFFERS_ARB:
    case WGL_SAMPLES_ARB:
    case WGL_NUMBER_OVERLAYS_ARB:
        return true;
    default:
        return false;
    }
}

bool matchesList(const EGLDisplayInfo& display, int pixelFormat, const int* attributes)
{
    for (const int* pair = attributes; pair && pair[0] != 0; pair += 2)
    {
        int value = 0;
        if (!readPixelFormatAttribute(display, pixelFormat, pair[0], value))
        {
            return false;
        }
        // Every format is double-buffered by convention, which serves those as well who can do without.
        const bool isWelcome = pair[0] == WGL_DOUBLE_BUFFER_ARB && pair[1] == 0;
        const bool isEnough = isMinimum(pair[0]) ? value >= pair[1] : value == pair[1];
        if (!isEnough && !isWelcome)
        {
            return false;
        }
    }
    return true;
}

int sumOfBits(const EGLConfigInfo& config)
{
    return config.red + config.green + config.blue + config.alpha + config.depth + config.stencil;
}

} // namespace

bool translateContextAttributes(const int* attributes, std::vector<EGLint>& translated)
{
    bool isKnown = true;
    for (const int* pair = attributes; pair && pair[0] != 0; pair += 2)
    {
        switch (pair[0])
        {
        case WGL_CONTEXT_MAJOR_VERSION_ARB:
            translated.insert(translated.end(), {EGL_CONTEXT_MAJOR_VERSION, pair[1]});
            break;
        case WGL_CONTEXT_MINOR_VERSION_ARB:
            translated.insert(translated.end(), {EGL_CONTEXT_MINOR_VERSION, pair[1]});
            break;
        case WGL_CONTEXT_PROFILE_MASK_ARB:
            // The bits of core and compatibility are the same on both sides.
            translated.insert(translated.end(), {EGL_CONTEXT_OPENGL_PROFILE_MASK, pair[1]});
            break;
        case WGL_CONTEXT_FLAGS_ARB:
            isKnown = translateFlags(pair[1], translated) && isKnown;
            break;
        case WGL_CONTEXT_LAYER_PLANE_ARB:
            break;
        default:
            isKnown = false;
            break;
        }
    }
    translated.push_back(EGL_NONE);
    return isKnown;
}

PIXELFORMATDESCRIPTOR describeConfig(const EGLConfigInfo& config)
{
    PIXELFORMATDESCRIPTOR descriptor = {};
    descriptor.nSize = sizeof(PIXELFORMATDESCRIPTOR);
    descriptor.nVersion = 1;
    descriptor.dwFlags = PFD_DRAW_TO_WINDOW | PFD_SUPPORT_OPENGL | PFD_DOUBLEBUFFER | PFD_SUPPORT_COMPOSITION;
    descriptor.iPixelType = config.isFloat ? s_fullColorType : PFD_TYPE_RGBA;
    descriptor.cColorBits = static_cast<uint8_t>(config.red + config.green + config.blue);
    descriptor.cRedBits = static_cast<uint8_t>(config.red);
    descriptor.cGreenBits = static_cast<uint8_t>(config.green);
    descriptor.cBlueBits = static_cast<uint8_t>(config.blue);
    descriptor.cAlphaBits = static_cast<uint8_t>(config.alpha);
    descriptor.cDepthBits = static_cast<uint8_t>(config.depth);
    descriptor.cStencilBits = static_cast<uint8_t>(config.stencil);
    return descriptor;
}

int chooseNearestPixelFormat(const EGLDisplayInfo& display, const PIXELFORMATDESCRIPTOR& wanted)
{
    const auto distance = [&wanted](const EGLConfigInfo& config)
    {
        const PIXELFORMATDESCRIPTOR found = describeConfig(config);
        int missing = 0;
        int excess = 0;
        for (const auto field : {&PIXELFORMATDESCRIPTOR::cRedBits, &PIXELFORMATDESCRIPTOR::cGreenBits,
                                 &PIXELFORMATDESCRIPTOR::cBlueBits, &PIXELFORMATDESCRIPTOR::cAlphaBits,
                                 &PIXELFORMATDESCRIPTOR::cDepthBits, &PIXELFORMATDESCRIPTOR::cStencilBits})
        {
            const int difference = found.*field - wanted.*field;
            missing += std::max(-difference, 0);
            excess += std::max(difference, 0);
        }
        const int otherType = found.iPixelType == wanted.iPixelType ? 0 : 1;
        return std::make_tuple(otherType, missing, config.isSlow, config.samples, excess);
    };
    const auto nearest = std::min_element(display.configs.begin(), display.configs.end(),
                                          [&distance](const EGLConfigInfo& a, const EGLConfigInfo& b)
                                          { return distance(a) < distance(b); });
    return nearest == display.configs.end() ? 0 : static_cast<int>(nearest - display.configs.begin()) + 1;
}

std::vector<int> choosePixelFormats(const EGLDisplayInfo& display, const int* attributes)
{
    std::vector<int> matches;
    for (int pixelFormat = 1; display.find(pixelFormat); ++pixelFormat)
    {
        if (matchesList(display, pixelFormat, attributes))
        {
            matches.push_back(pixelFormat);
        }
    }
    std::stable_sort(matches.begin(), matches.end(),
                     [&display](int a, int b)
                     {
                         const EGLConfigInfo& first = *display.find(a);
                         const EGLConfigInfo& second = *display.find(b);
                         return std::make_tuple(first.samples, sumOfBits(first)) <
                                std::make_tuple(second.samples, sumOfBits(second));
                     });
    return matches;
}

bool readPixelFormatAttribute(const EGLDisplayInfo& display, int pixelFormat, int attribute, int& value)
{
    if (attribute == WGL_NUMBER_PIXEL_FORMATS_ARB)
    {
        value = static_cast<int>(display.configs.size());
        return true;
    }
    const EGLConfigInfo* config = display.find(pixelFormat);
    if (!config)
    {
        return false;
    }
    switch (attribute)
    {
    case WGL_DRAW_TO_WINDOW_ARB:
    case WGL_SUPPORT_OPENGL_ARB:
    case WGL_DOUBLE_BUFFER_ARB:
        value = 1;
        return true;
    case WGL_SUPPORT_GDI_ARB:
    case WGL_STEREO_ARB:
    case WGL_NUMBER_OVERLAYS_ARB:
        value = 0;
        return true;
    case WGL_ACCELERATION_ARB:
        value = config->isSlow ? 0x2025 /* none */ : WGL_FULL_ACCELERATION_ARB;
        return true;
    case WGL_PIXEL_TYPE_ARB:
        value = config->isFloat ? WGL_TYPE_RGBA_FLOAT_ARB : WGL_TYPE_RGBA_ARB;
        return true;
    case WGL_RED_BITS_ARB:
        value = config->red;
        return true;
    case WGL_GREEN_BITS_ARB:
        value = config->green;
        return true;
    case WGL_BLUE_BITS_ARB:
        value = config->blue;
        return true;
    case WGL_ALPHA_BITS_ARB:
        value = config->alpha;
        return true;
    case WGL_DEPTH_BITS_ARB:
        value = config->depth;
        return true;
    case WGL_STENCIL_BITS_ARB:
        value = config->stencil;
        return true;
    case WGL_SAMPLE_BUFFERS_ARB:
        value = config->sampleBuffers;
        return true;
    case WGL_SAMPLES_ARB:
        value = config->samples;
        return true;
    default:
        return false;
    }
}

std::string eglErrorName(unsigned long error)
{
    switch (error)
    {
    case EGL_NOT_INITIALIZED:
        return "EGL_NOT_INITIALIZED";
    case EGL_BAD_ACCESS:
        return "EGL_BAD_ACCESS";
    case EGL_BAD_ALLOC:
        return "EGL_BAD_ALLOC";
    case EGL_BAD_ATTRIBUTE:
        return "EGL_BAD_ATTRIBUTE";
    case EGL_BAD_CONFIG:
        return "EGL_BAD_CONFIG";
    case EGL_BAD_CONTEXT:
        return "EGL_BAD_CONTEXT";
    case EGL_BAD_CURRENT_SURFACE:
        return "EGL_BAD_CURRENT_SURFACE";
    case EGL_BAD_DISPLAY:
        return "EGL_BAD_DISPLAY";
    case EGL_BAD_MATCH:
        return "EGL_BAD_MATCH";
    case EGL_BAD_NATIVE_PIXMAP:
        return "EGL_BAD_NATIVE_PIXMAP";
    case EGL_BAD_NATIVE_WINDOW:
        return "EGL_BAD_NATIVE_WINDOW";
    case EGL_BAD_PARAMETER:
        return "EGL_BAD_PARAMETER";
    case EGL_BAD_SURFACE:
        return "EGL_BAD_SURFACE";
    case EGL_CONTEXT_LOST:
        return "EGL_CONTEXT_LOST";
    default:
        return "";
    }
}

} // namespace renderengine
