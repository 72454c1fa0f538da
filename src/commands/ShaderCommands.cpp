#include "commands/ShaderCommands.h"

namespace renderengine
{

std::string CommandCreateShaderObject::name() const
{
    return "CreateShaderObject";
}

std::string CommandDestroyShaderObject::name() const
{
    return "DestroyShaderObject";
}

std::string CommandCreateShaderProgram::name() const
{
    return "CreateShaderProgram";
}

std::string CommandDestroyShaderProgram::name() const
{
    return "DestroyShaderProgram";
}

std::string CommandDestroyShaderParameter::name() const
{
    return "DestroyShaderParameter";
}

} // namespace renderengine
