// Shader objects, programs and parameters.

#include "gl/RendererGL41.h"

#include "gl/RendererGL41Find.h"

#include <kavelor/SoPreferences.h>

namespace renderengine
{

namespace
{

/// The log of a failure is always kept, that of a success only when a developer asks for it. Read at each creation, so
/// that a running program can be watched.
bool wantsInfoLog(bool success)
{
    return !success || SoPreferences::getBool("KVR_GLSL_DEBUG", false);
}

} // namespace

// Shader objects

void RendererGL41::execute(CommandCreateShaderObject& command)
{
    if (!command.handle.isValid())
    {
        return;
    }
    std::string& log = resetShaderObjectLog(command.handle);
    ShaderObjectGL& shaderObject = createResource(m_tables.shaderObjects, command.handle);
    if (wantsInfoLog(shaderObject.compile(command.properties)))
    {
        shaderObject.getInfoLog(log);
    }
}

void RendererGL41::execute(CommandDestroyShaderObject& command)
{
    releaseResource(m_tables.shaderObjects, command.handle);
}

// Shader programs

void RendererGL41::execute(CommandCreateShaderProgram& command)
{
    if (!command.handle.isValid())
    {
        return;
    }
    std::vector<GLuint> shaders;
    for (const ShaderObjectHandle& handle : command.properties.shaderObjects)
    {
        if (const ShaderObjectGL* shaderObject = find(m_tables.shaderObjects, handle))
        {
            shaders.push_back(shaderObject->getId());
        }
    }
    std::string& log = resetShaderProgramLog(command.handle);
    ShaderProgramGL& program = createResource(m_tables.shaderPrograms, command.handle);
    if (wantsInfoLog(program.link(shaders)))
    {
        program.getInfoLog(log);
    }
}

void RendererGL41::execute(CommandDestroyShaderProgram& command)
{
    // The number may come back for another program, which must not count as in use.
    if (command.handle.isValid() && command.handle == m_currentShaderState.program)
    {
        m_stateUnknown = true;
    }
    releaseResource(m_tables.shaderPrograms, command.handle);
}

// Shader parameters

template <class Record> void RendererGL41::createShaderParameterResource(CommandCreateShaderParameter<Record>& command)
{
    if (command.handle.isValid())
    {
        m_tables.shaderParameters.get(command.handle) = makeShaderParameterGL(command.properties);
    }
}

template <class Record> void RendererGL41::updateShaderParameterResource(CommandUpdateShaderParameter<Record>& command)
{
    using Parameter = typename decltype(makeShaderParameterGL(command.properties))::element_type;
    ShaderParameterGL* parameter =
        findOrReport(m_tables.shaderParameters, command.handle, "[RendererGL] Trying to update an invalid param.");
    if (parameter == nullptr)
    {
        return;
    }
    if (auto* sameType = dynamic_cast<Parameter*>(parameter))
    {
        sameType->update(command.properties);
    }
    else
    {
        m_tables.shaderParameters.get(command.handle) = makeShaderParameterGL(command.properties);
    }
}

#define SHADER_PARAMETER_OVERLOADS(RECORD)                                    \
    void RendererGL41::execute(CommandUpdateShaderParameter<RECORD>& command) \
    {                                                                         \
        updateShaderParameterResource(command);                               \
    }                                                                         \
    void RendererGL41::execute(CommandCreateShaderParameter<RECORD>& command) \
    {                                                                         \
        createShaderParameterResource(command);                               \
    }
RENDERENGINE_SHADER_PARAMETERS(SHADER_PARAMETER_OVERLOADS)
#undef SHADER_PARAMETER_OVERLOADS

void RendererGL41::execute(CommandDestroyShaderParameter& command)
{
    releaseResource(m_tables.shaderParameters, command.handle);
}

} // namespace renderengine
