#pragma once

#include "CallOutput.h"
#include "ContextValues.h"

#include <cstddef>
#include <map>
#include <optional>
#include <vector>

namespace renderengine::glbinding
{
/// The buffers of a recording: their sizes, and the memory behind them from when it is first needed.
class BufferStore
{
public:
    /// Carries out the calls on buffers; nothing for all other calls.
    std::optional<std::uint64_t> call(FunctionIndex function, const CallValue* values, const ContextValues& context);
    void forget(GLuint buffer) { m_buffers.erase(buffer); }

    std::vector<std::byte> content(GLuint buffer) const;
    std::uint64_t uploadedBytes() const { return m_uploadedBytes; }

private:
    struct Buffer
    {
        std::size_t size = 0;
        std::vector<std::byte> content;
        GLenum usage = 0;
        bool immutable = false;
        bool mapped = false;
        std::size_t mapOffset = 0;
        std::size_t mapLength = 0;
        std::int64_t access = 0;
    };

    Buffer* bound(const CallValue& target, const ContextValues& context);
    void allocate(Buffer& buffer, std::int64_t size, const void* data);
    void update(Buffer& buffer, std::int64_t offset, std::int64_t size, const void* data);
    static std::uint64_t map(Buffer& buffer, std::int64_t offset, std::int64_t length, std::int64_t access);
    static void copy(Buffer& source, Buffer& destination, const CallValue* values);
    static void read(Buffer& buffer, std::int64_t offset, std::int64_t size, const void* output);
    static Number parameter(const Buffer& buffer, std::int64_t name);

    std::map<GLuint, Buffer> m_buffers;
    std::uint64_t m_uploadedBytes = 0;
};
} // namespace renderengine::glbinding
