// Allocators may hand out memory without a gap, so that the end of one block is the start of another. These operators
// do, from the top down. They stand apart from the tests: inlined into one, g++ takes std::free for a mismatch.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>

namespace
{

constexpr std::size_t SIZE = 1u << 24;
alignas(16) char s_memory[SIZE];
std::size_t s_left = SIZE;

} // namespace

void* operator new(std::size_t size)
{
    const std::size_t rounded = (size + 15) / 16 * 16;
    if (rounded <= s_left)
    {
        s_left -= rounded;
        return s_memory + s_left;
    }
    void* const memory = std::malloc(rounded);
    if (memory == nullptr)
    {
        throw std::bad_alloc();
    }
    return memory;
}

void operator delete(void* memory) noexcept
{
    const auto address = reinterpret_cast<uintptr_t>(memory);
    const auto first = reinterpret_cast<uintptr_t>(s_memory);
    if (address < first || address >= first + SIZE)
    {
        std::free(memory);
    }
}

void operator delete(void* memory, std::size_t) noexcept
{
    ::operator delete(memory);
}
