#include "gl/TextureGL.h"

#include "commands/PixelLayout.h"
#include "gl/GLTables.h"
#include "gl/TextureFormatGL.h"

#include <kavelor/SoPreferences.h>
#include <spdlog/spdlog.h>

#include <algorithm>
#include <cstdlib>
#include <initializer_list>
#include <limits>

namespace renderengine
{

namespace
{

constexpr uint32_t s_depth24Stencil8 = 84;
constexpr uint32_t s_depth32fStencil8 = 85;
constexpr uint32_t s_faceCount = 6;

/// Binds a texture to its target on the active unit and puts the old binding back at the end of the scope.
class ScopedBinding
{
public:
    ScopedBinding(GLenum target, GLenum query, GLuint id) : m_target(target)
    {
        glGetIntegerv(query, &m_saved);
        glBindTexture(m_target, id);
    }
    ScopedBinding(const ScopedBinding&) = delete;
    ScopedBinding& operator=(const ScopedBinding&) = delete;
    ~ScopedBinding() { glBindTexture(m_target, static_cast<GLuint>(m_saved)); }

private:
    GLenum m_target;
    GLint m_saved = 0;
};

/// The product, or the largest number when it does not fit: no block of memory is that large.
uint64_t saturatingProduct(std::initializer_list<uint64_t> factors)
{
    uint64_t product = 1;
    for (const uint64_t factor : factors)
    {
        if (factor != 0 && product > std::numeric_limits<uint64_t>::max() / factor)
        {
            return std::numeric_limits<uint64_t>::max();
        }
        product *= factor;
    }
    return product;
}

/// Targets that the fixed-function pipeline switches on and off.
bool hasEnable(GLenum target)
{
    return target == GL_TEXTURE_1D || target == GL_TEXTURE_2D || target == GL_TEXTURE_3D ||
           target == GL_TEXTURE_CUBE_MAP;
}

} // namespace

TextureGL::TextureGL(const TextureProperties& properties)
{
    update(properties);
}

bool TextureGL::fillFields(const TextureProperties& properties)
{
    const GLenum* newTarget = gltables::textureTargets.find(properties.type);
    const GLenum* newInternalFormat = gltables::internalFormats.find(properties.internalFormat);
    const GLenum* newFormat = gltables::pixelFormats.find(properties.format);
    const GLenum* newType = gltables::dataTypes.find(properties.dataType.getType());
    std::array<const GLenum*, 4> newSwizzle{};
    for (size_t i = 0; i < newSwizzle.size(); ++i)
    {
        newSwizzle[i] = gltables::swizzles.find(properties.swizzle[i]);
    }
    if (!newTarget || !newInternalFormat || !newFormat || !newType ||
        std::find(newSwizzle.begin(), newSwizzle.end(), nullptr) != newSwizzle.end())
    {
        return false;
    }
    immutable = properties.immutable != 0;
    compressed = properties.compressed != 0;
    samples = properties.samples;
    target = *newTarget;
    bindingQuery = *gltables::textureBindingQueries.find(properties.type);
    internalFormat = *newInternalFormat;
    if (!compressed)
    {
        format = *newFormat;
    }
    type = *newType;
    if (properties.internalFormat == s_depth24Stencil8)
    {
        type = GL_UNSIGNED_INT_24_8;
    }
    else if (properties.internalFormat == s_depth32fStencil8)
    {
        type = GL_FLOAT_32_UNSIGNED_INT_24_8_REV;
    }
    for (size_t i = 0; i < swizzle.size(); ++i)
    {
        swizzle[i] = static_cast<GLint>(*newSwizzle[i]);
    }
    return true;
}

void TextureGL::update(const TextureProperties& properties)
{
    const GLenum oldTarget = target;
    if (!fillFields(properties))
    {
        return;
    }
    // A name keeps the target that it was first bound to.
    if (target != oldTarget || id == 0)
    {
        destroy();
        glGenTextures(1, &id);
        setDirty(true);
    }
    const ScopedBinding binding(target, bindingQuery, id);
    width = properties.width;
    height = properties.height;
    depth = properties.depth;
    largestPixelCount = std::max(largestPixelCount, getPixelCount());
    freeReadback();
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    setParameters(properties);
    if (properties.data.empty())
    {
        allocate();
    }
    else
    {
        upload(properties);
    }
}

void TextureGL::setParameters(const TextureProperties& properties) const
{
    // Real filtering and wrapping come from the sampler. The multisample array gets the parameters too and answers with
    // an error, which the debug output shows.
    if (target != GL_TEXTURE_2D_MULTISAMPLE)
    {
        glTexParameteri(target, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
        glTexParameteri(target, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
        glTexParameteri(target, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
        glTexParameteri(target, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    }
    glTexParameteriv(target, GL_TEXTURE_SWIZZLE_RGBA, swizzle.data());
    glTexParameteri(target, GL_TEXTURE_BASE_LEVEL, properties.baseLevel);
    glTexParameteri(target, GL_TEXTURE_MAX_LEVEL, properties.maxLevel);
}

void TextureGL::updateImages(const std::vector<TextureUpdateBatchData>& images)
{
    for (const TextureUpdateBatchData& image : images)
    {
        updateImage(image);
    }
}

void TextureGL::updateImage(const TextureUpdateBatchData& image)
{
    const GLenum* imageFormat = gltables::pixelFormats.find(image.format);
    const GLenum* imageType = gltables::dataTypes.find(image.dataType.getType());
    if (!imageFormat || !imageType || target == 0)
    {
        return;
    }
    const ScopedBinding binding(target, bindingQuery, id);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, static_cast<GLint>(image.rowLength));
    glPixelStorei(GL_UNPACK_IMAGE_HEIGHT, static_cast<GLint>(image.imageHeight));
    sendSubImage(image, *imageFormat, packedType(image, *imageType));
}

GLenum TextureGL::packedType(const TextureUpdateBatchData& image, GLenum imageType) const
{
    constexpr uint32_t depthStencilFormat = 2;
    const bool isPacked = type == GL_UNSIGNED_INT_24_8 || type == GL_FLOAT_32_UNSIGNED_INT_24_8_REV;
    // GL takes both values of a pixel in the texture's packing only. Pixels of another size stay with the plain type,
    // which GL refuses without reading them.
    const bool fits = batchPixelSize(image.format, image.dataType) == getReadbackPixelSize();
    return isPacked && image.format == depthStencilFormat && fits ? type : imageType;
}

void TextureGL::sendSubImage(const TextureUpdateBatchData& image, GLenum imageFormat, GLenum imageType) const
{
    const auto level = static_cast<GLint>(image.level);
    const auto x = static_cast<GLint>(image.x);
    const auto y = static_cast<GLint>(image.y);
    const auto z = static_cast<GLint>(image.z);
    const auto columns = static_cast<GLsizei>(image.width);
    const auto rows = static_cast<GLsizei>(image.height);
    const auto slices = static_cast<GLsizei>(image.depth);
    const TextureShape shape = textureShape(target);
    if (shape == TextureShape::MultisamplePlane)
    {
        // The samples cannot be sent; the image is specified anew in the format of the record.
        glTexImage2DMultisample(target, samples, imageFormat, columns, rows, GL_FALSE);
        return;
    }
    if (!image.data)
    {
        return;
    }
    switch (shape)
    {
    case TextureShape::Line:
        glTexSubImage1D(target, level, x, columns, imageFormat, imageType, image.data);
        break;
    case TextureShape::Plane:
        glTexSubImage2D(target, level, x, y, columns, rows, imageFormat, imageType, image.data);
        break;
    case TextureShape::Faces:
        glTexSubImage2D(GL_TEXTURE_CUBE_MAP_POSITIVE_X + std::min<GLenum>(image.face, s_faceCount - 1), level, x, y,
                        columns, rows, imageFormat, imageType, image.data);
        break;
    case TextureShape::Volume:
    {
        // A cube-map array counts cubes in depth, but z is a layer-face as it stands.
        const GLsizei layers = target == GL_TEXTURE_CUBE_MAP_ARRAY ? cubeLayers(image.depth) : slices;
        glTexSubImage3D(target, level, x, y, z, columns, rows, layers, imageFormat, imageType, image.data);
        break;
    }
    default:
        break;
    }
}

void TextureGL::resize(uint32_t newWidth, uint32_t newHeight, uint32_t newDepth)
{
    if (immutable)
    {
        spdlog::error("[TextureGL] Immutable textures dimensions and format can not be modified after creation.");
        return;
    }
    if (target == 0)
    {
        return;
    }
    const std::array<uint32_t, 3> oldSize{{width, height, depth}};
    width = newWidth;
    height = newHeight;
    depth = newDepth;
    largestPixelCount = std::max(largestPixelCount, getPixelCount());
    const ScopedBinding binding(target, bindingQuery, id);
    if (!allocate())
    {
        width = oldSize[0];
        height = oldSize[1];
        depth = oldSize[2];
    }
    freeReadback();
}

void TextureGL::generateMipmap()
{
    if (target == 0)
    {
        return;
    }
    glEnable(GL_TEXTURE_CUBE_MAP_SEAMLESS);
    const ScopedBinding binding(target, bindingQuery, id);
    glGenerateMipmap(target);
}

bool TextureGL::makeReadbackBlock()
{
    // What GL refused to store anew keeps its former size, and GL writes as much as it stores. It is asked where it may
    // have refused: after a larger size, and for blocks that are worth a question. Uploads store a size of 0 as 1.
    constexpr uint64_t largeBlock = 1u << 26;
    uint64_t pixelCount = getPixelCount();
    if (pixelCount == 0 || largestPixelCount > pixelCount || getDataSize() > largeBlock)
    {
        const uint64_t storedPixelCount = getStoredPixelCount();
        largestPixelCount = std::max(pixelCount, storedPixelCount);
        pixelCount = storedPixelCount;
    }
    const uint64_t blockSize = std::max<uint64_t>(1, saturatingProduct({pixelCount, getReadbackPixelSize()}));
    // Some heaps complain loudly about more than there are addresses.
    const bool isPossible = blockSize <= static_cast<uint64_t>(std::numeric_limits<std::ptrdiff_t>::max());
    readbackData.reset(isPossible ? static_cast<std::byte*>(std::calloc(blockSize, 1)) : nullptr);
    if (!readbackData)
    {
        spdlog::error("[TextureGL] There is no memory for {} bytes of read-back data.", blockSize);
        return false;
    }
    readbackSize = blockSize;
    return true;
}

void TextureGL::readback()
{
    if (target == 0)
    {
        return;
    }
    if (!readbackData && !makeReadbackBlock())
    {
        return;
    }
    GLint savedBinding = 0;
    GLint savedAlignment = 0;
    glGetIntegerv(bindingQuery, &savedBinding);
    glGetIntegerv(GL_PACK_ALIGNMENT, &savedAlignment);
    glBindTexture(target, id);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    if (target == GL_TEXTURE_CUBE_MAP)
    {
        const uint64_t faceSize = readbackSize / s_faceCount;
        for (uint32_t face = 0; face < s_faceCount; ++face)
        {
            glGetTexImage(GL_TEXTURE_CUBE_MAP_POSITIVE_X + face, 0, format, type, readbackData.get() + face * faceSize);
        }
    }
    else
    {
        glGetTexImage(target, 0, format, type, readbackData.get());
    }
    glBindTexture(target, static_cast<GLuint>(savedBinding));
    glPixelStorei(GL_PACK_ALIGNMENT, savedAlignment);
}

uint64_t TextureGL::getPixelCount() const
{
    switch (target)
    {
    case GL_TEXTURE_1D:
        return width;
    case GL_TEXTURE_CUBE_MAP:
        return saturatingProduct({width, height, s_faceCount});
    case GL_TEXTURE_3D:
    case GL_TEXTURE_2D_ARRAY:
        return saturatingProduct({width, height, depth});
    case GL_TEXTURE_CUBE_MAP_ARRAY:
        return saturatingProduct({width, height, depth, s_faceCount});
    default:
        return saturatingProduct({width, height});
    }
}

uint64_t TextureGL::getStoredPixelCount() const
{
    const bool isCube = target == GL_TEXTURE_CUBE_MAP;
    const GLenum image = isCube ? GL_TEXTURE_CUBE_MAP_POSITIVE_X : target;
    std::array<GLint, 3> sizes{};
    const ScopedBinding binding(target, bindingQuery, id);
    glGetTexLevelParameteriv(image, 0, GL_TEXTURE_WIDTH, &sizes[0]);
    glGetTexLevelParameteriv(image, 0, GL_TEXTURE_HEIGHT, &sizes[1]);
    glGetTexLevelParameteriv(image, 0, GL_TEXTURE_DEPTH, &sizes[2]);
    uint64_t count = isCube ? s_faceCount : 1;
    for (const GLint size : sizes)
    {
        count = saturatingProduct({count, static_cast<uint64_t>(std::max(size, 0))});
    }
    return count;
}

uint64_t TextureGL::getDataSize() const
{
    const PixelTypeSize size = pixelTypeSize(type);
    return saturatingProduct({getPixelCount(), size.isWholePixel ? 1u : pixelComponents(format), size.bytes});
}

uint64_t TextureGL::getReadbackPixelSize() const
{
    // GL pads the stencil byte behind a float depth to a word.
    if (type == GL_FLOAT_32_UNSIGNED_INT_24_8_REV)
    {
        return 8;
    }
    const PixelTypeSize size = pixelTypeSize(type);
    return uint64_t{size.isWholePixel ? 1u : pixelComponents(format)} * size.bytes;
}

void TextureGL::bind(GLuint unit, bool enable) const
{
    static const bool s_coreProfile = SoPreferences::getBool("KVR_RENDERENGINE_USE_GLCORE", false);
    glActiveTexture(GL_TEXTURE0 + unit);
    glBindTexture(target, enable ? id : 0);
    if (s_coreProfile || !hasEnable(target))
    {
        return;
    }
    if (enable)
    {
        glEnable(target);
    }
    else
    {
        glDisable(target);
    }
}

void TextureGL::destroy()
{
    if (glIsTexture(id))
    {
        glDeleteTextures(1, &id);
    }
    id = 0;
    largestPixelCount = 0;
    freeReadback();
}

void TextureGL::freeReadback()
{
    readbackData.reset();
    readbackSize = 0;
}

} // namespace renderengine
