#include <renderengine/TaskInterface.h>

namespace renderengine
{

TaskInterface::TaskInterface() = default;
TaskInterface::TaskInterface(const TaskInterface& other) = default;
TaskInterface::TaskInterface(TaskInterface&& other) noexcept = default;
TaskInterface& TaskInterface::operator=(const TaskInterface& other) = default;
TaskInterface& TaskInterface::operator=(TaskInterface&& other) noexcept = default;

} // namespace renderengine
