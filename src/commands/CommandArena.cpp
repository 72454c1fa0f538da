#include "commands/CommandArena.h"

#include <algorithm>
#include <atomic>
#include <new>
#include <utility>

#include "commands/CommandMemory.h"

#if defined(__SANITIZE_ADDRESS__)
extern "C" void __asan_poison_memory_region(void const volatile* address, std::size_t size);
#endif

namespace renderengine
{

namespace
{

/// More than the blocks of any chunk.
constexpr uint32_t Credit = 1u << 30;

constexpr uint32_t LargestPageCount = CommandMemory::PieceSize / CommandArena::PageSize;
/// A chunk is this part of what its list has taken so far.
constexpr uint32_t GrowthDivisor = 16;

static_assert(CommandMemory::PieceAlignment == CommandArena::PageSize, "a piece is a run of pages");

/// Makes the address sanitizer report any use of memory that no command owns.
void poison([[maybe_unused]] void* memory, [[maybe_unused]] std::size_t size) noexcept
{
#if defined(__SANITIZE_ADDRESS__)
    __asan_poison_memory_region(memory, size);
#endif
}

} // namespace

/// The head of the first page; the other pages start with the pointer only.
struct CommandArena::Chunk
{
    explicit Chunk(uint32_t pages) noexcept : chunk(this), pageCount(pages) {}

    static Chunk* create(uint32_t pageCount);
    static void destroy(Chunk* chunk) noexcept;

    /// Subtracts from the count and frees the chunk when nothing is left.
    static void release(Chunk* chunk, uint32_t count) noexcept
    {
        if (chunk->live.fetch_sub(count, std::memory_order_acq_rel) == count)
        {
            destroy(chunk);
        }
    }

    Chunk* chunk;
    /// Credit of the list plus blocks that it took and that are alive, see CommandArena.
    std::atomic<uint32_t> live{Credit};
    uint32_t pageCount;
};

CommandArena::Chunk* CommandArena::Chunk::create(uint32_t pageCount)
{
    void* const memory = pageCount == LargestPageCount
                             ? CommandMemory::take()
                             : ::operator new(PageSize* pageCount, std::align_val_t(PageSize));
    return new (memory) Chunk(pageCount);
}

void CommandArena::Chunk::destroy(Chunk* chunk) noexcept
{
    const uint32_t pageCount = chunk->pageCount;
    chunk->~Chunk();
    unpoison(chunk, PageSize * pageCount); // the next user may be of another kind
    if (pageCount == LargestPageCount)
    {
        CommandMemory::give(chunk);
    }
    else
    {
        ::operator delete(chunk, std::align_val_t(PageSize));
    }
}

CommandArena::CommandArena(CommandArena&& other) noexcept
    : m_cursor(std::exchange(other.m_cursor, nullptr)), m_pageEnd(std::exchange(other.m_pageEnd, nullptr)),
      m_chunk(std::exchange(other.m_chunk, nullptr)), m_used(std::exchange(other.m_used, 0)),
      m_page(std::exchange(other.m_page, 0)), m_pagesTaken(std::exchange(other.m_pagesTaken, 0)),
      m_pagesTakenBefore(std::exchange(other.m_pagesTakenBefore, 0))
{
}

CommandArena& CommandArena::operator=(CommandArena&& other) noexcept
{
    if (this != &other)
    {
        retire();
        m_cursor = std::exchange(other.m_cursor, nullptr);
        m_pageEnd = std::exchange(other.m_pageEnd, nullptr);
        m_chunk = std::exchange(other.m_chunk, nullptr);
        m_used = std::exchange(other.m_used, 0);
        m_page = std::exchange(other.m_page, 0);
        m_pagesTaken = std::exchange(other.m_pagesTaken, 0);
        m_pagesTakenBefore = std::exchange(other.m_pagesTakenBefore, 0);
    }
    return *this;
}

void CommandArena::deallocate(void* block, std::size_t size) noexcept
{
    poison(block, size);
    const auto address = reinterpret_cast<uintptr_t>(block);
    const auto page = reinterpret_cast<Chunk* const*>(address & ~uintptr_t(PageSize - 1));
    if (s_freeBatch != nullptr)
    {
        s_freeBatch->add(*page);
    }
    else
    {
        Chunk::release(*page, 1);
    }
}

CommandArena::FreeBatch::FreeBatch() noexcept : m_outer(s_freeBatch)
{
    s_freeBatch = this;
}

CommandArena::FreeBatch::~FreeBatch()
{
    s_freeBatch = m_outer;
    if (m_chunk != nullptr)
    {
        Chunk::release(m_chunk, m_count);
    }
}

void CommandArena::FreeBatch::add(Chunk* chunk) noexcept
{
    if (chunk != m_chunk)
    {
        if (m_chunk != nullptr)
        {
            Chunk::release(m_chunk, m_count);
        }
        m_chunk = chunk;
        m_count = 0;
    }
    ++m_count;
}

void CommandArena::recycle() noexcept
{
    m_pagesTakenBefore = std::exchange(m_pagesTaken, 0);
    if (m_chunk != nullptr && m_chunk->live.load(std::memory_order_acquire) == Credit - m_used)
    {
        m_chunk->live.store(Credit, std::memory_order_relaxed);
        m_used = 0;
        openPage(0);
    }
}

void CommandArena::nextPage()
{
    if (m_chunk != nullptr && m_page + 1 < m_chunk->pageCount)
    {
        openPage(m_page + 1);
    }
    else
    {
        addChunk();
    }
}

void CommandArena::addChunk()
{
    const uint32_t pagesOfList = std::max(m_pagesTaken, m_pagesTakenBefore);
    const uint32_t pageCount = std::clamp(pagesOfList / GrowthDivisor, 1u, LargestPageCount);
    Chunk* const chunk = Chunk::create(pageCount);
    retire();
    m_chunk = chunk;
    m_pagesTaken = std::min(m_pagesTaken + pageCount, GrowthDivisor * LargestPageCount);
    openPage(0);
}

void CommandArena::openPage(uint32_t page) noexcept
{
    char* start = reinterpret_cast<char*>(m_chunk) + page * PageSize;
    std::size_t headSize = sizeof(Chunk);
    if (page != 0)
    {
        new (start) Chunk*(m_chunk);
        headSize = sizeof(Chunk*); // NOLINT(bugprone-sizeof-expression): it is the pointer that stands there
    }
    m_page = page;
    m_cursor = start + headSize;
    m_pageEnd = start + PageSize;
    poison(m_cursor, PageSize - headSize);
}

void CommandArena::retire() noexcept
{
    if (m_chunk != nullptr)
    {
        Chunk::release(m_chunk, Credit - m_used);
        m_cursor = nullptr;
        m_pageEnd = nullptr;
        m_chunk = nullptr;
        m_used = 0;
        m_page = 0;
    }
}

} // namespace renderengine
