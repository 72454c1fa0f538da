#pragma once

#include "CallOutput.h"

#include <glbinding/ShaderReflection.h>

#include <map>
#include <optional>
#include <string>

namespace renderengine::glbinding
{
/// The shaders and programs of a recording, and what they tell about themselves.
class ProgramStore
{
public:
    /// Carries out the calls on shaders and programs; nothing for all other calls.
    std::optional<std::uint64_t> call(FunctionIndex function, const CallValue* values);
    /// Takes up a shader that was just made.
    void addShader(GLuint shader, GLenum type) { m_shaders[shader].type = type; }
    /// A compile or link that fails.
    void compile(GLuint shader, bool succeeds) { m_shaders[shader].compiled = succeeds; }
    void link(GLuint program, bool succeeds) { m_programs[program].linked = succeeds; }

    void setReflection(const ShaderReflection& reflection) { m_reflection = reflection; }
    void setReflection(GLuint program, const ShaderReflection& reflection) { m_reflections[program] = reflection; }
    void setInfoLog(const std::string& text) { m_infoLog = text; }
    std::string source(GLuint shader) const;

private:
    using Variables = std::vector<ShaderVariable>;

    struct Shader
    {
        GLenum type = 0;
        std::string source;
        bool compiled = false;
    };

    struct Program
    {
        bool linked = false;
        std::vector<GLuint> shaders;
        // Places that the program chose for its attributes.
        std::map<std::string, GLint> attributes;
    };

    std::optional<std::uint64_t> query(FunctionIndex function, const CallValue* values);
    std::optional<std::uint64_t> queryBlocks(FunctionIndex function, const CallValue* values);
    std::optional<std::uint64_t> queryResources(FunctionIndex function, const CallValue* values);
    const ShaderReflection& reflectionOf(GLuint program) const;
    const Variables& variablesOf(GLuint program, std::int64_t programInterface) const;
    GLint locationAt(GLuint program, const Variables& variables, std::size_t index) const;
    GLint locationOf(GLuint program, const Variables& variables, const std::string& name) const;
    void setSource(GLuint shader, const CallValue* values);
    Number shaderParameter(GLuint shader, std::int64_t name) const;
    Number programParameter(GLuint program, std::int64_t name) const;
    Number resourceProperty(GLuint program, const Variables& variables, std::size_t index, GLenum property) const;
    void getActive(const Variables& variables, const CallValue* values) const;
    void getResourceProperties(const CallValue* values) const;

    std::map<GLuint, Shader> m_shaders;
    std::map<GLuint, Program> m_programs;
    ShaderReflection m_reflection;
    std::map<GLuint, ShaderReflection> m_reflections;
    std::string m_infoLog;
};
} // namespace renderengine::glbinding
