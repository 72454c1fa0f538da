#include "commands/QueryCommands.h"

namespace renderengine
{

std::string CommandCreateQuery::name() const
{
    return "CreateQuery";
}

std::string CommandBeginQuery::name() const
{
    return "BeginQuery";
}

std::string CommandEndQuery::name() const
{
    return "EndQuery";
}

std::string CommandGetQueryResult::name() const
{
    return "GetQueryResult";
}

std::string CommandDestroyQuery::name() const
{
    return "DestroyQuery";
}

} // namespace renderengine
