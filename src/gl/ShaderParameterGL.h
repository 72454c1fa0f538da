#pragma once

#include "gl/BaseResourceGL.h"

#include <glbinding/gl.h>
#include <kavelor/SbMatrix.h>
#include <kavelor/SbVec.h>
#include <renderengine/ShaderParameterArrayProperties.h>
#include <renderengine/ShaderParameterProperties.h>

#include <memory>
#include <string>
#include <vector>

namespace renderengine
{

/// A named value for a uniform. It holds no location, since one parameter may serve several programs. Render thread
/// only.
class ShaderParameterGL : public BaseResourceGL
{
public:
    /// Sends the value to the uniform at location of the program in use (glUniform*).
    virtual void apply(GLint location) const = 0;

    /// Name of the uniform.
    const std::string& getName() const { return name; }

protected:
    void setName(const std::string& newName) { name = newName; }

private:
    std::string name;
};

/// Parameter of one value. Through the aliases below.
template <typename T> class ShaderParameterValueGL final : public ShaderParameterGL
{
public:
    explicit ShaderParameterValueGL(const ShaderParameterProperties<T>& properties) { update(properties); }

    /// Takes name and value.
    void update(const ShaderParameterProperties<T>& properties)
    {
        setName(properties.name);
        value = properties.value;
    }

    void apply(GLint location) const override;

private:
    T value{};
};

/// Parameter of an array of values, sent in one call. Through the aliases below.
template <typename T> class ShaderParameterArrayValueGL final : public ShaderParameterGL
{
public:
    explicit ShaderParameterArrayValueGL(const ShaderParameterArrayProperties<T>& properties) { update(properties); }

    /// Takes name and values.
    void update(const ShaderParameterArrayProperties<T>& properties)
    {
        setName(properties.name);
        value = properties.value;
    }

    void apply(GLint location) const override;

private:
    std::vector<T> value;
};

using ShaderParameterGL1f = ShaderParameterValueGL<float>;
using ShaderParameterGL1i = ShaderParameterValueGL<int>;
using ShaderParameterGL2f = ShaderParameterValueGL<SbVec2f>;
using ShaderParameterGL2i = ShaderParameterValueGL<SbVec2i32>;
using ShaderParameterGL3f = ShaderParameterValueGL<SbVec3f>;
using ShaderParameterGL3i = ShaderParameterValueGL<SbVec3i32>;
using ShaderParameterGL4f = ShaderParameterValueGL<SbVec4f>;
using ShaderParameterGL4i = ShaderParameterValueGL<SbVec4i32>;
using ShaderParameterGLMatrix3 = ShaderParameterValueGL<SbMatrix3>;
using ShaderParameterGLMatrix = ShaderParameterValueGL<SbMatrix>;

using ShaderParameterArrayGL1f = ShaderParameterArrayValueGL<float>;
using ShaderParameterArrayGL1i = ShaderParameterArrayValueGL<int>;
using ShaderParameterArrayGL2f = ShaderParameterArrayValueGL<SbVec2f>;
using ShaderParameterArrayGL2i = ShaderParameterArrayValueGL<SbVec2i32>;
using ShaderParameterArrayGL3f = ShaderParameterArrayValueGL<SbVec3f>;
using ShaderParameterArrayGL3i = ShaderParameterArrayValueGL<SbVec3i32>;
using ShaderParameterArrayGL4f = ShaderParameterArrayValueGL<SbVec4f>;
using ShaderParameterArrayGL4i = ShaderParameterArrayValueGL<SbVec4i32>;
using ShaderParameterArrayGLMatrix = ShaderParameterArrayValueGL<SbMatrix>;

/// The parameter class of a record.
template <typename T>
std::shared_ptr<ShaderParameterValueGL<T>> makeShaderParameterGL(const ShaderParameterProperties<T>& p)
{
    return std::make_shared<ShaderParameterValueGL<T>>(p);
}

template <typename T>
std::shared_ptr<ShaderParameterArrayValueGL<T>> makeShaderParameterGL(const ShaderParameterArrayProperties<T>& p)
{
    return std::make_shared<ShaderParameterArrayValueGL<T>>(p);
}

} // namespace renderengine
