#pragma once

#include <memory>

#include <renderengine/TaskInterface.h>

namespace renderengine
{

/// Carries a client's task into a command.
struct TaskProperties
{
    bool operator==(const TaskProperties& other) const { return task == other.task; }
    bool operator!=(const TaskProperties& other) const { return !(*this == other); }

    /// The task; shared with every command that runs it. It must not be empty when the command runs.
    std::shared_ptr<TaskInterface> task;
};

} // namespace renderengine
