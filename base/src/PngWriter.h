#pragma once

#include <kavelor/SbVec.h>

namespace kavelor
{

/// Writes an image of red, green, blue and alpha as a PNG file, rows from the top down. The pixels must not be null and
/// the size must be positive. Returns false when the file cannot be written.
bool writePng(const char* path, const SbVec4ub* pixels, const SbVec2i32& size);

} // namespace kavelor
