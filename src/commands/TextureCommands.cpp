#include "commands/TextureCommands.h"

#include "commands/PixelLayout.h"

namespace renderengine
{

namespace
{

/// Bits of TextureUpdateBatchData::flags.
constexpr unsigned CopyData = 1u;
constexpr unsigned OwnsData = 2u;

} // namespace

std::string CommandCreateTexture::name() const
{
    return "CreateTexture";
}

void CommandUpdateTexture::set(const TextureHandle& texture, const TextureProperties& newProperties)
{
    std::vector<DataBlock> newBlocks = copyTexturePixels(newProperties);
    handle = texture;
    properties = newProperties;
    blocks = std::move(newBlocks);
    if (properties.compressed != 0 && joinsFaces(newProperties) && !properties.sizes.empty())
    {
        // The size of a face becomes that of the level.
        properties.sizes[0] *= 6;
    }
    properties.data.clear();
    for (const DataBlock& block : blocks)
    {
        properties.data.push_back(block.get());
    }
}

std::string CommandUpdateTexture::name() const
{
    return "UpdateTexture";
}

std::string CommandResizeTexture::name() const
{
    return "ResizeTexture";
}

void CommandUpdateTextureBatchData::set(const TextureHandle& texture,
                                        const TextureUpdateBatchDataProperties& newProperties)
{
    freeOwnedBlocks();
    handle = texture;
    properties = newProperties;
    for (TextureUpdateBatchData& entry : properties)
    {
        // The mark is the engine's own: a client's memory is never freed here.
        entry.flags = static_cast<uint8_t>(entry.flags & ~OwnsData);
    }
    for (TextureUpdateBatchData& entry : properties)
    {
        if ((entry.flags & CopyData) != 0)
        {
            entry.data = copyBatchEntryPixels(entry).release();
            entry.flags = static_cast<uint8_t>(entry.flags | OwnsData);
            entry.rowLength = 0;
            entry.imageHeight = 0;
        }
    }
}

CommandUpdateTextureBatchData::~CommandUpdateTextureBatchData()
{
    freeOwnedBlocks();
}

void CommandUpdateTextureBatchData::freeOwnedBlocks()
{
    for (const TextureUpdateBatchData& entry : properties)
    {
        if ((entry.flags & OwnsData) != 0)
        {
            std::free(const_cast<void*>(entry.data));
        }
    }
    properties.clear();
}

std::string CommandUpdateTextureBatchData::name() const
{
    return "UpdateTextureBatchData";
}

std::string CommandGenerateMipmap::name() const
{
    return "GenerateMipmap";
}

std::string CommandDestroyTexture::name() const
{
    return "DestroyTexture";
}

std::string CommandCreateTextureImage::name() const
{
    return "CreateTextureImage";
}

std::string CommandUpdateTextureImage::name() const
{
    return "UpdateTextureImage";
}

std::string CommandDestroyTextureImage::name() const
{
    return "DestroyTextureImage";
}

} // namespace renderengine
