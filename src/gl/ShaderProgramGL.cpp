#include "gl/ShaderProgramGL.h"

#include "gl/ShaderBufferGL.h"

#include <spdlog/spdlog.h>

#include <atomic>

namespace renderengine
{

namespace
{

/// A name that GL writes into a buffer of its longest name's length.
std::string takeName(const std::vector<GLchar>& buffer, GLsizei length)
{
    return std::string(buffer.data(), static_cast<size_t>(length));
}

std::vector<GLchar> nameBuffer(GLint length)
{
    // One byte at least, so that there is a place to point to.
    return std::vector<GLchar>(length > 0 ? static_cast<size_t>(length) : 1);
}

/// Interface queries are GL 4.3.
bool hasInterfaceQuery()
{
    const GLEWContextStruct& table = *glbinding::t_table;
    return table.majorVersion > 4 || (table.majorVersion == 4 && table.minorVersion >= 3) ||
           table.kvr_common__GLEW_ARB_program_interface_query;
}

} // namespace

bool ShaderProgramGL::link(const std::vector<GLuint>& shaders)
{
    id = glCreateProgram();
    for (const GLuint shader : shaders)
    {
        glAttachShader(id, shader);
    }
    return reflect();
}

bool ShaderProgramGL::reflect()
{
    sendVaryings();
    glLinkProgram(id);
    if (getParameter(GL_LINK_STATUS) == GL_FALSE)
    {
        return false;
    }
    static std::atomic<uint64_t> s_linkCount{0};
    linkStamp = ++s_linkCount;
    reflectAttributes();
    reflectUniforms();
    useMergedShaderBuffersLocation = glGetUniformLocation(id, "KvrUseMergedShaderBuffers");
    pointSizeLocation = getUniformLocation("KvrPointSize");
    if (hasInterfaceQuery())
    {
        reflectBlocks(GL_SHADER_STORAGE_BLOCK, shaderStorageBlocks);
        reflectBlocks(GL_UNIFORM_BLOCK, uniformBlocks);
    }
    else
    {
        // Without the query there are no storage blocks either.
        shaderStorageBlocks.clear();
        reflectUniformBlocksWithoutInterfaceQuery();
    }
    return true;
}

void ShaderProgramGL::sendVaryings() const
{
    if (varyingNames.empty())
    {
        return;
    }
    std::vector<const GLchar*> names;
    names.reserve(varyingNames.size());
    for (const std::string& name : varyingNames)
    {
        names.push_back(name.c_str());
    }
    glTransformFeedbackVaryings(id, static_cast<GLsizei>(names.size()), names.data(), varyingBufferMode);
}

void ShaderProgramGL::reflectAttributes()
{
    attributes.clear();
    std::vector<GLchar> buffer = nameBuffer(getParameter(GL_ACTIVE_ATTRIBUTE_MAX_LENGTH));
    const GLint count = getParameter(GL_ACTIVE_ATTRIBUTES);
    for (GLint i = 0; i < count; ++i)
    {
        GLsizei length = 0;
        AttribData data;
        glGetActiveAttrib(id, static_cast<GLuint>(i), static_cast<GLsizei>(buffer.size()), &length, &data.size,
                          &data.type, buffer.data());
        const std::string name = takeName(buffer, length);
        data.location = glGetAttribLocation(id, name.c_str());
        // Built-in attributes are active but have no location.
        if (data.location != -1)
        {
            attributes.set(name, data);
        }
    }
}

void ShaderProgramGL::reflectUniforms()
{
    uniforms.clear();
    const GLint count = getParameter(GL_ACTIVE_UNIFORMS);
    if (count <= 0)
    {
        return;
    }
    std::vector<GLchar> buffer = nameBuffer(getParameter(GL_ACTIVE_UNIFORM_MAX_LENGTH));
    for (GLint i = 0; i < count; ++i)
    {
        GLsizei length = 0;
        GLint size = 0;
        GLenum type = GL_NONE;
        glGetActiveUniform(id, static_cast<GLuint>(i), static_cast<GLsizei>(buffer.size()), &length, &size, &type,
                           buffer.data());
        const std::string name = takeName(buffer, length);
        const GLint location = glGetUniformLocation(id, name.c_str());
        // Members of uniform blocks are active but have no location.
        if (location != -1)
        {
            storeUniform(name, size, location);
        }
    }
}

void ShaderProgramGL::storeUniform(const std::string& name, GLint size, GLint location)
{
    uniforms.set(name, location);
    if (size <= 0)
    {
        return;
    }
    // An array is reported by its first element.
    const std::string plainName = name.substr(0, name.rfind('['));
    uniforms.set(plainName, location);
    for (GLint i = 1; i < size; ++i)
    {
        const std::string elementName = plainName + '[' + std::to_string(i) + ']';
        const GLint computed = location + i;
        uniforms.set(elementName, computed);
        const GLint reported = glGetUniformLocation(id, elementName.c_str());
        // Arrays are sent in one call from the first location on, so the computed one stays.
        if (reported != computed)
        {
            spdlog::error("The uniform array does not have successive uniform locations ({} != {})", reported,
                          computed);
        }
    }
}

void ShaderProgramGL::reflectBlocks(GLenum programInterface, BlockMap& blocks) const
{
    blocks.clear();
    GLint count = 0;
    glGetProgramInterfaceiv(id, programInterface, GL_ACTIVE_RESOURCES, &count);
    for (GLint i = 0; i < count; ++i)
    {
        const auto index = static_cast<GLuint>(i);
        const GLenum property = GL_NAME_LENGTH;
        GLint nameLength = 0;
        glGetProgramResourceiv(id, programInterface, index, 1, &property, 1, nullptr, &nameLength);
        std::vector<GLchar> buffer = nameBuffer(nameLength);
        GLsizei length = 0;
        glGetProgramResourceName(id, programInterface, index, static_cast<GLsizei>(buffer.size()), &length,
                                 buffer.data());
        blocks.set(takeName(buffer, length), index);
    }
}

void ShaderProgramGL::reflectUniformBlocksWithoutInterfaceQuery()
{
    uniformBlocks.clear();
    const GLint count = getParameter(GL_ACTIVE_UNIFORM_BLOCKS);
    if (count <= 0)
    {
        return;
    }
    std::vector<GLchar> buffer = nameBuffer(getParameter(GL_ACTIVE_UNIFORM_BLOCK_MAX_NAME_LENGTH));
    for (GLint i = 0; i < count; ++i)
    {
        const auto index = static_cast<GLuint>(i);
        GLsizei length = 0;
        glGetActiveUniformBlockName(id, index, static_cast<GLsizei>(buffer.size()), &length, buffer.data());
        uniformBlocks.set(takeName(buffer, length), index);
    }
}

GLint ShaderProgramGL::getParameter(GLenum parameter) const
{
    GLint value = 0;
    glGetProgramiv(id, parameter, &value);
    return value;
}

bool ShaderProgramGL::setTransformFeedbackVaryings(const std::vector<std::string>& names, uint32_t separate)
{
    varyingNames = names;
    varyingBufferMode = separate != 0 ? GL_SEPARATE_ATTRIBS : GL_INTERLEAVED_ATTRIBS;
    return true;
}

void ShaderProgramGL::use(uint32_t patchVertices) const
{
    glPatchParameteri(GL_PATCH_VERTICES, static_cast<GLint>(patchVertices));
    glUseProgram(id);
}

GLint ShaderProgramGL::getUniformLocation(std::string_view name) const
{
    const GLint* location = uniforms.find(name);
    return location ? *location : -1;
}

GLint ShaderProgramGL::getAttribLocation(std::string_view name) const
{
    const AttribData* data = attributes.find(name);
    return data ? data->location : -1;
}

GLuint ShaderProgramGL::getBlockIndex(GLenum target, const std::string& name) const
{
    const GLuint* index = (target == GL_UNIFORM_BUFFER ? uniformBlocks : shaderStorageBlocks).find(name);
    return index != nullptr ? *index : GL_INVALID_INDEX;
}

void ShaderProgramGL::bindBlock(const ShaderBufferGL& buffer, GLuint bindingPoint) const
{
    bindBlock(buffer.getTarget(), buffer.findBlock(*this), bindingPoint);
}

void ShaderProgramGL::bindBlock(GLenum target, GLuint index, GLuint bindingPoint) const
{
    if (index == GL_INVALID_INDEX)
    {
        return;
    }
    if (target == GL_UNIFORM_BUFFER)
    {
        glUniformBlockBinding(id, index, bindingPoint);
    }
    else
    {
        glShaderStorageBlockBinding(id, index, bindingPoint);
    }
}

void ShaderProgramGL::getInfoLog(std::string& text) const
{
    const GLint length = getParameter(GL_INFO_LOG_LENGTH);
    if (length > 1)
    {
        text.resize(static_cast<size_t>(length));
        glGetProgramInfoLog(id, length, nullptr, text.data());
    }
}

void ShaderProgramGL::destroy()
{
    if (glIsProgram(id))
    {
        glDeleteProgram(id);
    }
    id = 0;
}

} // namespace renderengine
