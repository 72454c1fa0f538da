#include "gl/TextureFormatGL.h"

#include <limits>

namespace renderengine
{

TextureShape textureShape(GLenum target)
{
    switch (target)
    {
    case GL_TEXTURE_1D:
        return TextureShape::Line;
    case GL_TEXTURE_1D_ARRAY:
    case GL_TEXTURE_2D:
        return TextureShape::Plane;
    case GL_TEXTURE_CUBE_MAP:
        return TextureShape::Faces;
    case GL_TEXTURE_2D_ARRAY:
    case GL_TEXTURE_3D:
    case GL_TEXTURE_CUBE_MAP_ARRAY:
        return TextureShape::Volume;
    case GL_TEXTURE_2D_MULTISAMPLE:
        return TextureShape::MultisamplePlane;
    case GL_TEXTURE_2D_MULTISAMPLE_ARRAY:
        return TextureShape::MultisampleVolume;
    default:
        return TextureShape::None;
    }
}

GLsizei cubeLayers(uint32_t cubes)
{
    return cubes <= std::numeric_limits<GLsizei>::max() / 6 ? static_cast<GLsizei>(6 * cubes) : -1;
}

uint32_t pixelComponents(GLenum format)
{
    switch (format)
    {
    case GL_DEPTH_COMPONENT:
    case GL_STENCIL_INDEX:
    case GL_RED:
    case GL_GREEN:
    case GL_BLUE:
    case GL_RED_INTEGER:
    case GL_GREEN_INTEGER:
    case GL_BLUE_INTEGER:
        return 1;
    case GL_RG:
    case GL_RG_INTEGER:
    case GL_DEPTH_STENCIL:
        return 2;
    case GL_RGB:
    case GL_BGR:
    case GL_RGB_INTEGER:
    case GL_BGR_INTEGER:
        return 3;
    default:
        return 4;
    }
}

PixelTypeSize pixelTypeSize(GLenum type)
{
    switch (type)
    {
    case GL_UNSIGNED_BYTE:
    case GL_BYTE:
        return {1, false};
    case GL_UNSIGNED_SHORT:
    case GL_SHORT:
        return {2, false};
    case GL_UNSIGNED_BYTE_3_3_2:
    case GL_UNSIGNED_BYTE_2_3_3_REV:
        return {1, true};
    case GL_UNSIGNED_SHORT_5_6_5:
    case GL_UNSIGNED_SHORT_5_6_5_REV:
    case GL_UNSIGNED_SHORT_4_4_4_4:
    case GL_UNSIGNED_SHORT_4_4_4_4_REV:
    case GL_UNSIGNED_SHORT_5_5_5_1:
    case GL_UNSIGNED_SHORT_1_5_5_5_REV:
        return {2, true};
    case GL_UNSIGNED_INT_8_8_8_8:
    case GL_UNSIGNED_INT_8_8_8_8_REV:
    case GL_UNSIGNED_INT_10_10_10_2:
    case GL_UNSIGNED_INT_2_10_10_10_REV:
    case GL_UNSIGNED_INT_24_8:
    case GL_UNSIGNED_INT_10F_11F_11F_REV:
    case GL_UNSIGNED_INT_5_9_9_9_REV:
        return {4, true};
    case GL_FLOAT_32_UNSIGNED_INT_24_8_REV:
        return {5, true};
    case GL_DOUBLE:
        return {8, false};
    default:
        return {4, false};
    }
}

} // namespace renderengine
