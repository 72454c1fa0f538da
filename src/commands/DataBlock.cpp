#include "commands/DataBlock.h"

#include <cstddef>
#include <cstring>
#include <limits>
#include <new>

namespace renderengine
{

namespace
{

std::size_t checkedSize(uint64_t size)
{
    // No heap gives more; some only complain loudly.
    if (size > static_cast<uint64_t>(std::numeric_limits<std::ptrdiff_t>::max()))
    {
        throw std::bad_alloc();
    }
    // Some heaps answer null for nothing.
    return size == 0 ? 1 : static_cast<std::size_t>(size);
}

DataBlock checkedBlock(void* memory)
{
    if (memory == nullptr)
    {
        throw std::bad_alloc();
    }
    return DataBlock(static_cast<uint8_t*>(memory));
}

} // namespace

DataBlock makeZeroedBlock(uint64_t size)
{
    return checkedBlock(std::calloc(checkedSize(size), 1));
}

DataBlock copyToBlock(const void* source, uint64_t size)
{
    DataBlock block = checkedBlock(std::malloc(checkedSize(size)));
    if (size != 0)
    {
        std::memcpy(block.get(), source, static_cast<std::size_t>(size));
    }
    return block;
}

} // namespace renderengine
