#pragma once

#include <cstddef>

namespace renderengine
{

/// The memory of long lists of commands: pieces of one size, of which a number is kept for the process.
///
/// A list that is made and dropped every frame would otherwise give its memory back to the system and fault it in again
/// page by page, which takes longer than recording does. All operations may be called on any thread.
class CommandMemory
{
public:
    /// Small enough for the allocator to cut it from its heap instead of mapping it.
    static constexpr std::size_t PieceSize = 65536;
    /// Alignment of a piece.
    static constexpr std::size_t PieceAlignment = 2048;
    /// Free pieces that are kept: 16 MiB, a scene of some 300000 draws.
    static constexpr std::size_t KeptPieces = 256;

    /// A piece, kept or new. Throws std::bad_alloc.
    static void* take();

    /// Takes a piece back.
    static void give(void* piece) noexcept;
};

} // namespace renderengine
