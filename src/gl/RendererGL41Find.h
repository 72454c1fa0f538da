#pragma once

#include "gl/CachePrefetch.h"
#include "gl/RendererGL41.h"

#include <spdlog/spdlog.h>

#include <cstring>
#include <memory>
#include <type_traits>
#include <utility>

// Templates of RendererGL41 that serve all of its resource tables alike; included by its source files only.

namespace renderengine
{

/// Equality that is fast for records that are copies of each other, down to their padding, as those of neighbouring
/// draws mostly are. A copy is equal to its original even when it holds NaN.
template <class Record> bool isSameRecord(const Record& a, const Record& b)
{
    static_assert(std::is_trivially_copyable_v<Record>, "bytes stand for the record");
    // NOLINTNEXTLINE(bugprone-suspicious-memory-comparison): different bytes are followed by the real comparison
    return std::memcmp(&a, &b, sizeof(Record)) == 0 || a == b;
}

template <class Handle, class Resource>
Resource* RendererGL41::find(const ResourceTable<Handle, Resource>& table, const Handle& handle)
{
    return table.find(handle);
}

template <class Handle, class Resource>
Resource* RendererGL41::findOrReport(const ResourceTable<Handle, Resource>& table, const Handle& handle,
                                     const char* message)
{
    Resource* resource = find(table, handle);
    if (resource == nullptr)
    {
        spdlog::error(message);
    }
    return resource;
}

template <class Handle, class Resource> Handle RendererGL41::createHandle(ResourceTable<Handle, Resource>& table)
{
    Handle handle;
    return table.create(handle);
}

template <class Handle, class Resource, class... Arguments>
Resource& RendererGL41::createResource(ResourceTable<Handle, Resource>& table, const Handle& handle,
                                       Arguments&&... arguments)
{
    auto resource = std::make_shared<Resource>(std::forward<Arguments>(arguments)...);
    Resource& reference = *resource;
    table.get(handle) = std::move(resource);
    return reference;
}

template <class Table, class Command> void RendererGL41::createView(Table& table, const Command& command)
{
    if (command.handle.isValid())
    {
        createResource(table, command.handle)
            .create(command.properties, find(m_tables.buffers, command.properties.buffer));
    }
}

template <class Table, class Command> void RendererGL41::updateView(Table& table, const Command& command)
{
    if (auto* view = find(table, command.handle))
    {
        view->update(command.properties, find(m_tables.buffers, command.properties.buffer));
    }
}

template <class Handle, class Resource>
void RendererGL41::destroyResource(ResourceTable<Handle, Resource>& table, Handle& handle, const char* message)
{
    if (Resource* resource = findOrReport(table, handle, message))
    {
        resource->destroy();
        table.destroy(handle);
        handle = Handle();
    }
}

template <class Handle, class Resource>
void RendererGL41::releaseResource(ResourceTable<Handle, Resource>& table, Handle& handle)
{
    if (Resource* resource = find(table, handle))
    {
        resource->destroy();
        table.destroy(handle);
    }
    handle = Handle();
}

template <class Handle, class View>
void RendererGL41::prefetchView(const ResourceTable<Handle, View>& table, const Handle& handle)
{
    if (const View* view = find(table, handle))
    {
        prefetchObject(static_cast<const BufferContainerGL*>(view));
    }
}

template <class Handle, class View>
void RendererGL41::prefetchBuffer(const ResourceTable<Handle, View>& table, const Handle& handle)
{
    const View* view = find(table, handle);
    if (view != nullptr && view->getBuffer() != nullptr)
    {
        prefetchObject(view->getBuffer());
    }
}

} // namespace renderengine
