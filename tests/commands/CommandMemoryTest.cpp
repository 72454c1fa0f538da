#include "commands/CommandMemory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <thread>
#include <vector>

namespace
{

using renderengine::CommandMemory;

std::vector<void*> take(std::size_t count)
{
    std::vector<void*> pieces(count);
    std::generate(pieces.begin(), pieces.end(), [] { return CommandMemory::take(); });
    return pieces;
}

void give(const std::vector<void*>& pieces)
{
    std::for_each(pieces.begin(), pieces.end(), [](void* piece) { CommandMemory::give(piece); });
}

TEST(CommandMemory, PiecesAreAlignedAndApart)
{
    const std::vector<void*> pieces = take(8);
    for (std::size_t i = 0; i < pieces.size(); ++i)
    {
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(pieces[i]) % CommandMemory::PieceAlignment, 0u);
        std::memset(pieces[i], static_cast<int>(i), CommandMemory::PieceSize);
    }
    for (std::size_t i = 0; i < pieces.size(); ++i)
    {
        const auto* const bytes = static_cast<const unsigned char*>(pieces[i]);
        EXPECT_EQ(std::count(bytes, bytes + CommandMemory::PieceSize, static_cast<unsigned char>(i)),
                  static_cast<std::ptrdiff_t>(CommandMemory::PieceSize));
    }
    give(pieces);
}

TEST(CommandMemory, APieceGivenBackIsTheNextOneTaken)
{
    void* const first = CommandMemory::take();
    void* const second = CommandMemory::take();
    CommandMemory::give(first);
    CommandMemory::give(second);
    EXPECT_EQ(CommandMemory::take(), second);
    EXPECT_EQ(CommandMemory::take(), first);
    CommandMemory::give(first);
    CommandMemory::give(second);
}

TEST(CommandMemory, ThePiecesKeptComeBackWhenMoreWereGiven)
{
    const std::vector<void*> pieces = take(CommandMemory::KeptPieces + 10);
    give(pieces);
    // The first ones were kept and come last in, first out; those behind them went back to the allocator.
    std::vector<void*> expected(pieces.begin(), pieces.begin() + CommandMemory::KeptPieces);
    std::reverse(expected.begin(), expected.end());
    const std::vector<void*> taken = take(CommandMemory::KeptPieces);
    EXPECT_EQ(taken, expected);
    give(taken);
}

TEST(CommandMemory, ThreadsNeverShareAPiece)
{
    const auto work = [](unsigned char mark)
    {
        for (int round = 0; round < 1000; ++round)
        {
            const std::vector<void*> pieces = take(4);
            for (void* const piece : pieces)
            {
                std::memset(piece, mark, 64);
            }
            for (const void* const piece : pieces)
            {
                const auto* const bytes = static_cast<const unsigned char*>(piece);
                ASSERT_EQ(std::count(bytes, bytes + 64, mark), 64);
            }
            give(pieces);
        }
    };
    std::thread first(work, static_cast<unsigned char>(1));
    std::thread second(work, static_cast<unsigned char>(2));
    work(3);
    first.join();
    second.join();
}

} // namespace
