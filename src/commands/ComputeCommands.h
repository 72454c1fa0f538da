#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include <renderengine/ComputeProperties.h>
#include <renderengine/ShaderStateCoreProperties.h>
#include <renderengine/ShaderStateProperties.h>
#include <renderengine/TransformFeedbackProperties.h>

#include "commands/CommandBase.h"

namespace renderengine
{

/// Dispatches compute work with the state that it shares, at its place among the submitted commands.
struct CommandCompute : CommandBase
{
    void set(std::shared_ptr<const ShaderStateCoreProperties> newShaderState,
             const ComputeProperties& newProperties) noexcept
    {
        shaderState = std::move(newShaderState);
        properties = newProperties;
    }
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    /// May be empty, then nothing runs; the run lets go of it when the record asks for that.
    std::shared_ptr<const ShaderStateCoreProperties> shaderState;
    ComputeProperties properties;
};

/// Orders memory accesses of shaders, at its place among the submitted commands.
struct CommandMemoryBarrier : CommandBase
{
    void set(int32_t barrierBits) noexcept { barriers = barrierBits; }
    void execute(RendererBase& renderer) override;

    /// GL's barrier bits; -1 for all.
    int32_t barriers = 0;
};

/// Starts to capture vertex outputs with its copies of both records, at its place among the submitted commands.
struct CommandBeginTransformFeedback : CommandBase
{
    void set(const TransformFeedbackProperties& newProperties, const ShaderStateProperties& newShaderState)
    {
        properties = newProperties;
        shaderState = newShaderState;
    }
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    TransformFeedbackProperties properties;
    ShaderStateProperties shaderState;
};

/// Ends the capture of vertex outputs, at its place among the submitted commands.
struct CommandEndTransformFeedback : CommandBase
{
    void set() noexcept {}
    void execute(RendererBase& renderer) override;
    std::string name() const override;
};

} // namespace renderengine
