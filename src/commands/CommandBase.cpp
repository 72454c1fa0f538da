#include "commands/CommandBase.h"

namespace renderengine
{

std::string CommandBase::name() const
{
    return "CommandBase";
}

} // namespace renderengine
