#include "BufferStore.h"

#include <glbinding/GLEnums.h>

#include <cstring>

namespace renderengine::glbinding
{
namespace
{
// Buffers beyond this have a size but no memory: they cannot be mapped.
constexpr std::size_t largestContent = std::size_t{256} << 20;

bool isRange(std::size_t size, std::int64_t offset, std::int64_t length)
{
    return offset >= 0 && length >= 0 &&
           static_cast<std::uint64_t>(offset) + static_cast<std::uint64_t>(length) <= size;
}

template <class Buffer> bool provideContent(Buffer& buffer)
{
    if (buffer.size > largestContent)
    {
        return false;
    }
    buffer.content.resize(buffer.size);
    return true;
}
} // namespace

std::optional<std::uint64_t> BufferStore::call(FunctionIndex function, const CallValue* values,
                                               const ContextValues& context)
{
    Buffer* buffer = nullptr;
    switch (function)
    {
    case FunctionIndex::BufferData:
    case FunctionIndex::BufferStorage:
        if ((buffer = bound(values[0], context)) != nullptr)
        {
            allocate(*buffer, values[1].integer, values[2].pointer);
            buffer->immutable = function == FunctionIndex::BufferStorage;
            buffer->usage = buffer->immutable ? GL_DYNAMIC_DRAW : static_cast<GLenum>(values[3].integer);
        }
        return 0;
    case FunctionIndex::BufferSubData:
        if ((buffer = bound(values[0], context)) != nullptr)
        {
            update(*buffer, values[1].integer, values[2].integer, values[3].pointer);
        }
        return 0;
    case FunctionIndex::GetBufferSubData:
        if ((buffer = bound(values[0], context)) != nullptr)
        {
            read(*buffer, values[1].integer, values[2].integer, values[3].pointer);
        }
        return 0;
    case FunctionIndex::CopyBufferSubData:
    {
        Buffer* source = bound(values[0], context);
        Buffer* destination = bound(values[1], context);
        if (source != nullptr && destination != nullptr)
        {
            copy(*source, *destination, values);
        }
        return 0;
    }
    case FunctionIndex::MapBuffer:
        buffer = bound(values[0], context);
        return buffer == nullptr ? 0 : map(*buffer, 0, static_cast<std::int64_t>(buffer->size), values[1].integer);
    case FunctionIndex::MapBufferRange:
        buffer = bound(values[0], context);
        return buffer == nullptr ? 0 : map(*buffer, values[1].integer, values[2].integer, values[3].integer);
    case FunctionIndex::UnmapBuffer:
    {
        buffer = bound(values[0], context);
        const bool wasMapped = buffer != nullptr && buffer->mapped;
        if (wasMapped)
        {
            buffer->mapped = false;
        }
        return wasMapped ? 1 : 0;
    }
    case FunctionIndex::GetBufferParameteriv:
    case FunctionIndex::GetBufferParameteri64v:
        buffer = bound(values[0], context);
        writeLast(function, values, {buffer == nullptr ? Number(0) : parameter(*buffer, values[1].integer)});
        return 0;
    default:
        return std::nullopt;
    }
}

BufferStore::Buffer* BufferStore::bound(const CallValue& target, const ContextValues& context)
{
    const GLuint name = context.boundBuffer(static_cast<GLenum>(target.integer));
    return name != 0 ? &m_buffers[name] : nullptr;
}

void BufferStore::allocate(Buffer& buffer, std::int64_t size, const void* data)
{
    buffer = Buffer{};
    buffer.size = size > 0 ? static_cast<std::size_t>(size) : 0;
    if (data != nullptr)
    {
        update(buffer, 0, size, data);
    }
}

void BufferStore::update(Buffer& buffer, std::int64_t offset, std::int64_t size, const void* data)
{
    if (data == nullptr || size <= 0 || !isRange(buffer.size, offset, size))
    {
        return;
    }
    m_uploadedBytes += static_cast<std::uint64_t>(size);
    if (provideContent(buffer))
    {
        std::memcpy(buffer.content.data() + offset, data, static_cast<std::size_t>(size));
    }
}

std::uint64_t BufferStore::map(Buffer& buffer, std::int64_t offset, std::int64_t length, std::int64_t access)
{
    if (buffer.mapped || length <= 0 || !isRange(buffer.size, offset, length) || !provideContent(buffer))
    {
        return 0;
    }
    buffer.mapped = true;
    buffer.mapOffset = static_cast<std::size_t>(offset);
    buffer.mapLength = static_cast<std::size_t>(length);
    buffer.access = access;
    return reinterpret_cast<std::uintptr_t>(buffer.content.data() + offset);
}

void BufferStore::copy(Buffer& source, Buffer& destination, const CallValue* values)
{
    const std::int64_t from = values[2].integer;
    const std::int64_t to = values[3].integer;
    const std::int64_t size = values[4].integer;
    if (isRange(source.size, from, size) && isRange(destination.size, to, size) && provideContent(source) &&
        provideContent(destination) && size > 0)
    {
        std::memmove(destination.content.data() + to, source.content.data() + from, static_cast<std::size_t>(size));
    }
}

void BufferStore::read(Buffer& buffer, std::int64_t offset, std::int64_t size, const void* output)
{
    if (output != nullptr && size > 0 && isRange(buffer.size, offset, size) && provideContent(buffer))
    {
        std::memcpy(const_cast<void*>(output), buffer.content.data() + offset, static_cast<std::size_t>(size));
    }
}

Number BufferStore::parameter(const Buffer& buffer, std::int64_t name)
{
    switch (name)
    {
    case GL_BUFFER_SIZE:
        return static_cast<std::int64_t>(buffer.size);
    case GL_BUFFER_USAGE:
        return buffer.usage;
    case GL_BUFFER_MAPPED:
        return buffer.mapped ? 1 : 0;
    case GL_BUFFER_MAP_OFFSET:
        return static_cast<std::int64_t>(buffer.mapped ? buffer.mapOffset : 0);
    case GL_BUFFER_MAP_LENGTH:
        return static_cast<std::int64_t>(buffer.mapped ? buffer.mapLength : 0);
    case GL_BUFFER_ACCESS:
    case GL_BUFFER_ACCESS_FLAGS:
        return buffer.mapped ? buffer.access : 0;
    case GL_BUFFER_IMMUTABLE_STORAGE:
        return buffer.immutable ? 1 : 0;
    default:
        return 0;
    }
}

std::vector<std::byte> BufferStore::content(GLuint buffer) const
{
    const auto found = m_buffers.find(buffer);
    if (found == m_buffers.end() || found->second.size > largestContent)
    {
        return {};
    }
    std::vector<std::byte> bytes = found->second.content;
    bytes.resize(found->second.size);
    return bytes;
}
} // namespace renderengine::glbinding
