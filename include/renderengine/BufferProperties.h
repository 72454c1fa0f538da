#pragma once

#include <cstdint>

namespace renderengine
{

/// Describes a device buffer and, optionally, its contents.
struct BufferProperties
{
    bool operator==(const BufferProperties& other) const
    {
        return kind == other.kind && size == other.size && data == other.data;
    }
    bool operator!=(const BufferProperties& other) const { return !(*this == other); }

    /// Usage hint: bit 0 dynamic instead of static, bit 1 copy instead of draw (GL_STATIC_DRAW, GL_DYNAMIC_COPY...).
    uint8_t kind = 0;
    /// Size in bytes.
    uint64_t size = 0;
    /// Contents of `size` bytes, or null. Not owned; copied before the recording call returns.
    const void* data = nullptr;
};

} // namespace renderengine
