#pragma once

#include <glbinding/gl.h>

#include <cstdint>

namespace renderengine
{

/// How texture calls see a target.
enum class TextureShape
{
    None,
    Line,
    Plane,
    Faces,
    Volume,
    MultisamplePlane,
    MultisampleVolume
};

/// The shape of a texture target; None for GL_TEXTURE_BUFFER, which has no images.
TextureShape textureShape(GLenum target);

/// Layers of so many cubes of a cube-map array: six each. Numbers beyond GLsizei give -1, which GL refuses before all
/// else; a product that wraps around could be one that GL takes.
GLsizei cubeLayers(uint32_t cubes);

/// Components of a pixel format, 4 for unknown ones.
uint32_t pixelComponents(GLenum format);

/// Bytes of a pixel type, and whether they hold a whole pixel instead of one component.
struct PixelTypeSize
{
    uint32_t bytes;
    bool isWholePixel;
};

/// The size by which read-back data is counted. GL_FLOAT_32_UNSIGNED_INT_24_8_REV counts 5 bytes: its depth and its
/// stencil, without the padding that GL writes.
PixelTypeSize pixelTypeSize(GLenum type);

} // namespace renderengine
