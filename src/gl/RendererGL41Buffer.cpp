// Buffers and the views on them.

#include "gl/RendererGL41.h"

#include "gl/RendererGL41Find.h"

namespace renderengine
{

// Buffers

void RendererGL41::execute(CommandCreateBuffer& command)
{
    if (command.handle.isValid())
    {
        createResource(m_tables.buffers, command.handle).create(command.properties);
        command.releaseData();
    }
}

void RendererGL41::execute(CommandUpdateBuffer& command)
{
    if (BufferGL* buffer =
            findOrReport(m_tables.buffers, command.handle, "[RendererGL] Trying to update an invalid buffer."))
    {
        // A list that a task's exception has interrupted runs again, and this command has given its data away by then.
        if (command.properties.data != nullptr || command.properties.size == 0)
        {
            buffer->update(command.properties);
            command.releaseData();
        }
    }
}

void RendererGL41::execute(CommandResizeBuffer& command)
{
    if (BufferGL* buffer =
            findOrReport(m_tables.buffers, command.handle, "[RendererGL] Trying to resize an invalid buffer."))
    {
        buffer->resize(command.size);
    }
}

void RendererGL41::execute(CommandMapBuffer& command)
{
    if (BufferGL* buffer =
            findOrReport(m_tables.buffers, command.handle, "[RendererGL] Trying to map an invalid buffer."))
    {
        buffer->map(command.offset, command.length, command.access);
    }
}

void RendererGL41::execute(CommandUnmapBuffer& command)
{
    if (BufferGL* buffer =
            findOrReport(m_tables.buffers, command.handle, "[RendererGL] Trying to unmap an invalid buffer."))
    {
        buffer->unmap();
    }
}

void RendererGL41::execute(CommandCopyBuffer& command)
{
    const BufferGL* source = find(m_tables.buffers, command.source);
    const BufferGL* destination = find(m_tables.buffers, command.destination);
    if (source == nullptr || destination == nullptr)
    {
        spdlog::error("[RendererGL] Trying to copy data between invalid buffers.");
        return;
    }
    source->copy(*destination, command.sourceOffset, command.destinationOffset, command.length);
}

void RendererGL41::execute(CommandDestroyBuffer& command)
{
    destroyResource(m_tables.buffers, command.handle, "[RendererGL] Trying to destroy an invalid buffer.");
}

void* RendererGL41::getMappedBufferPointer(const BufferHandle& handle)
{
    const BufferGL* buffer = find(m_tables.buffers, handle);
    return buffer != nullptr ? buffer->getMappedPointer() : nullptr;
}

// Vertex buffers

void RendererGL41::execute(CommandCreateVertexBuffer& command)
{
    createView(m_tables.vertexBuffers, command);
}

void RendererGL41::execute(CommandUpdateVertexBuffer& command)
{
    updateView(m_tables.vertexBuffers, command);
}

void RendererGL41::execute(CommandDestroyVertexBuffer& command)
{
    destroyResource(m_tables.vertexBuffers, command.handle, "[RendererGL] Trying to destroy an invalid vertex buffer.");
}

// Index buffers

void RendererGL41::execute(CommandCreateIndexBuffer& command)
{
    createView(m_tables.indexBuffers, command);
}

void RendererGL41::execute(CommandUpdateIndexBuffer& command)
{
    updateView(m_tables.indexBuffers, command);
}

void RendererGL41::execute(CommandDestroyIndexBuffer& command)
{
    destroyResource(m_tables.indexBuffers, command.handle, "[RendererGL] Trying to destroy an invalid index buffer.");
}

// Shader buffers

void RendererGL41::execute(CommandCreateShaderBuffer& command)
{
    createView(m_tables.shaderBuffers, command);
}

void RendererGL41::execute(CommandUpdateShaderBuffer& command)
{
    updateView(m_tables.shaderBuffers, command);
}

void RendererGL41::execute(CommandDestroyShaderBuffer& command)
{
    destroyResource(m_tables.shaderBuffers, command.handle, "[RendererGL] Trying to destroy an invalid shader buffer.");
}

} // namespace renderengine
