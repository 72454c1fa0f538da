#include "gl/TextureFormatGL.h"
#include "gl/TextureGL.h"

#include <spdlog/spdlog.h>

#include <algorithm>

namespace renderengine
{

namespace
{

constexpr GLsizei s_faceCount = 6;

GLsizei shrink(uint32_t size, GLsizei level)
{
    // A shift by the width of the type or more is undefined.
    return static_cast<GLsizei>(std::max<uint32_t>(1, level < 32 ? size >> level : 0));
}

/// The block of a level or face; null where nothing but storage is asked for.
const void* imageAt(const std::vector<const void*>& images, GLsizei index)
{
    return images.empty() ? nullptr : images[static_cast<size_t>(index)];
}

bool isAtLeast(const GLEWContextStruct& table, int major, int minor)
{
    return table.majorVersion > major || (table.majorVersion == major && table.minorVersion >= minor);
}

} // namespace

bool TextureGL::hasImmutableStorage() const
{
    const GLEWContextStruct& table = *glbinding::t_table;
    const TextureShape shape = textureShape(target);
    if (shape == TextureShape::MultisamplePlane || shape == TextureShape::MultisampleVolume)
    {
        return isAtLeast(table, 4, 3) || table.kvr_common__GLEW_ARB_texture_storage_multisample;
    }
    return isAtLeast(table, 4, 2) || table.kvr_common__GLEW_ARB_texture_storage;
}

/// What storage without data is asked for: the sizes as they are, 0 included.
TextureGL::LevelSize TextureGL::storageSize() const
{
    return {static_cast<GLsizei>(width), static_cast<GLsizei>(height),
            target == GL_TEXTURE_CUBE_MAP_ARRAY ? cubeLayers(depth) : static_cast<GLsizei>(depth)};
}

TextureGL::LevelSize TextureGL::levelSize(GLsizei level) const
{
    LevelSize size{shrink(width, level), shrink(height, level), static_cast<GLsizei>(depth)};
    if (target == GL_TEXTURE_1D_ARRAY)
    {
        // Its height counts layers.
        size.height = static_cast<GLsizei>(height);
    }
    else if (target == GL_TEXTURE_3D)
    {
        size.depth = shrink(depth, level);
    }
    else if (target == GL_TEXTURE_CUBE_MAP_ARRAY)
    {
        size.depth = cubeLayers(depth);
    }
    return size;
}

bool TextureGL::allocate() const
{
    if (compressed)
    {
        spdlog::error("[TextureGL] Creating a compressed texture without providing its data is not allowed.");
        return false;
    }
    if (immutable && hasImmutableStorage())
    {
        storeImmutable({}, 1);
    }
    else
    {
        storeMutable({}, 1);
    }
    return true;
}

void TextureGL::upload(const TextureProperties& properties) const
{
    const std::vector<const void*>& images = properties.data;
    if (compressed && properties.sizes.empty())
    {
        spdlog::error("[TextureGL] Compressed texture must specify a size.");
        return;
    }
    auto levels = static_cast<GLsizei>(images.size());
    if (target == GL_TEXTURE_CUBE_MAP)
    {
        if (levels % s_faceCount != 0)
        {
            spdlog::error("[TextureGL] Texture cubemap needs 6 faces for each mipmap levels.");
            return;
        }
        levels /= s_faceCount;
    }
    // A partial update before this may have left others, and the blocks here are tight.
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
    glPixelStorei(GL_UNPACK_IMAGE_HEIGHT, 0);
    if (compressed)
    {
        storeCompressed(images, properties.sizes, levels);
    }
    else if (immutable && hasImmutableStorage())
    {
        storeImmutable(images, levels);
    }
    else
    {
        storeMutable(images, levels);
    }
}

void TextureGL::storeImmutable(const std::vector<const void*>& images, GLsizei levels) const
{
    const LevelSize size = images.empty() ? storageSize() : levelSize(0);
    switch (textureShape(target))
    {
    case TextureShape::Line:
        glTexStorage1D(target, levels, internalFormat, size.width);
        break;
    case TextureShape::Plane:
    case TextureShape::Faces:
        glTexStorage2D(target, levels, internalFormat, size.width, size.height);
        break;
    case TextureShape::Volume:
        glTexStorage3D(target, levels, internalFormat, size.width, size.height, size.depth);
        break;
    case TextureShape::MultisamplePlane:
        glTexStorage2DMultisample(target, samples, internalFormat, size.width, size.height, GL_FALSE);
        return;
    case TextureShape::MultisampleVolume:
        glTexStorage3DMultisample(target, samples, internalFormat, size.width, size.height, size.depth, GL_FALSE);
        return;
    case TextureShape::None:
        return;
    }
    if (images.empty())
    {
        return;
    }
    for (GLsizei level = 0; level < levels; ++level)
    {
        sendLevel(level, images);
    }
}

void TextureGL::sendLevel(GLsizei level, const std::vector<const void*>& images) const
{
    const LevelSize size = levelSize(level);
    const TextureShape shape = textureShape(target);
    if (shape == TextureShape::Faces)
    {
        for (GLsizei face = 0; face < s_faceCount; ++face)
        {
            if (const void* image = imageAt(images, level * s_faceCount + face))
            {
                glTexSubImage2D(GL_TEXTURE_CUBE_MAP_POSITIVE_X + static_cast<GLenum>(face), level, 0, 0, size.width,
                                size.height, format, type, image);
            }
        }
        return;
    }
    const void* image = imageAt(images, level);
    // Storage exists already, and GL would read through a null pointer here.
    if (!image)
    {
        return;
    }
    if (shape == TextureShape::Line)
    {
        glTexSubImage1D(target, level, 0, size.width, format, type, image);
    }
    else if (shape == TextureShape::Plane)
    {
        glTexSubImage2D(target, level, 0, 0, size.width, size.height, format, type, image);
    }
    else
    {
        glTexSubImage3D(target, level, 0, 0, 0, size.width, size.height, size.depth, format, type, image);
    }
}

void TextureGL::storeMutable(const std::vector<const void*>& images, GLsizei levels) const
{
    const auto storedFormat = static_cast<GLint>(internalFormat);
    const TextureShape shape = textureShape(target);
    const LevelSize full = images.empty() ? storageSize() : levelSize(0);
    if (shape == TextureShape::MultisamplePlane)
    {
        glTexImage2DMultisample(target, samples, internalFormat, full.width, full.height, GL_FALSE);
        return;
    }
    if (shape == TextureShape::MultisampleVolume)
    {
        glTexImage3DMultisample(target, samples, internalFormat, full.width, full.height, full.depth, GL_FALSE);
        return;
    }
    for (GLsizei level = 0; level < levels; ++level)
    {
        const LevelSize size = images.empty() ? full : levelSize(level);
        switch (shape)
        {
        case TextureShape::Line:
            glTexImage1D(target, level, storedFormat, size.width, 0, format, type, imageAt(images, level));
            break;
        case TextureShape::Plane:
            glTexImage2D(target, level, storedFormat, size.width, size.height, 0, format, type, imageAt(images, level));
            break;
        case TextureShape::Faces:
            for (GLsizei face = 0; face < s_faceCount; ++face)
            {
                glTexImage2D(GL_TEXTURE_CUBE_MAP_POSITIVE_X + static_cast<GLenum>(face), level, storedFormat,
                             size.width, size.height, 0, format, type, imageAt(images, level * s_faceCount + face));
            }
            break;
        case TextureShape::Volume:
            glTexImage3D(target, level, storedFormat, size.width, size.height, size.depth, 0, format, type,
                         imageAt(images, level));
            break;
        default:
            return;
        }
    }
}

void TextureGL::storeCompressed(const std::vector<const void*>& images, const std::vector<uint32_t>& sizes,
                                GLsizei levels) const
{
    for (GLsizei level = 0; level < levels; ++level)
    {
        const auto index = static_cast<size_t>(level);
        const auto bytes = static_cast<GLsizei>(index < sizes.size() ? sizes[index] : 0);
        const LevelSize size = levelSize(level);
        switch (textureShape(target))
        {
        case TextureShape::Line:
            glCompressedTexImage1D(target, level, internalFormat, size.width, 0, bytes, imageAt(images, level));
            break;
        case TextureShape::Plane:
            glCompressedTexImage2D(target, level, internalFormat, size.width, size.height, 0, bytes,
                                   imageAt(images, level));
            break;
        case TextureShape::Faces:
            for (GLsizei face = 0; face < s_faceCount; ++face)
            {
                glCompressedTexImage2D(GL_TEXTURE_CUBE_MAP_POSITIVE_X + static_cast<GLenum>(face), level,
                                       internalFormat, size.width, size.height, 0, bytes,
                                       imageAt(images, level * s_faceCount + face));
            }
            break;
        case TextureShape::Volume:
            glCompressedTexImage3D(target, level, internalFormat, size.width, size.height, size.depth, 0, bytes,
                                   imageAt(images, level));
            break;
        default:
            return;
        }
    }
}

} // namespace renderengine
