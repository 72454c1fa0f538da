#pragma once

#include "commands/DataBlock.h"
#include "gl/BaseResourceGL.h"

#include <glbinding/gl.h>
#include <renderengine/TextureProperties.h>
#include <renderengine/TextureUpdateBatchDataProperties.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace renderengine
{

/// One GL texture. Every operation except bind() saves the binding of its target on the active unit and restores it.
/// Render thread only, with the context current.
class TextureGL : public BaseResourceGL
{
public:
    TextureGL() = default;
    /// Runs update().
    explicit TextureGL(const TextureProperties& properties);
    ~TextureGL() override = default;

    /// Creates or re-creates the texture from a full description: storage, and the images when there are any. A change
    /// of target replaces the GL name and sets the texture dirty, so that render targets attach the new one. Leaves
    /// GL_UNPACK_ALIGNMENT at 1. An index outside its table logs an error and changes nothing.
    void update(const TextureProperties& properties);
    /// Runs the partial update of each record, in order. Leaves GL_UNPACK_ROW_LENGTH and GL_UNPACK_IMAGE_HEIGHT at the
    /// values of the last one.
    void updateImages(const std::vector<TextureUpdateBatchData>& images);
    /// New storage of another size for a mutable texture; the contents are lost. Logs an error for an immutable one.
    void resize(uint32_t newWidth, uint32_t newHeight, uint32_t newDepth);
    /// glGenerateMipmap, with seamless cube maps switched on for good.
    void generateMipmap();
    /// Reads level 0 into the read-back block, which is as large as what GL stores.
    void readback();
    /// Bytes of level 0 in the texture's pixel format and type.
    uint64_t getDataSize() const;

    /// Makes the unit active and binds the texture to it, or 0 when enable is false. Outside the core profile the
    /// target is also switched on or off for the fixed-function path, where the target has such a switch.
    void bind(GLuint unit, bool enable) const;
    /// Deletes the name and frees the read-back block.
    void destroy() override;

    /// GL texture name, 0 when there is none.
    GLuint getId() const { return id; }
    GLenum getTarget() const { return target; }
    GLenum getInternalFormat() const { return internalFormat; }
    GLenum getFormat() const { return format; }
    GLenum getType() const { return type; }
    uint32_t getWidth() const { return width; }
    uint32_t getHeight() const { return height; }
    uint32_t getDepth() const { return depth; }
    bool isImmutable() const { return immutable; }
    bool isCompressed() const { return compressed; }
    uint8_t getSamples() const { return samples; }

    /// The block of the last readback(), rows tightly packed, faces of a cube map one after the other. Null before the
    /// first read-back and after update(), resize() and destroy().
    const std::byte* getReadbackData() const { return readbackData.get(); }
    /// Bytes of that block, 0 without one.
    uint64_t getReadbackSize() const { return readbackSize; }

private:
    struct LevelSize
    {
        GLsizei width;
        GLsizei height;
        GLsizei depth;
    };

    bool fillFields(const TextureProperties& properties);
    void setParameters(const TextureProperties& properties) const;
    void updateImage(const TextureUpdateBatchData& image);
    GLenum packedType(const TextureUpdateBatchData& image, GLenum imageType) const;
    void sendSubImage(const TextureUpdateBatchData& image, GLenum imageFormat, GLenum imageType) const;
    bool makeReadbackBlock();
    void freeReadback();
    uint64_t getPixelCount() const;
    uint64_t getStoredPixelCount() const;
    uint64_t getReadbackPixelSize() const;

    // Storage and images; the texture is bound.
    bool allocate() const;
    void upload(const TextureProperties& properties) const;
    void storeImmutable(const std::vector<const void*>& images, GLsizei levels) const;
    void sendLevel(GLsizei level, const std::vector<const void*>& images) const;
    void storeMutable(const std::vector<const void*>& images, GLsizei levels) const;
    void storeCompressed(const std::vector<const void*>& images, const std::vector<uint32_t>& sizes,
                         GLsizei levels) const;
    LevelSize storageSize() const;
    LevelSize levelSize(GLsizei level) const;
    bool hasImmutableStorage() const;

    bool immutable = false;
    bool compressed = false;
    uint8_t samples = 1;
    uint32_t width = 1;
    uint32_t height = 1;
    uint32_t depth = 1;
    GLuint id = 0;
    GLenum target = 0;
    GLenum bindingQuery = 0;
    GLenum internalFormat = GL_RGBA8;
    GLenum format = GL_RGBA;
    GLenum type = GL_UNSIGNED_BYTE;
    std::array<GLint, 4> swizzle{{GL_RED, GL_GREEN, GL_BLUE, GL_ALPHA}};
    // From calloc, which writes no page of a large block that GL then does not fill.
    std::unique_ptr<std::byte[], FreeDeleter> readbackData;
    uint64_t readbackSize = 0;
    uint64_t largestPixelCount = 0; // of all sizes given since the name was made or GL was asked
};

} // namespace renderengine
