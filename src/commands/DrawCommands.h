#pragma once

#include <memory>
#include <string>
#include <utility>

#include <renderengine/DrawProperties.h>
#include <renderengine/GfxStateProperties.h>
#include <renderengine/Handle.h>
#include <renderengine/ShaderStateCoreProperties.h>

#include "commands/CommandBase.h"

namespace renderengine
{

/// Draws, at its place among the submitted commands; the draw must exist when it runs.
struct CommandRender : CommandBase
{
    void set(const DrawHandle& draw) noexcept { handle = draw; }
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    DrawHandle handle;
};

/// Makes a draw with the state that it shares, before the commands submitted after it.
struct CommandCreateDraw : CommandBase
{
    void set(const DrawHandle& draw, std::shared_ptr<const GfxStateProperties> newGfxState,
             std::shared_ptr<const ShaderStateCoreProperties> newShaderState) noexcept
    {
        handle = draw;
        gfxState = std::move(newGfxState);
        shaderState = std::move(newShaderState);
    }
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    DrawHandle handle;
    std::shared_ptr<const GfxStateProperties> gfxState;
    std::shared_ptr<const ShaderStateCoreProperties> shaderState;
};

/// Gives a draw new shared state.
struct CommandUpdateDraw : CommandBase
{
    void set(const DrawHandle& draw, std::shared_ptr<const GfxStateProperties> newGfxState,
             std::shared_ptr<const ShaderStateCoreProperties> newShaderState) noexcept
    {
        handle = draw;
        gfxState = std::move(newGfxState);
        shaderState = std::move(newShaderState);
    }
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    DrawHandle handle;
    std::shared_ptr<const GfxStateProperties> gfxState;
    std::shared_ptr<const ShaderStateCoreProperties> shaderState;
};

/// Destroys a draw at the end of the frame in which it was recorded, and invalidates its own handle.
struct CommandDestroyDraw : CommandBase
{
    void set(const DrawHandle& draw) noexcept { handle = draw; }
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    DrawHandle handle;
};

/// Makes draw properties from its copy of the record.
struct CommandCreateDrawProperties : CommandBase
{
    void set(const DrawPropertiesHandle& drawProperties, const DrawProperties& newProperties)
    {
        handle = drawProperties;
        properties = newProperties;
    }
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    DrawPropertiesHandle handle;
    DrawProperties properties;
};

/// Replaces draw properties by its copy of the record.
struct CommandUpdateDrawProperties : CommandBase
{
    void set(const DrawPropertiesHandle& drawProperties, const DrawProperties& newProperties)
    {
        handle = drawProperties;
        properties = newProperties;
    }
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    DrawPropertiesHandle handle;
    DrawProperties properties;
};

/// Destroys draw properties at the end of the frame in which it was recorded, and invalidates its own handle.
struct CommandDestroyDrawProperties : CommandBase
{
    void set(const DrawPropertiesHandle& drawProperties) noexcept { handle = drawProperties; }
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    DrawPropertiesHandle handle;
};

/// Appends draw properties to the list of a draw.
struct CommandAddDrawProperties : CommandBase
{
    void set(const DrawHandle& draw, const DrawPropertiesHandle& properties) noexcept
    {
        handle = draw;
        drawProperties = properties;
    }
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    DrawHandle handle;
    DrawPropertiesHandle drawProperties;
};

/// Takes draw properties off the list of a draw.
struct CommandRemoveDrawProperties : CommandBase
{
    void set(const DrawHandle& draw, const DrawPropertiesHandle& properties) noexcept
    {
        handle = draw;
        drawProperties = properties;
    }
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    DrawHandle handle;
    DrawPropertiesHandle drawProperties;
};

/// Empties the list of draw properties of a draw.
struct CommandRemoveAllDrawProperties : CommandBase
{
    void set(const DrawHandle& draw) noexcept { handle = draw; }
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    DrawHandle handle;
};

} // namespace renderengine
