#pragma once

#include <memory>
#include <string>
#include <utility>

#include <renderengine/GfxStateProperties.h>
#include <renderengine/ShaderStateProperties.h>
#include <renderengine/TaskProperties.h>

#include "commands/CommandBase.h"

namespace renderengine
{

/// Runs a client's task, which it shares, on the state that the commands before it left.
struct CommandTask : CommandBase
{
    void set(const TaskProperties& properties) noexcept { task = properties; }
    void execute(RendererBase& renderer) override;

    TaskProperties task;
};

/// Applies the given state and then runs a client's task that draws.
struct CommandRenderTask : CommandTask
{
    void set(const TaskProperties& properties, std::shared_ptr<const GfxStateProperties> newGfxState,
             const ShaderStateProperties& newShaderState, bool withFixedFunctionState)
    {
        CommandTask::set(properties);
        gfxState = std::move(newGfxState);
        shaderState = newShaderState;
        fixedFunctionState = withFixedFunctionState;
    }
    void execute(RendererBase& renderer) override;

    std::shared_ptr<const GfxStateProperties> gfxState;
    ShaderStateProperties shaderState;
    /// Whether the fixed-function records of `shaderState` are applied too.
    bool fixedFunctionState = false;
};

} // namespace renderengine
