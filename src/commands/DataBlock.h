#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>

namespace renderengine
{

/// Gives memory back to the C heap.
struct FreeDeleter
{
    void operator()(void* memory) const noexcept { std::free(memory); }
};

/// Bytes that a command owns. They come from the C heap, which hands out zeroed pages without writing to them.
using DataBlock = std::unique_ptr<uint8_t[], FreeDeleter>;

/// Allocates `size` zero bytes; never empty, not even for a size of 0. Throws std::bad_alloc.
DataBlock makeZeroedBlock(uint64_t size);

/// Allocates `size` bytes and copies them from `source`, which must hold as many. Throws std::bad_alloc.
DataBlock copyToBlock(const void* source, uint64_t size);

} // namespace renderengine
