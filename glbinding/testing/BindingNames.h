#pragma once

#include "CallOutput.h"

#include <map>

namespace renderengine::glbinding
{
constexpr GLuint drawBufferCount = 8;

/// GL_TEXTURE_BINDING_2D for GL_TEXTURE_2D and so on, 0 for what is no target.
GLenum textureBindingOf(GLenum target);
/// GL_ARRAY_BUFFER_BINDING for GL_ARRAY_BUFFER and so on, 0 for what is no target.
GLenum bufferBindingOf(GLenum target);

/// The values of a context in which nothing was called yet.
std::map<GLenum, Numbers> initialContextValues();

/// A value that is a call's arguments as they stand: glViewport sets GL_VIEWPORT.
struct ValueOfCall
{
    FunctionIndex function;
    GLenum name;
    int count;
    bool real;
};

/// Null for calls that set no such value.
const ValueOfCall* valueOfCall(FunctionIndex function);

/// The names of the buffer bindings, but for those that belong to a vertex array.
const std::vector<GLenum>& bufferBindings();
} // namespace renderengine::glbinding
