#pragma once

#include "platform/EGLDisplays.h"

#include <renderengine/PlatformTypes.h>

#include <string>
#include <vector>

// The translation between the terms of WGL and GDI and those of EGL, without any call to EGL.

namespace renderengine
{

/// A list of context attributes in EGL's terms, ended by EGL_NONE. `attributes` is zero-ended, null for an empty one.
/// Returns false for an attribute that EGL has no word for. The layer plane is dropped, as EGL has none.
bool translateContextAttributes(const int* attributes, std::vector<EGLint>& translated);

/// What GDI would say of a configuration. Each counts as double-buffered and composed, none draws GDI or stereo.
PIXELFORMATDESCRIPTOR describeConfig(const EGLConfigInfo& config);

/// The number of the pixel format that is nearest to `wanted`: what is missing weighs more than what is too much. 0
/// when the display has none.
int chooseNearestPixelFormat(const EGLDisplayInfo& display, const PIXELFORMATDESCRIPTOR& wanted);

/// The numbers of all pixel formats that match a zero-ended list of WGL attributes, the nearest first.
std::vector<int> choosePixelFormats(const EGLDisplayInfo& display, const int* attributes);

/// The value of a WGL attribute of a pixel format. Returns false for an unknown attribute, and for a pixel format that
/// is out of range unless the number of formats is asked for.
bool readPixelFormatAttribute(const EGLDisplayInfo& display, int pixelFormat, int attribute, int& value);

/// The name of an EGL error number, empty for a number that is none.
std::string eglErrorName(unsigned long error);

} // namespace renderengine
