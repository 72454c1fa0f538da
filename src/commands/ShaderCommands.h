#pragma once

#include <string>

#include <kavelor/SbMatrix.h>
#include <kavelor/SbVec.h>

#include <renderengine/Handle.h>
#include <renderengine/ShaderObjectProperties.h>
#include <renderengine/ShaderParameterArrayProperties.h>
#include <renderengine/ShaderParameterProperties.h>
#include <renderengine/ShaderProgramProperties.h>

#include "commands/CommandBase.h"

namespace renderengine
{

/// Compiles a shader stage from its copy of the source, while the client waits.
struct CommandCreateShaderObject : CommandBase
{
    void set(const ShaderObjectHandle& shaderObject, const ShaderObjectProperties& newProperties)
    {
        handle = shaderObject;
        properties = newProperties;
    }
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    ShaderObjectHandle handle;
    ShaderObjectProperties properties;
};

/// Destroys a shader stage at the end of the frame in which it was recorded, and invalidates its own handle.
struct CommandDestroyShaderObject : CommandBase
{
    void set(const ShaderObjectHandle& shaderObject) noexcept { handle = shaderObject; }
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    ShaderObjectHandle handle;
};

/// Links a program from its copy of the list of stages, while the client waits.
struct CommandCreateShaderProgram : CommandBase
{
    void set(const ShaderProgramHandle& shaderProgram, const ShaderProgramProperties& newProperties)
    {
        handle = shaderProgram;
        properties = newProperties;
    }
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    ShaderProgramHandle handle;
    ShaderProgramProperties properties;
};

/// Destroys a program at the end of the frame in which it was recorded, and invalidates its own handle.
struct CommandDestroyShaderProgram : CommandBase
{
    void set(const ShaderProgramHandle& shaderProgram) noexcept { handle = shaderProgram; }
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    ShaderProgramHandle handle;
};

/// Destroys a shader parameter at the end of the frame in which it was recorded, and invalidates its own handle.
struct CommandDestroyShaderParameter : CommandBase
{
    void set(const ShaderParameterHandle& shaderParameter) noexcept { handle = shaderParameter; }
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    ShaderParameterHandle handle;
};

/// Gives a shader parameter a new value, of which it holds a copy.
template <class Properties> struct CommandUpdateShaderParameter : CommandBase
{
    void set(const ShaderParameterHandle& shaderParameter, const Properties& newProperties)
    {
        handle = shaderParameter;
        properties = newProperties;
    }
    void execute(RendererBase& renderer) override;
    std::string name() const override { return "UpdateShaderParameter"; }

    ShaderParameterHandle handle;
    Properties properties;
};

/// Makes a shader parameter of the type of its record, of which it holds a copy.
template <class Properties> struct CommandCreateShaderParameter : CommandBase
{
    void set(const ShaderParameterHandle& shaderParameter, const Properties& newProperties)
    {
        handle = shaderParameter;
        properties = newProperties;
    }
    void execute(RendererBase& renderer) override;
    std::string name() const override { return "CreateShaderParameter"; }

    ShaderParameterHandle handle;
    Properties properties;
};

} // namespace renderengine
