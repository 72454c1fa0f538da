#pragma once

#include <glbinding/GLTypes.h>

#include <string>
#include <vector>

namespace renderengine::glbinding
{
/// One active attribute, uniform or block of a program, as a linked program tells it.
struct ShaderVariable
{
    static constexpr GLint automaticLocation = -2;

    /// As GL tells it: the name of an array ends in "[0]".
    std::string name;
    /// GL_FLOAT_VEC4, GL_SAMPLER_2D and so on; 0 for a block.
    GLenum type = 0;
    /// Elements of an array, 1 otherwise; the size in bytes for a block.
    GLint size = 1;
    /// Location of an attribute or uniform, -1 for what has none, as members of blocks and built-in attributes. The
    /// automatic ones count up from 0 in the order of the list. A block has an index instead, its place in the list.
    GLint location = automaticLocation;
    /// Binding of a block.
    GLint binding = 0;
};

/// What the programs of a recording tell about themselves.
struct ShaderReflection
{
    std::vector<ShaderVariable> attributes;
    std::vector<ShaderVariable> uniforms;
    std::vector<ShaderVariable> uniformBlocks;
    std::vector<ShaderVariable> shaderStorageBlocks;
};
} // namespace renderengine::glbinding
