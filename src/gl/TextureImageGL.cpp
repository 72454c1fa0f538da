#include "gl/TextureImageGL.h"

#include "gl/DrawTablesGL.h"
#include "gl/ShaderProgramGL.h"
#include "gl/TextureGL.h"

namespace renderengine
{

namespace
{

ShaderParameterProperties<int> unitParameter(const TextureImageProperties& properties)
{
    ShaderParameterProperties<int> parameter;
    parameter.name = properties.name;
    parameter.value = properties.unit;
    return parameter;
}

} // namespace

TextureImageGL::TextureImageGL(const TextureImageProperties& properties)
    : m_properties(properties), m_parameter(unitParameter(properties))
{
}

void TextureImageGL::update(const TextureImageProperties& properties)
{
    m_properties = properties;
    m_parameter.update(unitParameter(properties));
    m_bound = false;
}

void TextureImageGL::bind(const TextureGL* texture)
{
    const GLuint name = texture != nullptr ? texture->getId() : 0;
    const GLenum format = texture != nullptr ? texture->getInternalFormat() : GLenum{GL_R8};
    glBindImageTexture(m_properties.unit, name, m_properties.level,
                       static_cast<GLboolean>(m_properties.layered != 0 ? GL_TRUE : GL_FALSE), m_properties.layer,
                       *gltables::imageAccesses.find(m_properties.access), format);
    m_bound = true;
}

void TextureImageGL::applyUnit(const ShaderProgramGL& program) const
{
    const GLint location = program.getUniformLocation(m_parameter.getName());
    if (location != -1)
    {
        m_parameter.apply(location);
    }
}

} // namespace renderengine
