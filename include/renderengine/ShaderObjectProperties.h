#pragma once

#include <cstdint>
#include <string>

namespace renderengine
{

/// Describes one shader stage.
struct ShaderObjectProperties
{
    bool operator==(const ShaderObjectProperties& other) const
    {
        return stage == other.stage && source == other.source;
    }
    bool operator!=(const ShaderObjectProperties& other) const { return !(*this == other); }

    /// 0 vertex, 1 geometry, 2 fragment, 3 tessellation control, 4 tessellation evaluation, 5 compute.
    uint32_t stage = 0;
    /// GLSL source text.
    std::string source;
};

} // namespace renderengine
