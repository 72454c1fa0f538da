#pragma once

#include <vector>

#include <renderengine/Handle.h>

namespace renderengine
{

/// Describes a program by its stages.
struct ShaderProgramProperties
{
    bool operator==(const ShaderProgramProperties& other) const { return shaderObjects == other.shaderObjects; }
    bool operator!=(const ShaderProgramProperties& other) const { return !(*this == other); }

    /// The stages to link.
    std::vector<ShaderObjectHandle> shaderObjects;
};

} // namespace renderengine
