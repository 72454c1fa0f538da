#include "commands/DrawCommands.h"

namespace renderengine
{

std::string CommandRender::name() const
{
    return "Render";
}

std::string CommandCreateDraw::name() const
{
    return "CreateDraw";
}

std::string CommandUpdateDraw::name() const
{
    return "UpdateDraw";
}

std::string CommandDestroyDraw::name() const
{
    return "DestroyDraw";
}

std::string CommandCreateDrawProperties::name() const
{
    return "CreateDrawProperties";
}

std::string CommandUpdateDrawProperties::name() const
{
    return "UpdateDrawProperties";
}

std::string CommandDestroyDrawProperties::name() const
{
    return "DestroyDrawProperties";
}

std::string CommandAddDrawProperties::name() const
{
    return "CommandAddDrawProperties";
}

std::string CommandRemoveDrawProperties::name() const
{
    return "CommandRemoveDrawProperties";
}

std::string CommandRemoveAllDrawProperties::name() const
{
    return "CommandRemoveAllDrawProperties";
}

} // namespace renderengine
