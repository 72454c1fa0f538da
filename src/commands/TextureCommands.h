#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <renderengine/Handle.h>
#include <renderengine/TextureImageProperties.h>
#include <renderengine/TextureProperties.h>
#include <renderengine/TextureUpdateBatchDataProperties.h>

#include "commands/CommandBase.h"
#include "commands/DataBlock.h"

namespace renderengine
{

/// Makes a texture ahead of the next frame; its pixels stay the client's memory until it has run.
struct CommandCreateTexture : CommandBase
{
    void set(const TextureHandle& texture, const TextureProperties& newProperties)
    {
        handle = texture;
        properties = newProperties;
    }
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    TextureHandle handle;
    TextureProperties properties;
};

/// Replaces description and pixels of a texture, and owns a copy of the pixels.
struct CommandUpdateTexture : CommandBase
{
    void set(const TextureHandle& texture, const TextureProperties& newProperties);
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    TextureHandle handle;
    /// `properties.data` points at `blocks`, one for one.
    TextureProperties properties;
    /// The pixels, level by level, faces inside a level; the faces of a cube map array are joined into one block a
    /// level.
    std::vector<DataBlock> blocks;
};

/// Gives a texture storage of a new size.
struct CommandResizeTexture : CommandBase
{
    void set(const TextureHandle& texture, uint32_t newWidth, uint32_t newHeight, uint32_t newDepth) noexcept
    {
        handle = texture;
        width = newWidth;
        height = newHeight;
        depth = newDepth;
    }
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    TextureHandle handle;
    uint32_t width = 0;
    uint32_t height = 0;
    uint32_t depth = 0;
};

/// Replaces boxes of pixels of a texture, and owns the pixels of the entries that are marked so.
struct CommandUpdateTextureBatchData : CommandBase
{
    ~CommandUpdateTextureBatchData() override;

    void set(const TextureHandle& texture, const TextureUpdateBatchDataProperties& newProperties);
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    TextureHandle handle;
    /// The entries; bit 1 of their flags marks a block that the command frees.
    TextureUpdateBatchDataProperties properties;

private:
    void freeOwnedBlocks();
};

/// Computes the mipmap levels of a texture from its first.
struct CommandGenerateMipmap : CommandBase
{
    void set(const TextureHandle& texture) noexcept { handle = texture; }
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    TextureHandle handle;
};

/// Reads the pixels of a texture into memory that its object owns.
struct CommandReadbackTexture : CommandBase
{
    void set(const TextureHandle& texture) noexcept { handle = texture; }
    void execute(RendererBase& renderer) override;

    TextureHandle handle;
};

/// Destroys a texture at the end of the frame in which it was recorded, and invalidates its own handle.
struct CommandDestroyTexture : CommandBase
{
    void set(const TextureHandle& texture) noexcept { handle = texture; }
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    TextureHandle handle;
};

/// Makes an image-unit binding ahead of the next frame from its copy of the record.
struct CommandCreateTextureImage : CommandBase
{
    void set(const TextureImageHandle& textureImage, const TextureImageProperties& newProperties)
    {
        handle = textureImage;
        properties = newProperties;
    }
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    TextureImageHandle handle;
    TextureImageProperties properties;
};

/// Gives an image-unit binding a new description, of which it holds a copy.
struct CommandUpdateTextureImage : CommandBase
{
    void set(const TextureImageHandle& textureImage, const TextureImageProperties& newProperties)
    {
        handle = textureImage;
        properties = newProperties;
    }
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    TextureImageHandle handle;
    TextureImageProperties properties;
};

/// Destroys an image-unit binding at the end of the frame in which it was recorded, and invalidates its own handle.
struct CommandDestroyTextureImage : CommandBase
{
    void set(const TextureImageHandle& textureImage) noexcept { handle = textureImage; }
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    TextureImageHandle handle;
};

} // namespace renderengine
