#include "commands/BufferCommands.h"

namespace renderengine
{

void CommandCreateBuffer::set(const BufferHandle& buffer, const BufferProperties& newProperties)
{
    block = newProperties.data != nullptr ? copyToBlock(newProperties.data, newProperties.size) : DataBlock();
    handle = buffer;
    properties = newProperties;
    properties.data = block.get();
}

void CommandCreateBuffer::releaseData()
{
    block.reset();
    properties.data = nullptr;
}

std::string CommandCreateBuffer::name() const
{
    return "CreateBuffer";
}

void CommandUpdateBuffer::set(const BufferHandle& buffer, const BufferProperties& newProperties)
{
    block = newProperties.data != nullptr ? copyToBlock(newProperties.data, newProperties.size)
                                          : makeZeroedBlock(newProperties.size);
    handle = buffer;
    properties = newProperties;
    properties.data = block.get();
}

void CommandUpdateBuffer::releaseData()
{
    block.reset();
    properties.data = nullptr;
}

std::string CommandUpdateBuffer::name() const
{
    return "UpdateBuffer";
}

std::string CommandResizeBuffer::name() const
{
    return "ResizeBuffer";
}

std::string CommandMapBuffer::name() const
{
    return "MapBuffer";
}

std::string CommandUnmapBuffer::name() const
{
    return "UnmapBuffer";
}

std::string CommandCopyBuffer::name() const
{
    return "CopyBuffer";
}

std::string CommandDestroyBuffer::name() const
{
    return "DestroyBuffer";
}

} // namespace renderengine
