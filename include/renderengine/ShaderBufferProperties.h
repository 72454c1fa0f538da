#pragma once

#include <cstdint>
#include <string>

#include <renderengine/Handle.h>

namespace renderengine
{

/// Describes a buffer that backs a block of a shader.
struct ShaderBufferProperties
{
    bool operator==(const ShaderBufferProperties& other) const
    {
        return kind == other.kind && buffer == other.buffer && name == other.name;
    }
    bool operator!=(const ShaderBufferProperties& other) const { return !(*this == other); }

    /// 0 for a storage block, any other value for a uniform block.
    uint32_t kind = 1;
    /// The buffer behind the block.
    BufferHandle buffer;
    /// Name of the block in the shader.
    std::string name;
};

} // namespace renderengine
