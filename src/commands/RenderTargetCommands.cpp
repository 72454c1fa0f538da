#include "commands/RenderTargetCommands.h"

namespace renderengine
{

std::string CommandClearRT::name() const
{
    return "ClearRT";
}

std::string CommandBlit::name() const
{
    return "Blit";
}

std::string CommandCreateRenderTarget::name() const
{
    return "CreateRenderTarget";
}

std::string CommandUpdateRenderTarget::name() const
{
    return "UpdateRenderTarget";
}

std::string CommandDestroyRenderTarget::name() const
{
    return "DestroyRenderTarget";
}

std::string CommandCreateViewport::name() const
{
    return "CreateViewport";
}

std::string CommandUpdateViewport::name() const
{
    return "UpdateViewport";
}

std::string CommandDestroyViewport::name() const
{
    return "DestroyViewport";
}

} // namespace renderengine
