#pragma once

#include <string>

#include "commands/CommandBase.h"

namespace renderengine
{

/// Opens a named group in the trace of a graphics debugger, and owns the text.
struct CommandPushDebugMarker : CommandBase
{
    void set(const std::string& markerText) { text = markerText; }
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    std::string text;
};

/// Closes the group that the last marker opened.
struct CommandPopDebugMarker : CommandBase
{
    void set() noexcept {}
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    /// Always empty.
    std::string text;
};

} // namespace renderengine
