#include "commands/BufferViewCommands.h"

namespace renderengine
{

std::string CommandCreateVertexBuffer::name() const
{
    return "CreateVertexBuffer";
}

std::string CommandUpdateVertexBuffer::name() const
{
    return "UpdateVertexBuffer";
}

std::string CommandDestroyVertexBuffer::name() const
{
    return "DestroyVertexBuffer";
}

std::string CommandCreateIndexBuffer::name() const
{
    return "CreateIndexBuffer";
}

std::string CommandUpdateIndexBuffer::name() const
{
    return "UpdateIndexBuffer";
}

std::string CommandDestroyIndexBuffer::name() const
{
    return "DestroyIndexBuffer";
}

std::string CommandCreateShaderBuffer::name() const
{
    return "CreateShadermBuffer";
}

std::string CommandUpdateShaderBuffer::name() const
{
    return "UpdateShaderBuffer";
}

std::string CommandDestroyShaderBuffer::name() const
{
    return "DestroyShaderBuffer";
}

} // namespace renderengine
