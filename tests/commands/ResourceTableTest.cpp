#include <algorithm>
#include <atomic>
#include <memory>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <renderengine/Handle.h>

#include "commands/ResourceTable.h"

namespace
{

using namespace renderengine;

struct NumberTable : ResourceTableBase
{
    explicit NumberTable(uint32_t capacity) : ResourceTableBase(capacity) {}

    using ResourceTableBase::m_entries;
    using ResourceTableBase::m_firstFree;
};

struct Resource
{
    explicit Resource(int* destroyCount) : destroyCalls(destroyCount) {}
    void destroy() { ++*destroyCalls; }

    int* destroyCalls;
};

using BufferTable = ResourceTable<BufferHandle, Resource>;

TEST(ResourceTable, GivesOutNumbersFromZeroOn)
{
    NumberTable table(16);
    EXPECT_EQ(table.allocate(), 0u);
    EXPECT_EQ(table.allocate(), 1u);
    EXPECT_EQ(table.allocate(), 2u);
}

TEST(ResourceTable, ReusesTheLastReleasedNumberFirst)
{
    NumberTable table(16);
    table.allocate();
    table.allocate();
    table.allocate();
    table.release(1);
    table.release(2);
    EXPECT_EQ(table.allocate(), 2u);
    EXPECT_EQ(table.allocate(), 1u);
    EXPECT_EQ(table.allocate(), 3u);
}

TEST(ResourceTable, HasAnEmptyFreeListAfterTheLastFreeNumberIsTaken)
{
    NumberTable table(16);
    table.allocate();
    table.release(0);
    EXPECT_EQ(table.m_firstFree, 0u);
    EXPECT_EQ(table.allocate(), 0u);
    EXPECT_EQ(table.m_firstFree, 0xFFFFFFFFu);
    EXPECT_EQ(table.m_entries[0].next, 0xFFFFFFFFu);
}

TEST(ResourceTable, StartsAtZeroAgainAfterClear)
{
    NumberTable table(16);
    table.allocate();
    table.allocate();
    table.release(0);
    table.clear();
    EXPECT_TRUE(table.m_entries.empty());
    EXPECT_EQ(table.m_firstFree, 0xFFFFFFFFu);
    EXPECT_EQ(table.allocate(), 0u);
}

TEST(ResourceTable, ReservesItsCapacityAndGrowsPastIt)
{
    NumberTable table(4);
    EXPECT_GE(table.m_entries.capacity(), 4u);
    for (uint32_t i = 0; i < 100; ++i)
    {
        EXPECT_EQ(table.allocate(), i);
    }
}

TEST(ResourceTable, GivesEachThreadNumbersOfItsOwn)
{
    constexpr int Threads = 4;
    constexpr int PerThread = 2000;
    NumberTable table(16);
    std::vector<std::vector<uint32_t>> numbers(Threads);
    std::vector<std::thread> threads;
    for (std::vector<uint32_t>& own : numbers)
    {
        threads.emplace_back(
            [&table, &own]
            {
                for (int i = 0; i < PerThread; ++i)
                {
                    own.push_back(table.allocate());
                }
            });
    }
    std::vector<uint32_t> all;
    for (int i = 0; i < Threads; ++i)
    {
        threads[static_cast<std::size_t>(i)].join();
        all.insert(all.end(), numbers[static_cast<std::size_t>(i)].begin(), numbers[static_cast<std::size_t>(i)].end());
    }
    std::sort(all.begin(), all.end());
    ASSERT_EQ(all.size(), static_cast<std::size_t>(Threads * PerThread));
    for (uint32_t i = 0; i < all.size(); ++i)
    {
        ASSERT_EQ(all[i], i);
    }
}

TEST(ResourceTable, CreateFillsAndReturnsItsArgument)
{
    BufferTable table(16);
    BufferHandle handle;
    EXPECT_EQ(&table.create(handle), &handle);
    EXPECT_EQ(handle, BufferHandle(0));
    EXPECT_EQ(table.find(handle), nullptr);
}

TEST(ResourceTable, GetGrowsTheSlotsUpToTheHandle)
{
    BufferTable table(16);
    BufferTable::Slot& slot = table.get(BufferHandle(1000));
    EXPECT_EQ(slot, nullptr);
    EXPECT_EQ(&slot - &table.get(BufferHandle(0)), 1000) << "1001 slots, and this one is the last";
    for (uint32_t id = 0; id <= 1000; ++id)
    {
        EXPECT_EQ(table.find(BufferHandle(id)), nullptr) << id;
    }
    int destroyCalls = 0;
    slot = std::make_shared<Resource>(&destroyCalls);
    EXPECT_EQ(table.get(BufferHandle(1000)), slot);
    EXPECT_EQ(table.find(BufferHandle(999)), nullptr);
    EXPECT_EQ(table.find(BufferHandle(1000)), slot.get());
    EXPECT_EQ(table.find(BufferHandle(1001)), nullptr);
}

TEST(ResourceTable, GivesTheInvalidHandleAnEmptySlot)
{
    BufferTable table(16);
    int destroyCalls = 0;
    table.get(BufferHandle()) = std::make_shared<Resource>(&destroyCalls);
    EXPECT_EQ(table.get(BufferHandle()), nullptr);
    EXPECT_EQ(table.find(BufferHandle()), nullptr);
}

TEST(ResourceTable, DestroyDropsTheObjectAndReleasesTheNumber)
{
    BufferTable table(16);
    BufferHandle handle;
    table.create(handle);
    int destroyCalls = 0;
    table.get(handle) = std::make_shared<Resource>(&destroyCalls);
    const std::weak_ptr<Resource> object = table.get(handle);
    table.destroy(handle);
    EXPECT_TRUE(object.expired());
    EXPECT_EQ(destroyCalls, 0);
    BufferHandle next;
    EXPECT_EQ(table.create(next), handle);
}

TEST(ResourceTable, DestroyOfAHandleWithoutObjectReleasesNothing)
{
    BufferTable table(16);
    BufferHandle handle;
    table.create(handle);
    table.destroy(handle);
    table.destroy(BufferHandle());
    BufferHandle next;
    EXPECT_EQ(table.create(next), BufferHandle(1));
}

TEST(ResourceTable, DestroyAllTearsDownEveryObjectAndForgetsTheNumbers)
{
    BufferTable table(16);
    int destroyCalls = 0;
    std::weak_ptr<Resource> object;
    for (int i = 0; i < 5; ++i)
    {
        BufferHandle handle;
        table.create(handle);
        if (i % 2 == 0)
        {
            table.get(handle) = std::make_shared<Resource>(&destroyCalls);
            object = table.get(handle);
        }
    }
    table.destroyAll();
    EXPECT_EQ(destroyCalls, 3);
    EXPECT_TRUE(object.expired());
    EXPECT_EQ(table.find(BufferHandle(4)), nullptr);
    BufferHandle next;
    EXPECT_EQ(table.create(next), BufferHandle(0));
}

} // namespace
