#pragma once

#include <cstdint>
#include <string>

#include <renderengine/Handle.h>

#include "commands/CommandBase.h"

namespace renderengine
{

/// Makes a query of a type that never changes.
struct CommandCreateQuery : CommandBase
{
    void set(const QueryHandle& query, uint32_t queryType) noexcept
    {
        handle = query;
        type = queryType;
    }
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    QueryHandle handle;
    /// The query type as the client gave it.
    uint32_t type = 0;
};

/// Starts a query, at its place among the submitted commands.
struct CommandBeginQuery : CommandBase
{
    void set(const QueryHandle& query) noexcept { handle = query; }
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    QueryHandle handle;
};

/// Ends a query, at its place among the submitted commands.
struct CommandEndQuery : CommandBase
{
    void set(const QueryHandle& query) noexcept { handle = query; }
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    QueryHandle handle;
};

/// Fetches the result of a query, which may wait for the device, and stores it for the client.
struct CommandGetQueryResult : CommandBase
{
    void set(const QueryHandle& query) noexcept { handle = query; }
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    QueryHandle handle;
};

/// Destroys a query at the end of the frame in which it was recorded, and invalidates its own handle.
struct CommandDestroyQuery : CommandBase
{
    void set(const QueryHandle& query) noexcept { handle = query; }
    void execute(RendererBase& renderer) override;
    std::string name() const override;

    QueryHandle handle;
};

} // namespace renderengine
