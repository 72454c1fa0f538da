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

} // namespace renderengine::testing
