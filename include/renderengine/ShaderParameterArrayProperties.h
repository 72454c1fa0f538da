#pragma once

#include <string>
#include <vector>

namespace renderengine
{

/// A uniform array.
///
/// T is float, SbVec2f, SbVec3f, SbVec4f, int, SbVec2i32, SbVec3i32, SbVec4i32 or SbMatrix.
template <class T> struct ShaderParameterArrayProperties
{
    bool operator==(const ShaderParameterArrayProperties& other) const
    {
        return name == other.name && value == other.value;
    }
    bool operator!=(const ShaderParameterArrayProperties& other) const { return !(*this == other); }

    /// Name of the uniform in the shader.
    std::string name;
    /// The elements, from the first on.
    std::vector<T> value;
};

} // namespace renderengine
