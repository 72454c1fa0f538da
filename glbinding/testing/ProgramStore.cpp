#include "ProgramStore.h"

#include <glbinding/GLEnums.h>

#include <algorithm>

namespace renderengine::glbinding
{
namespace
{
using Variables = std::vector<ShaderVariable>;

GLuint nameAt(const CallValue* values, std::size_t index)
{
    return static_cast<GLuint>(values[index].integer);
}

std::size_t indexAt(const CallValue* values, std::size_t index)
{
    return static_cast<std::size_t>(values[index].integer);
}

// Lengths that GL tells count the closing null, and are 0 for no text at all.
std::int64_t lengthOf(const std::string& text)
{
    return text.empty() ? 0 : static_cast<std::int64_t>(text.size()) + 1;
}

std::int64_t longestName(const Variables& variables)
{
    std::int64_t longest = 0;
    for (const ShaderVariable& variable : variables)
    {
        longest = std::max(longest, lengthOf(variable.name));
    }
    return longest;
}

std::uint64_t indexOf(const Variables& variables, const std::string& name)
{
    for (std::size_t index = 0; index < variables.size(); ++index)
    {
        if (variables[index].name == name || variables[index].name == name + "[0]")
        {
            return index;
        }
    }
    return GL_INVALID_INDEX;
}

std::string baseName(const std::string& name)
{
    const std::size_t bracket = name.rfind("[0]");
    return bracket != std::string::npos && bracket + 3 == name.size() ? name.substr(0, bracket) : name;
}

// The element that `name` means of the variable, or -1 when it means another one.
GLint elementOf(const ShaderVariable& variable, const std::string& name)
{
    const std::string base = baseName(variable.name);
    if (name == variable.name || name == base)
    {
        return 0;
    }
    for (GLint element = 0; element < variable.size; ++element)
    {
        if (name == base + '[' + std::to_string(element) + ']')
        {
            return element;
        }
    }
    return -1;
}

// -1 as the unsigned result of a call that returns GLint.
std::uint64_t fromLocation(GLint location)
{
    return static_cast<std::uint64_t>(static_cast<std::int64_t>(location));
}
} // namespace

const ShaderReflection& ProgramStore::reflectionOf(GLuint program) const
{
    const auto found = m_reflections.find(program);
    return found != m_reflections.end() ? found->second : m_reflection;
}

const ProgramStore::Variables& ProgramStore::variablesOf(GLuint program, std::int64_t programInterface) const
{
    static const Variables s_none;
    const ShaderReflection& reflection = reflectionOf(program);
    switch (programInterface)
    {
    case GL_PROGRAM_INPUT:
        return reflection.attributes;
    case GL_UNIFORM:
        return reflection.uniforms;
    case GL_UNIFORM_BLOCK:
        return reflection.uniformBlocks;
    case GL_SHADER_STORAGE_BLOCK:
        return reflection.shaderStorageBlocks;
    default:
        return s_none;
    }
}

GLint ProgramStore::locationAt(GLuint program, const Variables& variables, std::size_t index) const
{
    if (const auto found = m_programs.find(program); found != m_programs.end())
    {
        const auto bound = found->second.attributes.find(variables[index].name);
        if (&variables == &reflectionOf(program).attributes && bound != found->second.attributes.end())
        {
            return bound->second;
        }
    }
    if (variables[index].location != ShaderVariable::automaticLocation)
    {
        return std::max(variables[index].location, -1);
    }
    GLint location = 0;
    for (std::size_t before = 0; before < index; ++before)
    {
        const bool counts = variables[before].location == ShaderVariable::automaticLocation;
        location += counts ? variables[before].size : 0;
    }
    return location;
}

GLint ProgramStore::locationOf(GLuint program, const Variables& variables, const std::string& name) const
{
    for (std::size_t index = 0; index < variables.size(); ++index)
    {
        const GLint element = elementOf(variables[index], name);
        const GLint location = element >= 0 ? locationAt(program, variables, index) : -1;
        if (location >= 0)
        {
            return location + element;
        }
    }
    return -1;
}

void ProgramStore::setSource(GLuint shader, const CallValue* values)
{
    const auto* strings = static_cast<const GLchar* const*>(values[2].pointer);
    const auto* lengths = static_cast<const GLint*>(values[3].pointer);
    std::string& source = m_shaders[shader].source;
    source.clear();
    for (std::int64_t index = 0; index < values[1].integer; ++index)
    {
        if (lengths != nullptr && lengths[index] >= 0)
        {
            source.append(strings[index], static_cast<std::size_t>(lengths[index]));
            continue;
        }
        source += strings[index];
    }
}

std::string ProgramStore::source(GLuint shader) const
{
    const auto found = m_shaders.find(shader);
    return found != m_shaders.end() ? found->second.source : std::string();
}

std::optional<std::uint64_t> ProgramStore::call(FunctionIndex function, const CallValue* values)
{
    switch (function)
    {
    case FunctionIndex::ShaderSource:
        setSource(nameAt(values, 0), values);
        return 0;
    case FunctionIndex::CompileShader:
        compile(nameAt(values, 0), true);
        return 0;
    case FunctionIndex::LinkProgram:
        link(nameAt(values, 0), true);
        return 0;
    case FunctionIndex::AttachShader:
        m_programs[nameAt(values, 0)].shaders.push_back(nameAt(values, 1));
        return 0;
    case FunctionIndex::DetachShader:
    {
        std::vector<GLuint>& shaders = m_programs[nameAt(values, 0)].shaders;
        shaders.erase(std::remove(shaders.begin(), shaders.end(), nameAt(values, 1)), shaders.end());
        return 0;
    }
    case FunctionIndex::BindAttribLocation:
        m_programs[nameAt(values, 0)].attributes[static_cast<const GLchar*>(values[2].pointer)] =
            static_cast<GLint>(values[1].integer);
        return 0;
    default:
        break;
    }
    for (const auto part : {&ProgramStore::query, &ProgramStore::queryBlocks, &ProgramStore::queryResources})
    {
        if (const std::optional<std::uint64_t> result = (this->*part)(function, values))
        {
            return result;
        }
    }
    return std::nullopt;
}

std::optional<std::uint64_t> ProgramStore::query(FunctionIndex function, const CallValue* values)
{
    const GLuint name = nameAt(values, 0);
    switch (function)
    {
    case FunctionIndex::GetShaderiv:
        writeInt(values[2], shaderParameter(name, values[1].integer).integer);
        return 0;
    case FunctionIndex::GetProgramiv:
        writeInt(values[2], programParameter(name, values[1].integer).integer);
        return 0;
    case FunctionIndex::GetShaderInfoLog:
    case FunctionIndex::GetProgramInfoLog:
        writeText(m_infoLog, values[1], values[2], values[3]);
        return 0;
    case FunctionIndex::GetShaderSource:
        writeText(source(name), values[1], values[2], values[3]);
        return 0;
    case FunctionIndex::GetAttribLocation:
        return fromLocation(
            locationOf(name, reflectionOf(name).attributes, static_cast<const char*>(values[1].pointer)));
    case FunctionIndex::GetUniformLocation:
        return fromLocation(locationOf(name, reflectionOf(name).uniforms, static_cast<const char*>(values[1].pointer)));
    case FunctionIndex::GetActiveAttrib:
        getActive(reflectionOf(name).attributes, values);
        return 0;
    case FunctionIndex::GetActiveUniform:
        getActive(reflectionOf(name).uniforms, values);
        return 0;
    default:
        return std::nullopt;
    }
}

std::optional<std::uint64_t> ProgramStore::queryBlocks(FunctionIndex function, const CallValue* values)
{
    const Variables& blocks = reflectionOf(nameAt(values, 0)).uniformBlocks;
    switch (function)
    {
    case FunctionIndex::GetUniformBlockIndex:
        return indexOf(blocks, static_cast<const char*>(values[1].pointer));
    case FunctionIndex::GetActiveUniformBlockName:
    {
        const std::size_t index = indexAt(values, 1);
        writeText(index < blocks.size() ? blocks[index].name : std::string(), values[2], values[3], values[4]);
        return 0;
    }
    case FunctionIndex::GetActiveUniformBlockiv:
    {
        const std::size_t index = indexAt(values, 1);
        if (index >= blocks.size())
        {
            writeInt(values[3], 0);
            return 0;
        }
        const ShaderVariable& block = blocks[index];
        const std::int64_t name = values[2].integer;
        writeInt(values[3], name == GL_UNIFORM_BLOCK_BINDING       ? block.binding
                            : name == GL_UNIFORM_BLOCK_DATA_SIZE   ? block.size
                            : name == GL_UNIFORM_BLOCK_NAME_LENGTH ? lengthOf(block.name)
                                                                   : 0);
        return 0;
    }
    default:
        return std::nullopt;
    }
}

std::optional<std::uint64_t> ProgramStore::queryResources(FunctionIndex function, const CallValue* values)
{
    if (function == FunctionIndex::GetProgramResourceiv)
    {
        getResourceProperties(values);
        return 0;
    }
    const bool isResource =
        function == FunctionIndex::GetProgramInterfaceiv || function == FunctionIndex::GetProgramResourceIndex ||
        function == FunctionIndex::GetProgramResourceLocation || function == FunctionIndex::GetProgramResourceName;
    if (!isResource)
    {
        return std::nullopt;
    }
    const GLuint program = nameAt(values, 0);
    const Variables& variables = variablesOf(program, values[1].integer);
    switch (function)
    {
    case FunctionIndex::GetProgramInterfaceiv:
        writeInt(values[3], values[2].integer == GL_ACTIVE_RESOURCES  ? static_cast<std::int64_t>(variables.size())
                            : values[2].integer == GL_MAX_NAME_LENGTH ? longestName(variables)
                                                                      : 0);
        return 0;
    case FunctionIndex::GetProgramResourceIndex:
        return indexOf(variables, static_cast<const char*>(values[2].pointer));
    case FunctionIndex::GetProgramResourceLocation:
        return fromLocation(locationOf(program, variables, static_cast<const char*>(values[2].pointer)));
    default:
    {
        const std::size_t index = indexAt(values, 2);
        writeText(index < variables.size() ? variables[index].name : std::string(), values[3], values[4], values[5]);
        return 0;
    }
    }
}

Number ProgramStore::shaderParameter(GLuint shader, std::int64_t name) const
{
    const auto found = m_shaders.find(shader);
    const Shader known = found != m_shaders.end() ? found->second : Shader{};
    switch (name)
    {
    case GL_COMPILE_STATUS:
        return known.compiled ? 1 : 0;
    case GL_COMPLETION_STATUS_ARB:
        return 1;
    case GL_SHADER_TYPE:
        return known.type;
    case GL_SHADER_SOURCE_LENGTH:
        return lengthOf(known.source);
    case GL_INFO_LOG_LENGTH:
        return lengthOf(m_infoLog);
    default:
        return 0;
    }
}

Number ProgramStore::programParameter(GLuint program, std::int64_t name) const
{
    const auto found = m_programs.find(program);
    const Program known = found != m_programs.end() ? found->second : Program{};
    const ShaderReflection& reflection = reflectionOf(program);
    switch (name)
    {
    case GL_LINK_STATUS:
        return known.linked ? 1 : 0;
    case GL_COMPLETION_STATUS_ARB:
    case GL_VALIDATE_STATUS:
        return 1;
    case GL_ATTACHED_SHADERS:
        return static_cast<std::int64_t>(known.shaders.size());
    case GL_INFO_LOG_LENGTH:
        return lengthOf(m_infoLog);
    case GL_ACTIVE_ATTRIBUTES:
        return static_cast<std::int64_t>(reflection.attributes.size());
    case GL_ACTIVE_ATTRIBUTE_MAX_LENGTH:
        return longestName(reflection.attributes);
    case GL_ACTIVE_UNIFORMS:
        return static_cast<std::int64_t>(reflection.uniforms.size());
    case GL_ACTIVE_UNIFORM_MAX_LENGTH:
        return longestName(reflection.uniforms);
    case GL_ACTIVE_UNIFORM_BLOCKS:
        return static_cast<std::int64_t>(reflection.uniformBlocks.size());
    case GL_ACTIVE_UNIFORM_BLOCK_MAX_NAME_LENGTH:
        return longestName(reflection.uniformBlocks);
    default:
        return 0;
    }
}

void ProgramStore::getActive(const Variables& variables, const CallValue* values) const
{
    // (program, index, capacity, length, size, type, name)
    const std::size_t index = indexAt(values, 1);
    const ShaderVariable variable = index < variables.size() ? variables[index] : ShaderVariable{};
    writeInt(values[4], variable.size);
    writeInt(values[5], variable.type);
    writeText(variable.name, values[2], values[3], values[6]);
}

Number ProgramStore::resourceProperty(GLuint program, const Variables& variables, std::size_t index,
                                      GLenum property) const
{
    const ShaderVariable& variable = variables[index];
    switch (property)
    {
    case GL_NAME_LENGTH:
        return lengthOf(variable.name);
    case GL_TYPE:
        return variable.type;
    case GL_ARRAY_SIZE:
    case GL_BUFFER_DATA_SIZE:
        return variable.size;
    case GL_BUFFER_BINDING:
        return variable.binding;
    case GL_LOCATION:
        return locationAt(program, variables, index);
    case GL_BLOCK_INDEX:
        return -1;
    default:
        return 0;
    }
}

void ProgramStore::getResourceProperties(const CallValue* values) const
{
    // (program, interface, index, propertyCount, properties, capacity, length, numbers)
    const GLuint program = nameAt(values, 0);
    const Variables& variables = variablesOf(program, values[1].integer);
    const std::size_t index = indexAt(values, 2);
    Numbers numbers;
    const std::int64_t count = std::min(values[3].integer, values[5].integer);
    for (std::int64_t place = 0; place < count && index < variables.size(); ++place)
    {
        const GLenum property = static_cast<const GLenum*>(values[4].pointer)[place];
        numbers.push_back(resourceProperty(program, variables, index, property));
    }
    writeInt(values[6], static_cast<std::int64_t>(numbers.size()));
    writeNumbers(values[7].pointer, ValueKind::Int32, numbers);
}
} // namespace renderengine::glbinding
