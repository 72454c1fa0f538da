#pragma once

#include <string>

namespace renderengine
{

/// A uniform of one value.
///
/// T is float, SbVec2f, SbVec3f, SbVec4f, int, SbVec2i32, SbVec3i32, SbVec4i32, SbMatrix or SbMatrix3.
template <class T> struct ShaderParameterProperties
{
    bool operator==(const ShaderParameterProperties& other) const { return name == other.name && value == other.value; }
    bool operator!=(const ShaderParameterProperties& other) const { return !(*this == other); }

    /// Name of the uniform in the shader.
    std::string name;
    /// Value of the uniform.
    T value{};
};

} // namespace renderengine
