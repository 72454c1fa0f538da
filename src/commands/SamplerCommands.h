#pragma once

#include <string>

#include <renderengine/Handle.h>
#include <renderengine/SamplerProperties.h>

#include "commands/CommandBase.h"

namespace renderengine
{

/// Makes a sampler from its copy of the record.
struct CommandCreateSampler : CommandBase
{
    void set(const SamplerHandle& sampler, const SamplerProperties& newProperties)
    {
        handle = sampler;
        properties = newProperties;
    }
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    SamplerHandle handle;
    SamplerProperties properties;
};

/// Gives a sampler a new description, of which it holds a copy.
struct CommandUpdateSampler : CommandBase
{
    void set(const SamplerHandle& sampler, const SamplerProperties& newProperties)
    {
        handle = sampler;
        properties = newProperties;
    }
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    SamplerHandle handle;
    SamplerProperties properties;
};

/// Destroys a sampler at the end of the frame in which it was recorded, and invalidates its own handle.
struct CommandDestroySampler : CommandBase
{
    void set(const SamplerHandle& sampler) noexcept { handle = sampler; }
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    SamplerHandle handle;
};

} // namespace renderengine
