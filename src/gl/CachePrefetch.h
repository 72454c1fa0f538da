#pragma once

#include <cstddef>
#include <vector>

namespace renderengine
{

inline constexpr size_t cacheLineSize = 64;

/// Asks the processor for the line of memory at the address, which need not be valid.
inline void prefetch(const void* address)
{
    __builtin_prefetch(address);
}

/// Asks for all of an object.
template <class Object> void prefetchObject(const Object* object)
{
    for (size_t offset = 0; offset < sizeof(Object); offset += cacheLineSize)
    {
        prefetch(reinterpret_cast<const std::byte*>(object) + offset);
    }
}

/// Asks for the elements of a vector.
template <class Value> void prefetchElements(const std::vector<Value>& values)
{
    const size_t size = values.size() * sizeof(Value);
    for (size_t offset = 0; offset < size; offset += cacheLineSize)
    {
        prefetch(reinterpret_cast<const std::byte*>(values.data()) + offset);
    }
}

} // namespace renderengine
