#pragma once

#include <cstdint>
#include <string>

#include <renderengine/BufferProperties.h>
#include <renderengine/Handle.h>

#include "commands/CommandBase.h"
#include "commands/DataBlock.h"

namespace renderengine
{

/// Makes a buffer ahead of the next frame, and owns a copy of the contents when there are any.
struct CommandCreateBuffer : CommandBase
{
    void set(const BufferHandle& buffer, const BufferProperties& newProperties);

    /// Frees the contents once they are on the device.
    void releaseData();

    void execute(RendererBase& renderer) override;
    std::string name() const override;

    BufferHandle handle;
    /// `properties.data` points at `block`, or is null.
    BufferProperties properties;
    /// The contents; the run may release them early with `releaseData`.
    DataBlock block;
};

/// Replaces the contents of a buffer, and always owns a block of the new size.
struct CommandUpdateBuffer : CommandBase
{
    void set(const BufferHandle& buffer, const BufferProperties& newProperties);

    /// Frees the contents once they are on the device.
    void releaseData();

    void execute(RendererBase& renderer) override;
    std::string name() const override;

    BufferHandle handle;
    /// `properties.data` points at `block`, or is null.
    BufferProperties properties;
    /// The contents; the run may release them early with `releaseData`.
    DataBlock block;
};

/// Gives a buffer a new size, while the client waits; the contents are lost.
struct CommandResizeBuffer : CommandBase
{
    void set(const BufferHandle& buffer, uint64_t newSize) noexcept
    {
        handle = buffer;
        size = newSize;
    }
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    BufferHandle handle;
    /// New size in bytes.
    uint64_t size = 0;
};

/// Maps a part of a buffer, while the client waits.
struct CommandMapBuffer : CommandBase
{
    void set(const BufferHandle& buffer, uint64_t firstByte, uint64_t byteCount, uint32_t accessIndex) noexcept
    {
        handle = buffer;
        offset = firstByte;
        length = byteCount;
        access = accessIndex;
    }
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    BufferHandle handle;
    /// First byte of the part.
    uint64_t offset = 0;
    /// Size of the part in bytes.
    uint64_t length = 0;
    /// 0 read, 1 write, 2 both.
    uint32_t access = 0;
};

/// Ends the mapping of a buffer, while the client waits.
struct CommandUnmapBuffer : CommandBase
{
    void set(const BufferHandle& buffer) noexcept { handle = buffer; }
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    BufferHandle handle;
};

/// Copies bytes between two buffers on the device, while the client waits.
struct CommandCopyBuffer : CommandBase
{
    void set(const BufferHandle& sourceBuffer, const BufferHandle& destinationBuffer, uint64_t readOffset,
             uint64_t writeOffset, uint64_t byteCount) noexcept
    {
        source = sourceBuffer;
        destination = destinationBuffer;
        sourceOffset = readOffset;
        destinationOffset = writeOffset;
        length = byteCount;
    }
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    BufferHandle source;
    BufferHandle destination;
    /// First byte that is read.
    uint64_t sourceOffset = 0;
    /// First byte that is written.
    uint64_t destinationOffset = 0;
    /// Bytes to copy; 0 copies the whole source.
    uint64_t length = 0;
};

/// Destroys a buffer at the end of the frame in which it was recorded, and invalidates its own handle.
struct CommandDestroyBuffer : CommandBase
{
    void set(const BufferHandle& buffer) noexcept { handle = buffer; }
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    BufferHandle handle;
};

} // namespace renderengine
