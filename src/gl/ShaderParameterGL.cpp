#include "gl/ShaderParameterGL.h"

namespace renderengine
{

namespace
{

// One overload a type: the GL entry that sends count values.
void sendUniforms(GLint location, GLsizei count, const float* values)
{
    glUniform1fv(location, count, values);
}
void sendUniforms(GLint location, GLsizei count, const int* values)
{
    glUniform1iv(location, count, values);
}

void sendUniforms(GLint location, GLsizei count, const SbVec2f* values)
{
    glUniform2fv(location, count, reinterpret_cast<const GLfloat*>(values));
}

void sendUniforms(GLint location, GLsizei count, const SbVec2i32* values)
{
    glUniform2iv(location, count, reinterpret_cast<const GLint*>(values));
}

void sendUniforms(GLint location, GLsizei count, const SbVec3f* values)
{
    glUniform3fv(location, count, reinterpret_cast<const GLfloat*>(values));
}

void sendUniforms(GLint location, GLsizei count, const SbVec3i32* values)
{
    glUniform3iv(location, count, reinterpret_cast<const GLint*>(values));
}

void sendUniforms(GLint location, GLsizei count, const SbVec4f* values)
{
    glUniform4fv(location, count, reinterpret_cast<const GLfloat*>(values));
}

void sendUniforms(GLint location, GLsizei count, const SbVec4i32* values)
{
    glUniform4iv(location, count, reinterpret_cast<const GLint*>(values));
}

void sendUniforms(GLint location, GLsizei count, const SbMatrix3* values)
{
    glUniformMatrix3fv(location, count, GL_FALSE, reinterpret_cast<const GLfloat*>(values));
}

void sendUniforms(GLint location, GLsizei count, const SbMatrix* values)
{
    glUniformMatrix4fv(location, count, GL_FALSE, reinterpret_cast<const GLfloat*>(values));
}

// Single scalars go by value, everything else as an array of one.
void sendUniform(GLint location, float value)
{
    glUniform1f(location, value);
}
void sendUniform(GLint location, int value)
{
    glUniform1i(location, value);
}
template <typename T> void sendUniform(GLint location, const T& value)
{
    sendUniforms(location, 1, &value);
}

} // namespace

template <typename T> void ShaderParameterValueGL<T>::apply(GLint location) const
{
    sendUniform(location, value);
}

template <typename T> void ShaderParameterArrayValueGL<T>::apply(GLint location) const
{
    sendUniforms(location, static_cast<GLsizei>(value.size()), value.data());
}

template class ShaderParameterValueGL<float>;
template class ShaderParameterValueGL<int>;
template class ShaderParameterValueGL<SbVec2f>;
template class ShaderParameterValueGL<SbVec2i32>;
template class ShaderParameterValueGL<SbVec3f>;
template class ShaderParameterValueGL<SbVec3i32>;
template class ShaderParameterValueGL<SbVec4f>;
template class ShaderParameterValueGL<SbVec4i32>;
template class ShaderParameterValueGL<SbMatrix3>;
template class ShaderParameterValueGL<SbMatrix>;

template class ShaderParameterArrayValueGL<float>;
template class ShaderParameterArrayValueGL<int>;
template class ShaderParameterArrayValueGL<SbVec2f>;
template class ShaderParameterArrayValueGL<SbVec2i32>;
template class ShaderParameterArrayValueGL<SbVec3f>;
template class ShaderParameterArrayValueGL<SbVec3i32>;
template class ShaderParameterArrayValueGL<SbVec4f>;
template class ShaderParameterArrayValueGL<SbVec4i32>;
template class ShaderParameterArrayValueGL<SbMatrix>;

} // namespace renderengine
