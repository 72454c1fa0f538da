#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace renderengine
{

/// Memory for the commands of one list.
///
/// Recording must not pay a heap allocation a command, and a command must be able to outlive its list and to be freed
/// on any thread, whoever drops the last reference. So commands are cut from chunks, one behind the other, and a chunk
/// counts how many of them are still alive:
///
///     chunk    | page | page | page | ...       aligned to the page size
///     page     | pointer to the chunk | block | block | ...
///
/// - A chunk is a run of pages. Each page starts with a pointer to its chunk, so that a block finds the chunk by
///   masking its own address; the control block of the shared pointer needs no room for an allocator.
/// - The count starts with a large credit instead of 0. Cutting a block only counts in the list, without an atomic
///   operation; freeing one subtracts 1 from the chunk. When the list leaves the chunk it takes the unused credit back,
///   and whoever brings the count to 0 frees the chunk: the list or the last command, on whatever thread.
/// - Chunks grow with the list, as it is filled and as it was filled the time before, so that what a long list leaves
///   unused is a sixteenth of its memory at most, and a short one that is filled every frame keeps to short chunks. A
///   chunk of the largest size is a piece of CommandMemory.
/// - A list that was emptied, and whose commands are all gone, starts its last chunk over.
/// - A command that outlives its neighbours keeps their chunk: of a list of which only scattered commands survive, up
///   to one chunk a survivor stays in memory.
///
/// Cutting blocks belongs to one thread at a time, like the list; freeing them to any.
class CommandArena
{
    struct Chunk;

public:
    static constexpr std::size_t PageSize = 2048;
    /// Larger blocks would leave too much of a page unused and come from the heap.
    static constexpr std::size_t MaximumBlockSize = PageSize / 8;
    /// Alignment of a block.
    static constexpr std::size_t BlockAlignment = alignof(void*);

    CommandArena() noexcept = default;
    CommandArena(CommandArena&& other) noexcept;
    CommandArena& operator=(CommandArena&& other) noexcept;
    ~CommandArena() { retire(); }

    /// Whether it holds a chunk to cut from.
    bool isOpen() const noexcept { return m_chunk != nullptr; }

    /// Cuts a block; `size` is at most MaximumBlockSize and a multiple of BlockAlignment. Throws std::bad_alloc.
    void* allocate(std::size_t size)
    {
        if (static_cast<std::size_t>(m_pageEnd - m_cursor) < size)
        {
            nextPage();
        }
        void* block = m_cursor;
        m_cursor += size;
        ++m_used;
        unpoison(block, size);
        return block;
    }

    /// Frees a block of that size of any arena, also of one that is gone.
    static void deallocate(void* block, std::size_t size) noexcept;

    /// While it lives, blocks that this thread frees are counted here and taken off their chunk together, one atomic
    /// operation for a run of blocks of the same chunk. For dropping whole lists.
    class FreeBatch
    {
    public:
        FreeBatch() noexcept;
        FreeBatch(const FreeBatch&) = delete;
        FreeBatch& operator=(const FreeBatch&) = delete;
        ~FreeBatch();

    private:
        friend class CommandArena;

        void add(Chunk* chunk) noexcept;

        FreeBatch* const m_outer;
        Chunk* m_chunk = nullptr;
        uint32_t m_count = 0;
    };

    /// The list was emptied and is filled anew: starts the current chunk over if none of its blocks is alive.
    void recycle() noexcept;

    /// The arena from which CommandAllocator allocates on this thread.
    ///
    /// The initial-exec model saves a call to the loader's look-up for each command; the library takes two pointers of
    /// the static thread-local space.
    [[gnu::tls_model("initial-exec")]] static inline thread_local CommandArena* s_current = nullptr;

private:
    /// The innermost batch of this thread, or null.
    [[gnu::tls_model("initial-exec")]] static inline thread_local FreeBatch* s_freeBatch = nullptr;

    static void unpoison(void* block, std::size_t size) noexcept;

    void nextPage();
    void addChunk();
    void openPage(uint32_t page) noexcept;
    void retire() noexcept;

    char* m_cursor = nullptr;
    char* m_pageEnd = nullptr;
    Chunk* m_chunk = nullptr;
    /// Blocks cut from the current chunk.
    uint32_t m_used = 0;
    /// Index of the current page in the current chunk.
    uint32_t m_page = 0;
    /// Pages taken for what fills the list now and for what filled it before, up to the number from which on chunks no
    /// longer grow.
    uint32_t m_pagesTaken = 0;
    uint32_t m_pagesTakenBefore = 0;
};

/// Allocates from the current arena of the thread what fits into a page, and from the heap what does not. It has no
/// state, so it takes no room in the control block of a shared pointer.
template <class T> struct CommandAllocator
{
    using value_type = T;

    static constexpr bool FromArena =
        sizeof(T) <= CommandArena::MaximumBlockSize && alignof(T) <= CommandArena::BlockAlignment;

    CommandAllocator() noexcept = default;
    template <class U> CommandAllocator(const CommandAllocator<U>&) noexcept {}

    /// `count` is 1: a shared pointer allocates one control block.
    T* allocate(std::size_t count)
    {
        if constexpr (FromArena)
        {
            return static_cast<T*>(CommandArena::s_current->allocate(sizeof(T)));
        }
        else
        {
            return std::allocator<T>().allocate(count);
        }
    }

    void deallocate(T* block, std::size_t count) noexcept
    {
        if constexpr (FromArena)
        {
            CommandArena::deallocate(block, sizeof(T));
        }
        else
        {
            std::allocator<T>().deallocate(block, count);
        }
    }

    template <class U> bool operator==(const CommandAllocator<U>&) const noexcept { return true; }
    template <class U> bool operator!=(const CommandAllocator<U>&) const noexcept { return false; }
};

#if defined(__SANITIZE_ADDRESS__)
extern "C" void __asan_unpoison_memory_region(void const volatile* address, std::size_t size);

inline void CommandArena::unpoison(void* block, std::size_t size) noexcept
{
    __asan_unpoison_memory_region(block, size);
}
#else
inline void CommandArena::unpoison(void*, std::size_t) noexcept {}
#endif

} // namespace renderengine
