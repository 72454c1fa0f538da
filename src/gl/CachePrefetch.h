#pragma once

#include <cstddef>

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

} // namespace renderengine
