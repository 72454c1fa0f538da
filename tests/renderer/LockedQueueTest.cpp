#include "renderer/LockedQueue.h"

#include <gtest/gtest.h>

#include <memory>
#include <thread>

namespace renderengine
{
namespace
{

std::shared_ptr<int> number(int value)
{
    return std::make_shared<int>(value);
}

TEST(LockedQueueTest, PopGivesWhatWasPushedFirst)
{
    LockedQueue<std::shared_ptr<int>> queue;
    queue.push(number(1));
    queue.push(number(2));
    queue.push(number(3));
    EXPECT_EQ(*queue.pop(), 1);
    EXPECT_EQ(*queue.pop(), 2);
    EXPECT_EQ(*queue.pop(), 3);
}

TEST(LockedQueueTest, PopOnAnEmptyQueueReturnsAnEmptyPointerAtOnce)
{
    LockedQueue<std::shared_ptr<int>> queue;
    EXPECT_EQ(queue.pop(), nullptr);
    queue.push(number(1));
    queue.pop();
    EXPECT_EQ(queue.pop(), nullptr);
}

TEST(LockedQueueTest, EmptyTellsWhetherSomethingIsQueued)
{
    LockedQueue<std::shared_ptr<int>> queue;
    EXPECT_TRUE(queue.empty());
    queue.push(number(1));
    EXPECT_FALSE(queue.empty());
    queue.pop();
    EXPECT_TRUE(queue.empty());
}

TEST(LockedQueueTest, ClearDropsEverything)
{
    LockedQueue<std::shared_ptr<int>> queue;
    const std::shared_ptr<int> held = number(1);
    queue.push(held);
    queue.push(number(2));
    queue.clear();
    EXPECT_TRUE(queue.empty());
    EXPECT_EQ(held.use_count(), 1);
}

TEST(LockedQueueTest, PopDropsTheQueuesOwnReference)
{
    LockedQueue<std::shared_ptr<int>> queue;
    queue.push(number(1));
    EXPECT_EQ(queue.pop().use_count(), 1);
}

TEST(LockedQueueTest, TwoThreadsShareItWithoutLosingAnything)
{
    constexpr int COUNT = 1000;
    LockedQueue<std::shared_ptr<int>> queue;
    std::thread producer(
        [&queue]
        {
            for (int i = 0; i < COUNT; ++i)
            {
                queue.push(number(i));
            }
        });
    int expected = 0;
    while (expected < COUNT)
    {
        if (const std::shared_ptr<int> next = queue.pop())
        {
            ASSERT_EQ(*next, expected);
            ++expected;
        }
    }
    producer.join();
    EXPECT_TRUE(queue.empty());
}

} // namespace
} // namespace renderengine
