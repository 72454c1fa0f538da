#pragma once

#include <cstdint>

namespace renderengine::testing
{

/// What the operators `new` and `delete` of the program have given out on all threads. The program has to compile
/// AllocationCounter.cpp in, which replaces them.
struct AllocationCounts
{
    uint64_t allocations = 0; // so far
    uint64_t liveBytes = 0;   // that the allocator set aside and that are not freed
};

AllocationCounts getAllocationCounts();

/// While it lives, the operators `new` give the calling thread so many blocks and then throw std::bad_alloc. One at a
/// time on a thread.
class AllocationLimit
{
public:
    explicit AllocationLimit(uint64_t allowed);
    ~AllocationLimit();
    AllocationLimit(const AllocationLimit&) = delete;
    AllocationLimit& operator=(const AllocationLimit&) = delete;
};

} // namespace renderengine::testing
