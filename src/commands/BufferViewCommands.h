#pragma once

#include <string>

#include <renderengine/Handle.h>
#include <renderengine/IndexBufferProperties.h>
#include <renderengine/ShaderBufferProperties.h>
#include <renderengine/VertexBufferProperties.h>

#include "commands/CommandBase.h"

namespace renderengine
{

/// Makes a vertex buffer ahead of the next frame from its copy of the record.
struct CommandCreateVertexBuffer : CommandBase
{
    void set(const VertexBufferHandle& vertexBuffer, const VertexBufferProperties& newProperties)
    {
        handle = vertexBuffer;
        properties = newProperties;
    }
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    VertexBufferHandle handle;
    VertexBufferProperties properties;
};

/// Gives a vertex buffer a new description, of which it holds a copy.
struct CommandUpdateVertexBuffer : CommandBase
{
    void set(const VertexBufferHandle& vertexBuffer, const VertexBufferProperties& newProperties)
    {
        handle = vertexBuffer;
        properties = newProperties;
    }
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    VertexBufferHandle handle;
    VertexBufferProperties properties;
};

/// Destroys a vertex buffer at the end of the frame in which it was recorded, and invalidates its own handle.
struct CommandDestroyVertexBuffer : CommandBase
{
    void set(const VertexBufferHandle& vertexBuffer) noexcept { handle = vertexBuffer; }
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    VertexBufferHandle handle;
};

/// Makes an index buffer ahead of the next frame from its copy of the record.
struct CommandCreateIndexBuffer : CommandBase
{
    void set(const IndexBufferHandle& indexBuffer, const IndexBufferProperties& newProperties)
    {
        handle = indexBuffer;
        properties = newProperties;
    }
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    IndexBufferHandle handle;
    IndexBufferProperties properties;
};

/// Gives an index buffer a new description, of which it holds a copy.
struct CommandUpdateIndexBuffer : CommandBase
{
    void set(const IndexBufferHandle& indexBuffer, const IndexBufferProperties& newProperties)
    {
        handle = indexBuffer;
        properties = newProperties;
    }
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    IndexBufferHandle handle;
    IndexBufferProperties properties;
};

/// Destroys an index buffer at the end of the frame in which it was recorded, and invalidates its own handle.
struct CommandDestroyIndexBuffer : CommandBase
{
    void set(const IndexBufferHandle& indexBuffer) noexcept { handle = indexBuffer; }
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    IndexBufferHandle handle;
};

/// Makes a shader buffer ahead of the next frame from its copy of the record.
struct CommandCreateShaderBuffer : CommandBase
{
    void set(const ShaderBufferHandle& shaderBuffer, const ShaderBufferProperties& newProperties)
    {
        handle = shaderBuffer;
        properties = newProperties;
    }
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    ShaderBufferHandle handle;
    ShaderBufferProperties properties;
};

/// Gives a shader buffer a new description, of which it holds a copy.
struct CommandUpdateShaderBuffer : CommandBase
{
    void set(const ShaderBufferHandle& shaderBuffer, const ShaderBufferProperties& newProperties)
    {
        handle = shaderBuffer;
        properties = newProperties;
    }
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    ShaderBufferHandle handle;
    ShaderBufferProperties properties;
};

/// Destroys a shader buffer at the end of the frame in which it was recorded, and invalidates its own handle.
struct CommandDestroyShaderBuffer : CommandBase
{
    void set(const ShaderBufferHandle& shaderBuffer) noexcept { handle = shaderBuffer; }
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    ShaderBufferHandle handle;
};

} // namespace renderengine
