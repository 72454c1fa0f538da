#pragma once

#include <string>

#include <renderengine/BlitProperties.h>
#include <renderengine/ClearTargetProperties.h>
#include <renderengine/Handle.h>
#include <renderengine/RenderTargetProperties.h>
#include <renderengine/ViewportProperties.h>

#include "commands/CommandBase.h"

namespace renderengine
{

/// Clears attachments of a render target, at its place among the submitted commands.
struct CommandClearRT : CommandBase
{
    void set(const RenderTargetHandle& renderTarget, const ClearTargetProperties& newProperties)
    {
        handle = renderTarget;
        properties = newProperties;
    }
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    RenderTargetHandle handle;
    ClearTargetProperties properties;
};

/// Copies a rectangle of pixels between two render targets, at its place among the submitted commands.
struct CommandBlit : CommandBase
{
    void set(const RenderTargetHandle& sourceTarget, const RenderTargetHandle& destinationTarget,
             const BlitProperties& newProperties) noexcept
    {
        source = sourceTarget;
        destination = destinationTarget;
        properties = newProperties;
    }
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    RenderTargetHandle source;
    RenderTargetHandle destination;
    BlitProperties properties;
};

/// Makes a render target from its copy of the record.
struct CommandCreateRenderTarget : CommandBase
{
    void set(const RenderTargetHandle& renderTarget, const RenderTargetProperties& newProperties)
    {
        handle = renderTarget;
        properties = newProperties;
    }
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    RenderTargetHandle handle;
    RenderTargetProperties properties;
};

/// Gives a render target new attachments, of which it holds a copy.
struct CommandUpdateRenderTarget : CommandBase
{
    void set(const RenderTargetHandle& renderTarget, const RenderTargetProperties& newProperties)
    {
        handle = renderTarget;
        properties = newProperties;
    }
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    RenderTargetHandle handle;
    RenderTargetProperties properties;
};

/// Destroys a render target at the end of the frame in which it was recorded, and invalidates its own handle.
struct CommandDestroyRenderTarget : CommandBase
{
    void set(const RenderTargetHandle& renderTarget) noexcept { handle = renderTarget; }
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    RenderTargetHandle handle;
};

/// Makes a viewport from its copy of the record.
struct CommandCreateViewport : CommandBase
{
    void set(const ViewportHandle& viewport, const ViewportProperties& newProperties)
    {
        handle = viewport;
        properties = newProperties;
    }
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    ViewportHandle handle;
    ViewportProperties properties;
};

/// Gives a viewport a new description, of which it holds a copy.
struct CommandUpdateViewport : CommandBase
{
    void set(const ViewportHandle& viewport, const ViewportProperties& newProperties)
    {
        handle = viewport;
        properties = newProperties;
    }
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    ViewportHandle handle;
    ViewportProperties properties;
};

/// Destroys a viewport at the end of the frame in which it was recorded, and invalidates its own handle.
struct CommandDestroyViewport : CommandBase
{
    void set(const ViewportHandle& viewport) noexcept { handle = viewport; }
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    ViewportHandle handle;
};

} // namespace renderengine
