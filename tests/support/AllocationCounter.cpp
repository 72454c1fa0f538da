#include "support/AllocationCounter.h"

#include <malloc.h>

#include <atomic>
#include <cstdlib>
#include <new>

namespace
{

std::atomic<uint64_t> s_allocations{0};
std::atomic<uint64_t> s_liveBytes{0};

constexpr uint64_t UNLIMITED = UINT64_MAX;
thread_local uint64_t s_allowed = UNLIMITED;

void takeFromLimit()
{
    if (s_allowed == 0)
    {
        throw std::bad_alloc();
    }
    if (s_allowed != UNLIMITED)
    {
        --s_allowed;
    }
}

void* count(void* memory)
{
    if (memory == nullptr)
    {
        throw std::bad_alloc();
    }
    s_allocations.fetch_add(1, std::memory_order_relaxed);
    s_liveBytes.fetch_add(malloc_usable_size(memory), std::memory_order_relaxed);
    return memory;
}

void release(void* memory) noexcept
{
    if (memory != nullptr)
    {
        s_liveBytes.fetch_sub(malloc_usable_size(memory), std::memory_order_relaxed);
        std::free(memory);
    }
}

} // namespace

namespace renderengine::testing
{

AllocationCounts getAllocationCounts()
{
    return {s_allocations.load(std::memory_order_relaxed), s_liveBytes.load(std::memory_order_relaxed)};
}

AllocationLimit::AllocationLimit(uint64_t allowed)
{
    s_allowed = allowed;
}

AllocationLimit::~AllocationLimit()
{
    s_allowed = UNLIMITED;
}

} // namespace renderengine::testing

// The other forms of the operators call these.

void* operator new(std::size_t size)
{
    takeFromLimit();
    return count(std::malloc(size == 0 ? 1 : size));
}

void* operator new(std::size_t size, std::align_val_t alignment)
{
    takeFromLimit();
    const auto step = static_cast<std::size_t>(alignment);
    return count(std::aligned_alloc(step, (size + step - 1) / step * step));
}

void operator delete(void* memory) noexcept
{
    release(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    release(memory);
}

void operator delete(void* memory, std::align_val_t) noexcept
{
    release(memory);
}

void operator delete(void* memory, std::size_t, std::align_val_t) noexcept
{
    release(memory);
}
