#include "commands/ComputeCommands.h"

namespace renderengine
{

std::string CommandCompute::name() const
{
    return "Compute";
}

std::string CommandBeginTransformFeedback::name() const
{
    return "BeginTransformFeedback";
}

std::string CommandEndTransformFeedback::name() const
{
    return "EndTransformFeedback";
}

} // namespace renderengine
