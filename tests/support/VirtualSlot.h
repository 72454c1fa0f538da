#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace renderengine::testing
{

/// The slot of a virtual operation in its table. In the C++ ABI that all our compilers follow, a pointer to a virtual
/// member begins with one more than the byte offset of its slot.
template <class Member> std::size_t slotOf(Member member)
{
    std::uintptr_t offset = 0;
    std::memcpy(&offset, &member, sizeof(offset));
    return (offset - 1) / sizeof(void*);
}

/// A virtual destructor takes two slots.
constexpr std::size_t DESTRUCTOR_SLOTS = 2;

} // namespace renderengine::testing
