#pragma once

#include <string>

namespace renderengine
{

class RendererBase;

/// One piece of work for a renderer, with its arguments.
///
/// A command is made empty by the list that holds it and then filled by its `set`. It is never copied: lists share it,
/// so it may run several times and may outlive the list that made it, and everything that it needs is its own.
struct CommandBase
{
    CommandBase() = default;
    CommandBase(const CommandBase&) = delete;
    CommandBase& operator=(const CommandBase&) = delete;

    /// Calls the overload of `renderer.execute` for the command's own class. Runs on the thread that executes commands.
    virtual void execute(RendererBase& renderer) = 0;

    /// Frees what the command owns.
    virtual ~CommandBase() = default;

    /// The name of the command in traces.
    virtual std::string name() const;
};

} // namespace renderengine
