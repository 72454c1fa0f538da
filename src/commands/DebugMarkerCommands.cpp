#include "commands/DebugMarkerCommands.h"

namespace renderengine
{

std::string CommandPushDebugMarker::name() const
{
    return "PushDebugMarker";
}

std::string CommandPopDebugMarker::name() const
{
    return "PopDebugMarker";
}

} // namespace renderengine
