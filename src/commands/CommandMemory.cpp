#include "commands/CommandMemory.h"

#include <mutex>
#include <new>

namespace renderengine
{

namespace
{

class FreePieces
{
public:
    /// A piece, or null when none is kept.
    void* take() noexcept
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        FreePiece* const piece = m_first;
        if (piece != nullptr)
        {
            m_first = piece->next;
            --m_count;
        }
        return piece;
    }

    /// Keeps a piece and answers true, unless there are enough.
    bool give(void* memory) noexcept
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (m_count >= m_capacity)
        {
            return false;
        }
        m_first = new (memory) FreePiece{m_first};
        ++m_count;
        return true;
    }

    /// Keeps none from now on.
    void close() noexcept
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_capacity = 0;
    }

private:
    struct FreePiece
    {
        FreePiece* next;
    };

    std::mutex m_mutex;
    FreePiece* m_first = nullptr;
    std::size_t m_count = 0;
    std::size_t m_capacity = CommandMemory::KeptPieces;
};

FreePieces s_freePieces;

void release(void* piece) noexcept
{
    ::operator delete(piece, std::align_val_t(CommandMemory::PieceAlignment));
}

/// Static objects of the client may still drop commands behind this; their pieces go back to the allocator at once.
struct Closer
{
    ~Closer()
    {
        s_freePieces.close();
        while (void* piece = s_freePieces.take())
        {
            release(piece);
        }
    }
};

Closer s_closer;

} // namespace

void* CommandMemory::take()
{
    void* const kept = s_freePieces.take();
    return kept != nullptr ? kept : ::operator new(PieceSize, std::align_val_t(PieceAlignment));
}

void CommandMemory::give(void* piece) noexcept
{
    if (!s_freePieces.give(piece))
    {
        release(piece);
    }
}

} // namespace renderengine
