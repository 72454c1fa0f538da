#pragma once

#include <renderengine/Export.h>
#include <renderengine/PlatformTypes.h>

#include <vector>

namespace renderengine::utils::GL
{

/// A pixel format: what a client wants of a window's frame buffer and, after a search, what the device gives.
///
/// A search finds the format through the WGL query when a context is current on the calling thread and acceleration is
/// required, and through `ChoosePixelFormat` otherwise. Each setter of a wanted attribute drops what an earlier search
/// found. An object is used by one thread at a time. It owns its visual info, and its display when it took one of its
/// own.
class RENDERENGINE_API Format
{
public:
    /// The default wishes, without a display.
    Format();

    /// The default wishes on a device context of its own for the window of `display`.
    explicit Format(HDC display);

    /// The default wishes on `display`; see `setDisplay`.
    Format(HDC display, bool ownsDisplay);

    Format(const Format& other);
    Format& operator=(const Format& other);
    virtual ~Format();

    static Format getDefaultFormat();

    /// The default wishes with an overlay, in plane 1.
    static Format getDefaultOverlayFormat();

    /// Same as `setDisplay(display, true)`.
    void setDisplay(const HDC& display);

    /// Gives back the display that the object owned, and takes `display`: when `ownsDisplay` is true a device context
    /// of its own for the same window (the given one, not owned, when it has no window), else the given one.
    void setDisplay(const HDC& display, bool ownsDisplay);
    HDC getDisplay() const { return m_display; }

    bool hasDoubleBuffers() const { return m_doubleBuffers; }
    void setDoubleBuffersEnabled(bool enabled);
    bool hasDepth() const { return m_depth; }
    void setDepthEnabled(bool enabled);
    int getDepthBits() const { return m_depthBits; }
    void setDepthBits(int bits);
    bool hasAlpha() const { return m_alpha; }
    void setAlphaEnabled(bool enabled);
    bool hasOverlay() const { return m_overlay; }
    void setOverlayEnabled(bool enabled);
    int getPlane() const { return m_plane; }
    /// Keeps what a search found.
    void setPlane(int plane) { m_plane = plane; }
    bool hasSampleBuffers() const { return m_sampleBuffers; }
    void setSampleBuffersEnabled(bool enabled);
    /// Samples a pixel. A search halves the count until the device has such a format; from Windows Vista on the stored
    /// count is halved once more.
    int getSamplesCount() const { return m_samplesCount; }
    void setSamplesCount(int count);
    bool hasStereo() const { return m_stereo; }
    void setStereoEnabled(bool enabled);
    bool hasRgb() const { return m_rgb; }
    void setRgbEnabled(bool enabled);
    int getRedBits() const { return m_redBits; }
    void setRedBits(int bits);
    int getGreenBits() const { return m_greenBits; }
    void setGreenBits(int bits);
    int getBlueBits() const { return m_blueBits; }
    void setBlueBits(int bits);
    int getAlphaBits() const { return m_alphaBits; }
    void setAlphaBits(int bits);
    bool hasFloatColorBuffer() const { return m_floatColorBuffer; }
    void setFloatColorBufferEnabled(bool enabled);
    bool hasAccumBuffer() const { return m_accumBuffer; }
    void setAccumBufferEnabled(bool enabled);
    int getAccumBufferBits() const { return m_accumBufferBits; }
    void setAccumBufferBits(int bits);
    bool hasStencilBuffer() const { return m_stencilBuffer; }
    void setStencilBufferEnabled(bool enabled);
    int getStencilBufferBits() const { return m_stencilBufferBits; }
    void setStencilBufferBits(int bits);
    bool isAccelerationRequired() const { return m_accelerationRequired; }
    void setAccelerationRequired(bool required);
    bool isSoftwareRendererRequired() const { return m_softwareRendererRequired; }
    void setSoftwareRendererRequired(bool required);
    bool isCompositionRequired() const { return m_compositionRequired; }
    /// Keeps what a search found.
    void setCompositionRequired(bool required) { m_compositionRequired = required; }
    bool isGDISupportRequired() const { return m_gdiSupportRequired; }
    /// Keeps what a search found.
    void setGDISupportRequired(bool required) { m_gdiSupportRequired = required; }

    /// What was found, or null. It belongs to this object and lives until the next setter.
    PIXELFORMATDESCRIPTOR* getVisualInfo() const { return m_visualInfo; }

    /// Takes a copy of `visualInfo`, the attributes that it describes, and the pixel format of the display as the id.
    /// GDI support and composition are not required afterwards. A null pointer, or a descriptor whose first word is 0,
    /// drops the descriptor that is held.
    void setVisualInfo(const PIXELFORMATDESCRIPTOR*& visualInfo);

    /// Number of the pixel format on the device, from 1; 0 when none is known.
    int getVisualInfoId() const { return m_visualInfoId; }
    void setVisualInfoId(int id) { m_visualInfoId = id; }

    /// Takes display, number and description of a pixel format of the device, and out of the zero-ended list
    /// `attributes` with its parallel `values` the multisampling.
    void setOpenglAttributes(const HDC& display, int pixelFormat, int* attributes, int* values);

    /// A copy of this format as the device can give it.
    Format getNearest() const;

    /// True when the device has a format with everything that is wanted.
    bool isAvailable() const;

    /// Searches the format if it is not known yet, and sets it on the display (`SetPixelFormat`). With acceleration
    /// required only an exact match is taken. Returns false on failure.
    bool activate();

    /// True when GDI may draw into a window of this format.
    bool isGDIAvailable() const;

    /// True over a remote desktop connection, which has no acceleration.
    bool isRDPMode() const;

private:
    void init();
    void resetDetectedData();
    template <class T> void setWanted(T& field, T value);

    static void readSystemVersion(int& majorVersion, int& minorVersion);
    static bool isVistaOrLater();

    static int search(Format& format, bool& isExact);
    static bool searchARB(Format& format, bool& isExact, int& result);
    static int searchClassic(Format& format, bool& isExact);
    std::vector<int> buildAttributeList(int& samplesPosition) const;
    int findARB(std::vector<int>& attributes, int samplesPosition) const;
    int selectFormat(const int* formats, unsigned int& count) const;
    PIXELFORMATDESCRIPTOR buildDescriptor() const;

    bool m_doubleBuffers;
    bool m_depth;
    int m_depthBits;
    bool m_alpha;
    bool m_overlay;
    int m_plane;
    bool m_sampleBuffers;
    int m_samplesCount;
    bool m_stereo;
    bool m_rgb;
    int m_redBits;
    int m_greenBits;
    int m_blueBits;
    int m_alphaBits;
    bool m_floatColorBuffer;
    bool m_accumBuffer;
    int m_accumBufferBits;
    bool m_stencilBuffer;
    int m_stencilBufferBits;
    bool m_accelerationRequired;
    bool m_softwareRendererRequired;
    bool m_compositionRequired;
    bool m_gdiSupportRequired;
    bool m_copying;
    bool m_ownsDisplay;
    HDC m_display;
    PIXELFORMATDESCRIPTOR* m_visualInfo;
    int m_visualInfoId;
};

} // namespace renderengine::utils::GL
